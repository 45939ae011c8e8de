#include "Notch/ActionsCell.h"

#include "Notch/NotchAction.h"
#include "Placement/Layout.h"
#include "Widgets/NotchButton.h"
#include "Widgets/Palette.h"
#include "Widgets/Units.h"

namespace nubble {

ActionsCell::ActionsCell(const QList<NotchAction *> &actions, QWidget *parent)
    : QWidget(parent), m_actions(actions)
{
    for (NotchAction *action : actions)
        add(*action);
    follow();
    setVisible(!actions.isEmpty());
}

void ActionsCell::add(NotchAction &action)
{
    auto *button = new NotchButton(action.look().symbol, action.look().helpText, this);
    connect(button, &NotchButton::clicked, &action, &NotchAction::run);
    connect(&action, &NotchAction::lookChanged, this, &ActionsCell::follow);
    m_buttons.append(button);
}

void ActionsCell::setMotionReduced(bool reduced)
{
    m_motionReduced = reduced;
    follow();
}

void ActionsCell::follow()
{
    for (qsizetype i = 0; i < m_buttons.size(); ++i) {
        const NotchAction::Look &look = m_actions.at(i)->look();
        NotchButton &button = *m_buttons.at(i);
        button.setSymbol(look.symbol);
        button.setHelpText(look.helpText);
        button.setTint(look.isRecording ? Palette::recording : Palette::textPrimary);
        button.setPulsing(look.isRecording && !m_motionReduced);
    }
}

void ActionsCell::place(const QList<QRectF> &areas, const QPointF &center, NotchEdge edge)
{
    const double unit = Units::of(this);
    const double pitch = (Layout::actionButton + Layout::actionGap) * unit;
    const QPointF step = isVertical(edge) ? QPointF(0, pitch) : QPointF(pitch, 0);
    QRectF cell;
    for (const QRectF &area : areas)
        cell |= area;
    setGeometry(cell.toRect());
    const QPointF half = QPointF(Layout::actionButton / 2, Layout::actionButton / 2) * unit;
    QPointF corner = center - step * static_cast<double>(m_buttons.size() - 1) / 2 - half;
    for (qsizetype i = 0; i < m_buttons.size(); ++i, corner += step) {
        const QRect circle(corner.toPoint() - pos(), m_buttons.at(i)->sizeHint());
        m_buttons.at(i)->place(areas.at(i).toRect().translated(-pos()), QRectF(circle).center());
    }
}

} // namespace nubble

#include "Notch/ActionsCell.h"

#include "Notch/NotchAction.h"
#include "Placement/Layout.h"
#include "Widgets/NotchButton.h"
#include "Widgets/Palette.h"

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

void ActionsCell::placeAround(const QPointF &center, NotchEdge edge)
{
    constexpr double pitch = Layout::actionButton + Layout::actionGap;
    const QPointF step = isVertical(edge) ? QPointF(0, pitch) : QPointF(pitch, 0);
    const double last = static_cast<double>(m_buttons.size() - 1);
    QRectF area(0, 0, Layout::actionButton + step.x() * last, Layout::actionButton + step.y() * last);
    area.moveCenter(center);
    setGeometry(area.toAlignedRect());
    QPointF corner = area.topLeft() - pos();
    for (NotchButton *button : std::as_const(m_buttons)) {
        button->setGeometry(QRect(corner.toPoint(), button->sizeHint()));
        corner += step;
    }
}

} // namespace nubble

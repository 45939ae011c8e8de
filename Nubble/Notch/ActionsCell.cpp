#include "Notch/ActionsCell.h"

#include "Placement/Layout.h"
#include "Widgets/NotchButton.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

NotchButton *makeButton(Addon addon, QWidget *parent)
{
    switch (addon) {
    case Addon::Search:
        return new NotchButton(u"magnifyingglass"_s, u"Search chats  ⌃⌥Space"_s, parent);
    case Addon::Ask:
        return new NotchButton(u"text.bubble.fill"_s, u"Ask Claude about your screen  ⌃⌥A"_s, parent);
    case Addon::Notes:
        return new NotchButton(u"mic.fill"_s, u"Meeting notes"_s, parent);
    case Addon::Quenwick:
        break; // has a card, no button
    }
    return nullptr;
}

} // namespace

ActionsCell::ActionsCell(const QList<Addon> &actions, QWidget *parent) : QWidget(parent)
{
    for (const Addon addon : actions) {
        NotchButton *button = makeButton(addon, this);
        connect(button, &NotchButton::clicked, this, [this, addon] { Q_EMIT triggered(addon); });
        m_buttons.append(button);
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

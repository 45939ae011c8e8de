#include "Widgets/TooltipShell.h"

#include <QEvent>
#include <QPainter>

#include "Placement/PanelShapes.h"
#include "Widgets/CardFrame.h"
#include "Widgets/Units.h"

namespace nubble {

namespace {

// Straight from the card towards the body, wherever along the side.
QLineF tail(NotchEdge edge, const QRectF &card, double length)
{
    const QPointF step = stepTowards(edge);
    const QPointF side = card.center() + QPointF(step.x() * card.width() / 2, step.y() * card.height() / 2);
    return {side, side + length * step};
}

} // namespace

TooltipShell::TooltipShell(QWidget *content, NotchEdge edge, bool translucent, QWidget *parent)
    : QWidget(parent), m_content(content), m_edge(edge), m_translucent(translucent)
{
    content->setParent(this);
    resize(sizeHint());
}

QSize TooltipShell::sizeHint() const
{
    QSize content =
        m_content->sizeHint().expandedTo(m_content->minimumSize()).boundedTo(m_content->maximumSize());
    if (m_content->hasHeightForWidth()) // what it hints at is for another width
        content.setHeight(m_content->heightForWidth(content.width()));
    return content.grownBy(shadowRoom());
}

QRect TooltipShell::cardRect() const
{
    return rect().marginsRemoved(shadowRoom());
}

QMargins TooltipShell::shadowRoom() const
{
    return Units::px(this, cardShadowRoom);
}

CardFrame TooltipShell::frame() const
{
    const double unit = Units::of(this);
    const QRectF card(QPointF(cardRect().topLeft()) / unit, QSizeF(cardRect().size()) / unit);
    const double length = m_tailLength / unit;
    return {
        .outline = cardOutline(m_edge, card, length, m_tailAlong / unit), .tail = tail(m_edge, card, length)};
}

QPainterPath TooltipShell::outline() const
{
    const double unit = Units::of(this);
    return QTransform::fromScale(unit, unit).map(frame().outline).translated(pos());
}

void TooltipShell::setTranslucent(bool translucent)
{
    m_translucent = translucent;
    m_drawn = {};
    update();
}

void TooltipShell::setTail(double along, double length)
{
    m_tailAlong = along;
    m_tailLength = length;
    m_drawn = {};
    update();
}

bool TooltipShell::event(QEvent *event)
{
    if (event->type() == QEvent::LayoutRequest && size() != sizeHint())
        Q_EMIT contentResized();
    return QWidget::event(event);
}

void TooltipShell::resizeEvent(QResizeEvent *)
{
    m_content->setGeometry(cardRect());
    m_drawn = {};
}

void TooltipShell::paintEvent(QPaintEvent *)
{
    if (m_drawn.isNull() || m_drawn.devicePixelRatio() != devicePixelRatioF())
        m_drawn = frame().drawn(size(), devicePixelRatioF(), m_translucent, Units::of(this));
    QPainter(this).drawPixmap(0, 0, m_drawn);
}

} // namespace nubble

#include "Widgets/TooltipShell.h"

#include <QEvent>
#include <QPainter>

#include "Placement/Layout.h"
#include "Placement/PanelShapes.h"
#include "Widgets/CardFrame.h"

namespace nubble {

namespace {

// Beside a body that lies, which is deeper, a card stands nearer.
double tailLength(NotchEdge edge)
{
    return isVertical(edge) ? 14 : 10;
}

} // namespace

TooltipShell::TooltipShell(QWidget *content, NotchEdge edge, bool translucent, QWidget *parent)
    : QWidget(parent), m_content(content), m_edge(edge), m_translucent(translucent)
{
    setFocusProxy(content);
    content->setParent(this);
    resize(sizeHint());
}

QMargins TooltipShell::margins() const
{
    const int around = qRound(Layout::cardPadding);
    QMargins margins(around, around, around, around);
    const int tailSide = qRound(Layout::cardPadding + Layout::tailSpace);
    switch (m_edge) {
    case NotchEdge::Right:
        margins.setRight(tailSide);
        break;
    case NotchEdge::Left:
        margins.setLeft(tailSide);
        break;
    case NotchEdge::Top:
        margins.setTop(tailSide);
        break;
    case NotchEdge::Bottom:
        margins.setBottom(tailSide);
        break;
    }
    return margins;
}

QSize TooltipShell::sizeHint() const
{
    QSize content =
        m_content->sizeHint().expandedTo(m_content->minimumSize()).boundedTo(m_content->maximumSize());
    if (m_content->hasHeightForWidth()) // what it hints at is for another width
        content.setHeight(m_content->heightForWidth(content.width()));
    return content.grownBy(margins());
}

QRect TooltipShell::cardRect() const
{
    return rect().marginsRemoved(margins());
}

CardFrame TooltipShell::frame() const
{
    const auto outline = [this](double tail) { return cardOutline(m_edge, cardRect(), tail, m_tailAlong); };
    return {outline(tailLength(m_edge)), outline(0)};
}

QPainterPath TooltipShell::outline() const
{
    return frame().outline.translated(pos());
}

void TooltipShell::setTranslucent(bool translucent)
{
    m_translucent = translucent;
    m_drawn = {};
    update();
}

void TooltipShell::setTailAlong(double along)
{
    m_tailAlong = along;
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
        m_drawn = frame().drawn(size(), devicePixelRatioF(), m_translucent);
    QPainter(this).drawPixmap(0, 0, m_drawn);
}

} // namespace nubble

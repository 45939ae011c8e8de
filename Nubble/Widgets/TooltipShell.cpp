#include "Widgets/TooltipShell.h"

#include <QEvent>
#include <QPainter>

#include "Placement/Layout.h"
#include "Placement/PanelShapes.h"
#include "Widgets/Palette.h"
#include "Widgets/SoftShadow.h"

namespace nubble {

namespace {

constexpr int tailLength = 14;
constexpr double shadowReach = 11;

} // namespace

TooltipShell::TooltipShell(QWidget *content, NotchEdge edge, bool translucent, QWidget *parent)
    : QWidget(parent), m_content(content), m_edge(edge), m_translucent(translucent)
{
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
    const QSize content =
        m_content->sizeHint().expandedTo(m_content->minimumSize()).boundedTo(m_content->maximumSize());
    return content.grownBy(margins());
}

QRect TooltipShell::cardRect() const
{
    return rect().marginsRemoved(margins());
}

QPainterPath TooltipShell::localOutline() const
{
    return cardOutline(m_edge, cardRect(), tailLength, m_tailAlong);
}

QPainterPath TooltipShell::outline() const
{
    return localOutline().translated(pos());
}

void TooltipShell::setTranslucent(bool translucent)
{
    m_translucent = translucent;
    m_frame = {};
    update();
}

void TooltipShell::setTailAlong(double along)
{
    m_tailAlong = along;
    m_frame = {};
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
    m_frame = {};
}

QPixmap TooltipShell::drawn() const
{
    const QPainterPath outline = localOutline();
    QPixmap frame(size() * devicePixelRatioF());
    frame.setDevicePixelRatio(devicePixelRatioF());
    frame.fill(Qt::transparent);
    QPainter painter(&frame);
    QColor fill = Palette::card;
    if (m_translucent) {
        painter.setRenderHint(QPainter::Antialiasing);
        drawSoftShadow(painter, cardOutline(m_edge, cardRect(), 0, m_tailAlong), shadowReach);
    } else {
        // The window is cut along the outline: fill beyond it, so that no pixel on the way is left unpainted.
        fill.setAlpha(255);
        painter.fillRect(rect(), fill);
    }
    painter.setCompositionMode(QPainter::CompositionMode_Source); // no shadow below the tail
    painter.fillPath(outline, fill);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);

    // The line runs inside the outline: half of a stroke of twice its width.
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipPath(outline);
    painter.setPen(QPen(Palette::cardLine, 2));
    painter.drawPath(outline);
    return frame;
}

void TooltipShell::paintEvent(QPaintEvent *)
{
    if (m_frame.isNull() || m_frame.devicePixelRatio() != devicePixelRatioF())
        m_frame = drawn();
    QPainter(this).drawPixmap(0, 0, m_frame);
}

} // namespace nubble

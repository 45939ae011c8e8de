#include "Widgets/CappedScroll.h"

#include <QEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>

#include "Widgets/Palette.h"

namespace nubble {

namespace {

// A slim rounded handle without a track.
class SlimScrollBar : public QScrollBar {
public:
    using QScrollBar::QScrollBar;

    [[nodiscard]] QSize sizeHint() const override { return {9, 40}; }

protected:
    void paintEvent(QPaintEvent *) override
    {
        const int range = maximum() - minimum() + pageStep();
        if (range <= 0)
            return;
        const double length = std::max(24.0, 1.0 * height() * pageStep() / range);
        const double start = maximum() == minimum()
            ? 0
            : (height() - length) * (value() - minimum()) / (maximum() - minimum());
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(underMouse() || isSliderDown() ? Palette::textSecondary : Palette::ringTrack);
        painter.drawRoundedRect(QRectF(width() - 5, start, 4, length), 2, 2);
    }
};

} // namespace

CappedScroll::CappedScroll(QWidget *content, int maxHeight, QWidget *parent)
    : QScrollArea(parent), m_maxHeight(maxHeight)
{
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBar(new SlimScrollBar);
    viewport()->setAutoFillBackground(false);
    setWidget(content);
    content->setAutoFillBackground(false);
    content->installEventFilter(this);
    fit();
}

QSize CappedScroll::sizeHint() const
{
    return {widget()->sizeHint().width(), std::min(m_maxHeight, std::max(widget()->sizeHint().height(), 1))};
}

void CappedScroll::fit()
{
    const int contentHeight = widget()->sizeHint().height();
    setVerticalScrollBarPolicy(contentHeight > m_maxHeight ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
    setFixedHeight(sizeHint().height());
}

bool CappedScroll::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == widget() && event->type() == QEvent::LayoutRequest)
        fit();
    return QScrollArea::eventFilter(watched, event);
}

void CappedScroll::wheelEvent(QWheelEvent *event)
{
    QScrollArea::wheelEvent(event);
    event->accept(); // at either end too: the wheel is meant for this card
}

} // namespace nubble

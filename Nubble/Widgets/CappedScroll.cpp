#include "Widgets/CappedScroll.h"

#include <QEvent>
#include <QWheelEvent>

#include <algorithm>

#include "Widgets/ScrollFade.h"
#include "Widgets/SlimScrollBar.h"
#include "Widgets/Units.h"

namespace nubble {

namespace {

constexpr double barWidth = 7; // within the margin, which is a little more

} // namespace

CappedScroll::CappedScroll(QWidget *content, int maxHeight, QWidget *parent)
    : QScrollArea(parent), m_maxHeight(maxHeight)
{
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false);
    setWidget(content);
    content->setAutoFillBackground(false);
    content->installEventFilter(this);
    ScrollFade::addTo(this);
    m_bar = new SlimScrollBar(parent);
    connect(m_bar, &QScrollBar::valueChanged, verticalScrollBar(), &QScrollBar::setValue);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, m_bar, &QScrollBar::setValue);
    connect(verticalScrollBar(), &QScrollBar::rangeChanged, this, &CappedScroll::followScrolling);
    fit();
}

QSize CappedScroll::sizeHint() const
{
    return {widget()->sizeHint().width(), std::min(m_maxHeight, std::max(widget()->sizeHint().height(), 1))};
}

void CappedScroll::fit()
{
    setFixedHeight(sizeHint().height());
}

bool CappedScroll::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == widget() && event->type() == QEvent::LayoutRequest)
        fit();
    return QScrollArea::eventFilter(watched, event);
}

void CappedScroll::resizeEvent(QResizeEvent *event)
{
    QScrollArea::resizeEvent(event);
    followScrolling();
}

void CappedScroll::moveEvent(QMoveEvent *)
{
    followScrolling();
}

void CappedScroll::followScrolling()
{
    const QScrollBar &own = *verticalScrollBar();
    m_bar->setGeometry(geometry().right() + 1, y(), Units::px(this, barWidth), height());
    m_bar->setSingleStep(own.singleStep());
    m_bar->setPageStep(height());
    m_bar->setRange(own.minimum(), own.maximum());
    m_bar->setVisible(own.maximum() > own.minimum());
}

void CappedScroll::wheelEvent(QWheelEvent *event)
{
    QScrollArea::wheelEvent(event);
    event->accept(); // at either end too: the wheel is meant for this card
}

} // namespace nubble

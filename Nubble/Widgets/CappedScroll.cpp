#include "Widgets/CappedScroll.h"

#include <QEvent>
#include <QWheelEvent>

#include <algorithm>

#include "Widgets/ScrollFade.h"
#include "Widgets/SlimScrollBar.h"

namespace nubble {

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
    m_fades = {new ScrollFade(this, ScrollFade::End::Top), new ScrollFade(this, ScrollFade::End::Bottom)};
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

void CappedScroll::resizeEvent(QResizeEvent *event)
{
    QScrollArea::resizeEvent(event);
    for (ScrollFade *fade : m_fades)
        fade->follow();
}

void CappedScroll::wheelEvent(QWheelEvent *event)
{
    QScrollArea::wheelEvent(event);
    event->accept(); // at either end too: the wheel is meant for this card
}

} // namespace nubble

#include "Widgets/ScrollFade.h"

#include <QAbstractScrollArea>
#include <QEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

#include "Widgets/Palette.h"
#include "Widgets/Units.h"

namespace nubble {

namespace {

constexpr int tallest = 16;

} // namespace

ScrollFade::ScrollFade(QAbstractScrollArea *area, End end) : QWidget(area), m_area(area), m_end(end)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    connect(area->verticalScrollBar(), &QScrollBar::valueChanged, this, &ScrollFade::follow);
    connect(area->verticalScrollBar(), &QScrollBar::rangeChanged, this, &ScrollFade::follow);
    area->viewport()->installEventFilter(this);
    follow();
}

void ScrollFade::addTo(QAbstractScrollArea *area)
{
    for (const End end : {End::Top, End::Bottom})
        new ScrollFade(area, end);
}

bool ScrollFade::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize)
        follow();
    return QWidget::eventFilter(watched, event);
}

void ScrollFade::follow()
{
    const QScrollBar &bar = *m_area->verticalScrollBar();
    const int hidden = m_end == End::Top ? bar.value() - bar.minimum() : bar.maximum() - bar.value();
    QRect frame = m_area->viewport()->geometry();
    const int height = std::min(hidden, Units::px(m_area, tallest));
    if (m_end == End::Top)
        frame.setHeight(height);
    else
        frame.setTop(frame.bottom() + 1 - height);
    setVisible(height > 0);
    setGeometry(frame);
    raise();
}

// What is there gives way to the card as it is below, translucent where that is.
void ScrollFade::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    QLinearGradient gradient(0, m_end == End::Top ? 0 : height(), 0, m_end == End::Top ? height() : 0);
    gradient.setColorAt(0, Qt::black);
    gradient.setColorAt(1, Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    painter.fillRect(rect(), gradient);
    QColor none = Palette::card;
    none.setAlpha(0);
    gradient.setColorAt(0, Palette::card);
    gradient.setColorAt(1, none);
    painter.setCompositionMode(QPainter::CompositionMode_Plus);
    painter.fillRect(rect(), gradient);
}

} // namespace nubble

#include "Thread/ThreadOverlays.h"

#include <QPainter>

#include "Widgets/Palette.h"

using namespace Qt::StringLiterals;

namespace nubble {

JumpButton::JumpButton(QWidget *parent) : NotchButton(u"arrow.down"_s, u"Go to the end"_s, parent)
{
    resize(sizeHint());
    hide();
}

void JumpButton::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Palette::ringTrack, 1));
    painter.setBrush(QColor(Palette::card.rgb()));
    painter.drawEllipse(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
    painter.end();
    NotchButton::paintEvent(event);
}

FocusRing::FocusRing(QWidget *parent) : QWidget(parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
}

void FocusRing::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Palette::focus, 1.5));
    painter.drawRoundedRect(QRectF(rect()).adjusted(2, 2, -2, -2), 8, 8);
}

} // namespace nubble

#include "Widgets/Spinner.h"

#include <QPainter>

#include "Widgets/Palette.h"
#include "Widgets/Units.h"

namespace nubble {

namespace {

constexpr int turn = 900;          // milliseconds
constexpr double thickness = 0.12; // of the side
constexpr int degree = 16;         // in which the painter counts

} // namespace

Spinner::Spinner(int side, QWidget *parent) : QWidget(parent)
{
    setFixedSize(Units::px(this, QSizeF(side, side)));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    m_turn.setStartValue(0.0);
    m_turn.setEndValue(360.0);
    m_turn.setDuration(turn);
    m_turn.setLoopCount(-1);
    connect(&m_turn, &QVariantAnimation::valueChanged, this, qOverload<>(&QWidget::update));
}

void Spinner::setMotionReduced(bool reduced)
{
    m_motionReduced = reduced;
    follow();
}

void Spinner::follow()
{
    const bool turns = isVisible() && !m_motionReduced;
    if (!turns)
        m_turn.stop();
    else if (m_turn.state() == QAbstractAnimation::Stopped)
        m_turn.start();
    update();
}

void Spinner::showEvent(QShowEvent *)
{
    follow();
}

void Spinner::hideEvent(QHideEvent *)
{
    follow();
}

void Spinner::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double width = thickness * this->width();
    const QRectF ring = QRectF(rect()).adjusted(width, width, -width, -width);
    painter.setPen(QPen(Palette::ringTrack, width));
    painter.drawEllipse(ring);
    painter.setPen(QPen(Palette::textPrimary, width, Qt::SolidLine, Qt::RoundCap));
    const bool turns = m_turn.state() == QAbstractAnimation::Running;
    const int from = 90 - qRound(turns ? m_turn.currentValue().toDouble() : 0.0);
    painter.drawArc(ring, from * degree, -90 * degree);
}

} // namespace nubble

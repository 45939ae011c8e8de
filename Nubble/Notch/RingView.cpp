#include "Notch/RingView.h"

#include <QPaintEvent>
#include <QPainter>

#include <utility>

#include "Notch/CellFrame.h"
#include "Notch/StatusRing.h"
#include "Placement/Layout.h"
#include "Usage/UsageTexts.h"
#include "Widgets/Palette.h"
#include "Widgets/PixelGrid.h"
#include "Widgets/Typography.h"

namespace nubble {

namespace {

constexpr double half = Layout::ringDiameter / 2;
constexpr QMarginsF aroundRing{half, half, half, half};
constexpr double oldStrength = 0.45; // of what may no longer be true
constexpr double lightRadius = 17;

double valueOf(const QVariantAnimation &motion, double atRest)
{
    return motion.state() != QAbstractAnimation::Stopped ? motion.currentValue().toDouble() : atRest;
}

} // namespace

RingView::RingView(QWidget *cell) : QWidget(cell)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_OpaquePaintEvent); // a frame of the animation is then no concern of the body
    m_frame.setTimerType(Qt::PreciseTimer);
    m_frame.setInterval(stepTime);
    connect(&m_frame, &QTimer::timeout, this, &RingView::turnOn);
    m_beat.setKeyValues({{0, 1.0}, {0.5, 1.25}, {1, 1.0}});
    m_beat.setDuration(beatTime);
    m_beat.setEasingCurve(QEasingCurve::InOutSine);
    m_beat.setLoopCount(beats);
    m_check.setStartValue(0.0);
    m_check.setEndValue(1.0);
    m_check.setDuration(checkTime);
    m_check.setEasingCurve(QEasingCurve::InOutSine);
    m_glide.setDuration(glideTime);
    m_glide.setEasingCurve(QEasingCurve::OutCubic);
    for (const auto *motion : {&m_beat, &m_check, &m_glide})
        connect(motion, &QVariantAnimation::valueChanged, this, qOverload<>(&QWidget::update));
}

void RingView::place(const CellFrame &frame)
{
    const QRect shown = frame.shown();
    setGeometry(shown);
    m_unit = frame.unit;
    const QPointF corner = QPointF(shown.topLeft()) / m_unit;
    m_center = frame.center - corner;
    m_percentRect = frame.text.translated(-corner);
    m_middle = (QRectF(m_center, QSizeF()).marginsAdded(aroundRing) | m_percentRect).center();
    update();
}

void RingView::setActivity(const Activity &activity)
{
    const bool begins = activity.waiting > m_activity.waiting;
    const bool ends = activity.overall == RunState::Completed && m_activity.overall != RunState::Completed;
    m_activity = activity;
    animateIfNeeded();
    if (begins && mayMove()) {
        m_beat.stop();
        m_beat.start();
    }
    if (ends && mayMove())
        m_check.start();
    update();
}

bool RingView::mayMove() const
{
    return !m_motionReduced && isVisible();
}

// Without a number the ring has the place of both.
QPointF RingView::center() const
{
    return m_fraction ? m_center : m_middle;
}

QPointF RingView::ringCenter() const
{
    return center() * m_unit;
}

double RingView::strength() const
{
    return m_isUsageOld ? oldStrength : 1;
}

void RingView::setUsage(std::optional<double> fraction, bool isOld)
{
    const std::optional<double> shown = shownFraction();
    m_fraction = fraction;
    m_isUsageOld = isOld;
    m_glide.stop();
    if (shown && fraction)
        glide(percentOf(*shown), percentOf(*fraction));
    update();
}

void RingView::glide(int from, int to)
{
    if (from == to || !mayMove())
        return;
    m_glide.setStartValue(from);
    m_glide.setEndValue(to);
    m_glide.start();
}

std::optional<double> RingView::shownFraction() const
{
    return m_fraction ? std::optional(valueOf(m_glide, *m_fraction * 100) / 100) : std::nullopt;
}

void RingView::setFocused(bool focused)
{
    m_focused = focused;
    update();
}

void RingView::setLight(const QColor &light)
{
    if (m_light == light)
        return;
    m_light = light;
    update();
}

void RingView::setMotionReduced(bool reduced)
{
    m_motionReduced = reduced;
    m_step = 0;
    if (reduced)
        stopMotion();
    animateIfNeeded();
    update();
}

void RingView::stopMotion()
{
    for (QVariantAnimation *motion : {&m_beat, &m_check, &m_glide})
        motion->stop();
}

void RingView::animateIfNeeded()
{
    const bool turns = isWorking() && mayMove();
    if (turns == m_frame.isActive())
        return;
    if (turns)
        m_frame.start();
    else
        m_frame.stop();
}

void RingView::turnOn()
{
    const auto turn = [](int step) { return static_cast<double>(step) / stepsPerTurn; };
    const int before = std::exchange(m_step, (m_step + 1) % stepsPerTurn);
    const auto places = changedByTurning(center(), turn(before), turn(m_step));
    QRegion changed;
    const QTransform toPixels = QTransform::fromScale(m_unit, m_unit);
    for (size_t i = 0; i < places.size(); ++i)
        changed |= m_steps[m_step][i].place = toPixels.mapRect(places[i]).toAlignedRect();
    repaint(changed);
}

void RingView::showEvent(QShowEvent *)
{
    animateIfNeeded();
}

void RingView::hideEvent(QHideEvent *)
{
    stopMotion();
    animateIfNeeded();
}

void RingView::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    Step &step = m_steps[m_step];
    if (m_frame.isActive() && event->region() == QRegion(step[0].place) + step[1].place) {
        for (EndOfArc &end : step)
            drawEnd(painter, end);
        return;
    }
    m_steps = {}; // for one of the reasons for which all is drawn again
    draw(painter);
}

// From its picture, which is also quicker to make: a fill of many spans would be shared among threads.
void RingView::drawEnd(QPainter &painter, EndOfArc &end) const
{
    const QTransform &onDevice = painter.deviceTransform();
    const QRect pixels = onDevice.mapRect(QRectF(end.place)).toAlignedRect();
    if (end.picture.isNull()) {
        end.picture = QImage(pixels.size(), QImage::Format_ARGB32_Premultiplied);
        QPainter own(&end.picture);
        own.setTransform(onDevice * QTransform::fromTranslate(-pixels.x(), -pixels.y()));
        draw(own);
    }
    painter.drawImage(onDevice.inverted().mapRect(QRectF(pixels)), end.picture);
}

void RingView::draw(QPainter &painter) const
{
    painter.fillRect(rect(), Palette::body);
    painter.scale(m_unit, m_unit);
    const QPointF corner = center() - QPointF(half, half);
    painter.translate(PixelGrid::aligned(painter, corner) - corner);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(m_light);
    painter.drawEllipse(center(), lightRadius, lightRadius);
    drawRing(painter);
    if (m_focused) {
        painter.setPen(QPen(Palette::focus, 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(center(), half + 2.5, half + 2.5);
    }
    if (m_activity.waiting > 0)
        drawWaitingBadge(painter, center(), valueOf(m_beat, 1));
    if (const std::optional<double> fraction = shownFraction())
        drawPercent(painter, percentOf(*fraction));
}

void RingView::drawRing(QPainter &painter) const
{
    if (isWorking())
        drawActivityArc(
            painter, center(), static_cast<double>(m_step) / stepsPerTurn, m_activity.waiting > 0);
    else if (m_activity.overall == RunState::Completed)
        drawCompletion(painter, center(), valueOf(m_check, 1));
    else
        drawStatusRing(painter, center(), shownFraction(), strength(), m_activity.waiting > 0);
}

void RingView::drawPercent(QPainter &painter, int percent) const
{
    painter.setFont(Typography::percent());
    painter.setOpacity(strength());
    painter.setPen(isScarce(percent) && !m_isUsageOld ? Palette::problem : Palette::textPrimary);
    Typography::drawTabular(painter, m_percentRect, Qt::AlignHCenter, QString::number(percent));
}

} // namespace nubble

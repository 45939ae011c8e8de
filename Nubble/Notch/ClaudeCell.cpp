#include "Notch/ClaudeCell.h"

#include <QPaintEvent>
#include <QPainter>

#include <utility>

#include "Notch/CellFrame.h"
#include "Notch/StatusRing.h"
#include "Placement/Layout.h"
#include "Usage/PlanWindow.h"
#include "Usage/UsageTexts.h"
#include "Widgets/Palette.h"
#include "Widgets/Typography.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

QString activityText(const Activity &activity)
{
    switch (activity.waiting ? RunState::Waiting : activity.overall) {
    case RunState::Waiting:
        return u"a session waits for you"_s;
    case RunState::Working:
        return u"working"_s;
    case RunState::Completed:
        return u"just finished"_s;
    case RunState::Idle:
        break;
    }
    return u"idle"_s;
}

} // namespace

ClaudeCell::ClaudeCell(QWidget *parent) : QAbstractButton(parent)
{
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_OpaquePaintEvent); // a frame of the animation is then no concern of the body
    m_frame.setTimerType(Qt::PreciseTimer);
    m_frame.setInterval(stepTime);
    connect(&m_frame, &QTimer::timeout, this, &ClaudeCell::turnOn);
    describe();
}

void ClaudeCell::placeAround(const QPointF &ringCenter, NotchEdge edge, double percentLineHeight)
{
    const CellFrame frame = cellFrameAround(ringCenter, edge, percentLineHeight);
    setGeometry(frame.geometry);
    m_center = frame.center;
    m_percentRect = frame.text;
    update();
}

void ClaudeCell::setActivity(const Activity &activity)
{
    if (m_activity == activity)
        return;
    m_activity = activity;
    describe();
    animateIfNeeded();
    update();
}

void ClaudeCell::setUsage(const PlanWindows &windows)
{
    const auto fraction = windows.session ? std::optional(windows.session->fraction) : std::nullopt;
    if (m_fraction == fraction)
        return;
    m_fraction = fraction;
    describe();
    update();
}

void ClaudeCell::setMotionReduced(bool reduced)
{
    m_motionReduced = reduced;
    m_step = 0;
    animateIfNeeded();
    update();
}

QString ClaudeCell::percentText() const
{
    return m_fraction ? QString::number(percentOf(*m_fraction)) : QString();
}

void ClaudeCell::animateIfNeeded()
{
    const bool turns = isWorking() && !m_motionReduced && isVisible();
    if (turns == m_frame.isActive())
        return;
    if (turns)
        m_frame.start();
    else
        m_frame.stop();
}

void ClaudeCell::turnOn()
{
    const auto turn = [](int step) { return static_cast<double>(step) / stepsPerTurn; };
    const int before = std::exchange(m_step, (m_step + 1) % stepsPerTurn);
    const auto places = changedByTurning(m_center, turn(before), turn(m_step));
    QRegion changed;
    for (size_t i = 0; i < places.size(); ++i)
        changed |= m_steps[m_step][i].place = places[i];
    repaint(changed);
}

void ClaudeCell::describe()
{
    const QString used = m_fraction ? u", %1 % of the plan used"_s.arg(percentText()) : QString();
    setAccessibleName(u"Claude sessions: "_s + activityText(m_activity) + used);
}

void ClaudeCell::enterEvent(QEnterEvent *event)
{
    Q_EMIT hoveredChanged(true);
    QAbstractButton::enterEvent(event);
}

void ClaudeCell::leaveEvent(QEvent *event)
{
    Q_EMIT hoveredChanged(false);
    QAbstractButton::leaveEvent(event);
}

void ClaudeCell::showEvent(QShowEvent *)
{
    animateIfNeeded();
}

void ClaudeCell::hideEvent(QHideEvent *)
{
    animateIfNeeded();
}

void ClaudeCell::paintEvent(QPaintEvent *event)
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
void ClaudeCell::drawEnd(QPainter &painter, EndOfArc &end) const
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

void ClaudeCell::draw(QPainter &painter) const
{
    painter.fillRect(rect(), Palette::body);
    painter.setRenderHint(QPainter::Antialiasing);
    if (isWorking())
        drawActivityArc(painter, m_center, static_cast<double>(m_step) / stepsPerTurn);
    else
        drawStatusRing(painter, m_center, m_activity.overall, m_fraction);
    if (m_activity.waiting)
        drawWaitingBadge(painter, m_center);
    if (hasFocus()) {
        painter.setPen(QPen(Palette::focus, 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(m_center, Layout::ringDiameter / 2 + 2.5, Layout::ringDiameter / 2 + 2.5);
    }
    painter.setFont(Typography::percent());
    painter.setPen(Palette::textPrimary);
    Typography::drawTabular(painter, m_percentRect, Qt::AlignHCenter, percentText());
}

} // namespace nubble

#include "Notch/ClaudeCell.h"

#include <QPaintEvent>
#include <QPainter>

#include <chrono>

#include "Notch/CellFrame.h"
#include "Notch/StatusRing.h"
#include "Placement/Layout.h"
#include "Usage/PlanWindow.h"
#include "Usage/UsageTexts.h"
#include "Widgets/Palette.h"
#include "Widgets/Typography.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr qint64 turnMsecs = 1400;
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
    m_frame.setTimerType(Qt::PreciseTimer);
    m_frame.setInterval(16ms);
    connect(&m_frame, &QTimer::timeout, this, [this] { update(ringArea()); });
    describe();
}

void ClaudeCell::place(const CellFrame &frame)
{
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
    animateIfNeeded();
    update();
}

QRect ClaudeCell::ringArea() const
{
    const double half = Layout::ringDiameter / 2 + 1;
    return QRectF(m_center - QPointF(half, half), QSizeF(2 * half, 2 * half)).toAlignedRect();
}

QString ClaudeCell::percentText() const
{
    return m_fraction ? QString::number(percentOf(*m_fraction)) : QString();
}

void ClaudeCell::animateIfNeeded()
{
    const bool turns = m_activity.overall == RunState::Working && !m_motionReduced && isVisible();
    if (turns == m_frame.isActive())
        return;
    if (turns) {
        m_turning.start();
        m_frame.start();
    } else {
        m_frame.stop();
    }
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
    painter.setRenderHint(QPainter::Antialiasing);
    if (m_activity.overall == RunState::Working)
        drawActivityArc(
            painter, m_center,
            m_frame.isActive() ? static_cast<double>(m_turning.elapsed() % turnMsecs) / turnMsecs : 0);
    else
        drawStatusRing(painter, m_center, m_activity.overall, m_fraction);
    if (m_activity.waiting)
        drawWaitingBadge(painter, m_center);
    if (hasFocus()) {
        painter.setPen(QPen(Palette::focus, 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(m_center, Layout::ringDiameter / 2 + 2.5, Layout::ringDiameter / 2 + 2.5);
    }
    if (!event->rect().intersects(m_percentRect.toAlignedRect()))
        return; // a frame of the animation
    painter.setFont(Typography::percent());
    painter.setPen(Palette::textPrimary);
    Typography::drawTabular(painter, m_percentRect, Qt::AlignHCenter, percentText());
}

} // namespace nubble

#include "Notch/ClaudeCell.h"

#include "Notch/CellFrame.h"
#include "Notch/RingView.h"
#include "Usage/PlanWindow.h"
#include "Usage/UsageTexts.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

QString activityText(const Activity &activity)
{
    switch (activity.waiting > 0 ? RunState::Waiting : activity.overall) {
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

ClaudeCell::ClaudeCell(QWidget *parent) : QAbstractButton(parent), m_view(new RingView(this)), m_hover(this)
{
    setFocusPolicy(Qt::TabFocus);
    describe();
}

void ClaudeCell::place(const CellFrame &frame)
{
    setGeometry(frame.geometry);
    m_view->place(frame);
}

QPointF ClaudeCell::ringCenter() const
{
    return pos() + m_view->pos() + m_view->ringCenter();
}

void ClaudeCell::setActivity(const Activity &activity)
{
    if (m_activity == activity)
        return;
    m_activity = activity;
    m_view->setActivity(activity);
    describe();
}

void ClaudeCell::setUsage(const PlanWindows &windows, bool isOld)
{
    const auto fraction = windows.session ? std::optional(windows.session->fraction) : std::nullopt;
    if (m_fraction == fraction && m_isUsageOld == isOld)
        return;
    const bool moves = m_fraction.has_value() != fraction.has_value();
    m_fraction = fraction;
    m_isUsageOld = isOld;
    m_view->setUsage(fraction, isOld);
    describe();
    if (moves)
        Q_EMIT ringMoved();
}

void ClaudeCell::setMotionReduced(bool reduced)
{
    m_view->setMotionReduced(reduced);
}

void ClaudeCell::describe()
{
    const QString words =
        m_isUsageOld ? u", %1 % of the plan used when last known"_s : u", %1 % of the plan used"_s;
    const QString used = m_fraction ? words.arg(percentOf(*m_fraction)) : QString();
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

void ClaudeCell::focusInEvent(QFocusEvent *event)
{
    m_view->setFocused(true);
    QAbstractButton::focusInEvent(event);
}

void ClaudeCell::focusOutEvent(QFocusEvent *event)
{
    m_view->setFocused(false);
    QAbstractButton::focusOutEvent(event);
}

// The view is all that is seen of it, and covers what it might draw.
void ClaudeCell::paintEvent(QPaintEvent *)
{
    m_view->setLight(m_hover.lifted(Qt::transparent, isDown()));
}

} // namespace nubble

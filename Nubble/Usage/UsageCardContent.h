#pragma once

#include <QWidget>

class QLabel;

namespace nubble {

class Clock;
class DesktopPreferences;
class LimitRow;
class PlanUsageMonitor;
class RefreshButton;

// The usage card: both windows of the plan, and why their numbers may be old.
class UsageCardContent : public QWidget {
    Q_OBJECT

public:
    UsageCardContent(
        PlanUsageMonitor &planUsage, const Clock &clock, const DesktopPreferences &preferences,
        QWidget *parent = nullptr);

private:
    void updateWindows();
    void updateRefreshing();

    PlanUsageMonitor &m_planUsage;
    const Clock &m_clock;
    const DesktopPreferences &m_preferences;
    RefreshButton *m_refresh;
    LimitRow *m_session;
    LimitRow *m_weekly;
    QLabel *m_problem;
};

} // namespace nubble

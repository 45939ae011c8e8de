#pragma once

#include <QJsonObject>
#include <QString>

class QDateTime;

namespace nubble {

class Clock;
class NotchPlacement;
class PanelState;
class PlanUsageMonitor;
class SessionMonitor;

// What `nubble status` prints. Main thread only.

// The activity of all sessions, and the sessions in the order of their card.
[[nodiscard]] QJsonObject statusReport(const SessionMonitor &monitor, const Clock &clock);

// Both windows of the plan, and why their numbers may be old.
[[nodiscard]] QJsonObject usageReport(const PlanUsageMonitor &planUsage);

[[nodiscard]] QJsonObject panelReport(const PanelState &state, const NotchPlacement &placement);

// The same for people, `width` columns wide. Control characters, which a terminal would obey, are left out.
[[nodiscard]] QString statusTable(const QJsonObject &report, qsizetype width, const QDateTime &now);

} // namespace nubble

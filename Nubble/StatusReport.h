#pragma once

#include <QJsonObject>
#include <QString>

namespace nubble {

class Clock;
class NotchPlacement;
class PanelState;
class SessionMonitor;

// What `nubble status` prints. Main thread only.

// The activity of all sessions, and the sessions in the order of their card.
[[nodiscard]] QJsonObject statusReport(SessionMonitor &monitor, const Clock &clock);

[[nodiscard]] QJsonObject panelReport(const PanelState &state, const NotchPlacement &placement);

// The same for people, `width` columns wide. Control characters, which a terminal would obey, are left out.
[[nodiscard]] QString statusTable(const QJsonObject &report, qsizetype width);

} // namespace nubble

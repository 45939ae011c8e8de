#pragma once

#include <QJsonObject>
#include <QString>

class QDateTime;

namespace nubble {

class AskWindow;
class ChatSearchWindow;
class Clock;
class Defaults;
class HotKeys;
class MeetingNotes;
class NotchPlacement;
class PanelState;
class PlanUsageMonitor;
class QuenwickMonitor;
class SessionMonitor;

// What `nubble status` prints: each part adds to `status` what it has to tell. Main thread only.

void reportSessions(
    const SessionMonitor &monitor, const Clock &clock, QJsonObject &status); // in their card's order
void reportUsage(const PlanUsageMonitor &planUsage, QJsonObject &status);
void reportPanel(const PanelState &state, const NotchPlacement &placement, QJsonObject &status);
void reportHotKeys(const HotKeys &hotKeys, QJsonObject &status);
void reportNotices(const Defaults &defaults, QJsonObject &status);
void reportAsk(const AskWindow &window, QJsonObject &status);
void reportNotes(const MeetingNotes &notes, QJsonObject &status);
void reportReview(const QuenwickMonitor &quenwick, QJsonObject &status);
void reportSearch(const ChatSearchWindow &window, QJsonObject &status);

// As text. What a terminal would obey in it, and what turns the direction of others, is escaped.
[[nodiscard]] QByteArray statusJson(const QJsonObject &report);

// The same for people, `width` columns wide. Control characters, which a terminal would obey, are left out.
[[nodiscard]] QString statusTable(const QJsonObject &report, qsizetype width, const QDateTime &now);

} // namespace nubble

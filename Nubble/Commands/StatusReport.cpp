#include "Commands/StatusReport.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <array>

#include "Ask/AskWindow.h"
#include "Meeting/MeetingNotes.h"
#include "Meeting/MeetingTexts.h"
#include "Notch/PanelState.h"
#include "Placement/NotchPlacement.h"
#include "Platform/Clock.h"
#include "Review/QuenwickMonitor.h"
#include "Search/ChatSearchWindow.h"
#include "Sessions/NoticePreferences.h"
#include "Sessions/SessionDetails.h"
#include "Sessions/SessionMonitor.h"
#include "Sessions/SessionTexts.h"
#include "Shell/HotKeys.h"
#include "Shell/OneLine.h"
#include "Usage/PlanUsageMonitor.h"
#include "Usage/UsageTexts.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

template <typename T> QJsonValue orNull(const std::optional<T> &value)
{
    return value ? QJsonValue(*value) : QJsonValue();
}

// Milliseconds since 1970.
QJsonValue orNull(const std::optional<TimePoint> &time)
{
    return time ? QJsonValue(static_cast<qint64>(time->time_since_epoch().count())) : QJsonValue();
}

QJsonObject sessionReport(const SessionMonitor &monitor, const ClaudeSession &session, const Clock &clock)
{
    const SessionDetail detail = monitor.details().of(session);
    return {
        {u"sessionId"_s, session.sessionId},
        {u"pid"_s, session.pid},
        {u"cwd"_s, session.cwd},
        {u"title"_s, rowTitle(session, detail)},
        {u"lastPrompt"_s, orNull(detail.lastPrompt)},
        {u"terminal"_s, orNull(session.terminal)},
        {u"state"_s, stateName(monitor.runState(session))},
        {u"word"_s, rowWord(monitor.runState(session))},
        {u"elapsed"_s, elapsedText(timePointOf(session.lastActivity()), clock.now())},
        {u"startedAt"_s, session.startedAt},
        {u"updatedAt"_s, orNull(session.updatedAt)},
        {u"waitingSince"_s, orNull(monitor.times(session).waitingSince)},
        {u"question"_s, orNull(questionOf(session, detail))},
    };
}

QJsonValue windowReport(const std::optional<PlanWindow> &window)
{
    if (!window)
        return {};
    return QJsonObject{
        {u"fraction"_s, window->fraction},
        {u"percent"_s, percentOf(window->fraction)},
        {u"resetsAt"_s,
         window->resetsAt ? QJsonValue(window->resetsAt->toUTC().toString(Qt::ISODate)) : QJsonValue()},
    };
}

QString printable(const QJsonValue &value)
{
    return oneLine(value.toString());
}

// What would move, or hide, something else on a terminal.
bool disturbsTerminals(QChar each)
{
    const bool isControl = each.category() == QChar::Other_Control && each != u'\n';
    return isControl || isDirectionChange(each) || each == QChar::LineSeparator
        || each == QChar::ParagraphSeparator;
}

QString fitted(const QString &text, qsizetype width)
{
    return shortened(text, width).leftJustified(width);
}

// The last column takes what is left of the line.
using Row = std::array<QString, 4>;

QString tableOf(const QList<Row> &rows, qsizetype width)
{
    std::array<qsizetype, 4> widths{};
    for (const Row &row : rows)
        for (size_t column = 0; column < row.size(); ++column)
            widths.at(column) = std::max(widths.at(column), row.at(column).size());
    widths[2] = std::min(widths[2], std::max<qsizetype>(width / 3, 16));
    widths[3] = std::max<qsizetype>(width - widths[0] - widths[1] - widths[2] - 6, 8);
    QString table;
    for (const Row &row : rows) {
        QString line;
        for (size_t column = 0; column < row.size(); ++column)
            line += fitted(row.at(column), widths.at(column)) + u"  "_s;
        while (line.endsWith(u' '))
            line.chop(1);
        table += line + u'\n';
    }
    return table;
}

QString sessionsTable(const QJsonArray &sessions, qsizetype width)
{
    if (sessions.isEmpty())
        return u"No sessions running\n"_s;
    QList<Row> rows{{u"STATE"_s, u"SINCE"_s, u"SESSION"_s, u"LAST PROMPT"_s}};
    for (const QJsonValue session : sessions)
        rows.append(
            {printable(session["word"_L1]), printable(session["elapsed"_L1]), printable(session["title"_L1]),
             printable(session["lastPrompt"_L1])});
    return tableOf(rows, width);
}

QString usageLine(const QString &label, const QJsonValue &window, const QDateTime &now)
{
    if (!window.isObject())
        return {};
    const QDateTime resetsAt = QDateTime::fromString(window["resetsAt"_L1].toString(), Qt::ISODate);
    const QString reset = resetText(resetsAt.isValid() ? std::optional(resetsAt) : std::nullopt, now);
    return label.leftJustified(17) + percentText(window["percent"_L1].toInt()).leftJustified(11) + reset
        + u'\n';
}

QString usageTable(const QJsonObject &usage, const QDateTime &now)
{
    if (usage.isEmpty())
        return {};
    const QString problem = usage.value("problem"_L1).toString();
    return u"\n"_s + usageLine(u"Current session"_s, usage.value("session"_L1), now)
        + usageLine(u"All models"_s, usage.value("weekly"_L1), now)
        + (problem.isEmpty() ? problem : problem + u'\n');
}

} // namespace

void reportSessions(const SessionMonitor &monitor, const Clock &clock, QJsonObject &status)
{
    QJsonArray sessions;
    for (const ClaudeSession &session : monitor.sessions())
        sessions.append(sessionReport(monitor, session, clock));
    status.insert("activity"_L1, stateName(monitor.activity().overall));
    status.insert("sessions"_L1, sessions);
}

void reportUsage(const PlanUsageMonitor &planUsage, QJsonObject &status)
{
    status.insert(
        "usage"_L1,
        QJsonObject{
            {u"session"_s, windowReport(planUsage.windows().session)},
            {u"weekly"_s, windowReport(planUsage.windows().weekly)},
            {u"problem"_s, orNull(planUsage.problem())},
        });
}

void reportPanel(const PanelState &state, const NotchPlacement &placement, QJsonObject &status)
{
    status.insert(
        "panel"_L1,
        QJsonObject{
            {u"mode"_s, name(state.mode())},
            {u"edge"_s, rawValue(placement.edge())},
            {u"offset"_s, placement.offset()},
            {u"locked"_s, placement.isLocked()},
            {u"visible"_s, placement.isVisible()},
        });
}

void reportAsk(const AskWindow &window, QJsonObject &status)
{
    const AskClaude &ask = window.conversation();
    std::optional<QString> problem = ask.problem();
    if (ask.isProblemQuoted())
        problem = u"Claude reported an error."_s; // what it says stays in the conversation
    status.insert(
        "ask"_L1,
        QJsonObject{
            {u"open"_s, window.isOpen()},
            {u"busy"_s, ask.isBusy()},
            {u"capturing"_s, ask.isCapturing()},
            {u"messages"_s, ask.messages().size()},
            {u"problem"_s, orNull(problem)},
        });
}

void reportNotes(const MeetingNotes &notes, QJsonObject &status)
{
    const MeetingState &state = notes.state();
    QJsonArray others;
    for (const pid_t pid : state.others)
        others.append(pid);
    status.insert(
        "notes"_L1,
        QJsonObject{
            {u"phase"_s, phaseName(state.phase)},
            {u"status"_s, statusText(state)},
            {u"tabTitle"_s, state.tabTitle ? QJsonValue(docLabel(state)) : QJsonValue()},
            {u"link"_s, isDocTabLink(state.link)},
            {u"others"_s, others},
            {u"startedAt"_s, orNull(state.startedAt)},
            {u"lastUpdate"_s, orNull(state.lastUpdate)},
            {u"nextUpdate"_s, orNull(state.nextUpdate)},
            {u"updating"_s, state.updating},
        });
}

void reportReview(const QuenwickMonitor &quenwick, QJsonObject &status)
{
    const ReviewState &state = quenwick.state();
    status.insert(
        "review"_L1,
        QJsonObject{
            {u"installed"_s, state.installed},
            {u"live"_s, state.live},
            {u"pending"_s, state.inbox.pending},
            {u"items"_s, state.inbox.items.size()},
            {u"busy"_s, state.busy.size()},
            {u"checking"_s, state.checking},
            {u"lastMessage"_s, state.lastMessage ? QJsonValue(oneLine(*state.lastMessage)) : QJsonValue()},
        });
}

void reportSearch(const ChatSearchWindow &window, QJsonObject &status)
{
    const ChatSearch &search = window.search();
    status.insert(
        "search"_L1,
        QJsonObject{
            {u"open"_s, window.isOpen()},
            {u"results"_s, search.results().size()},
            {u"thread"_s, search.thread().has_value()},
            {u"problem"_s, search.problem() ? QJsonValue(oneLine(*search.problem())) : QJsonValue()},
        });
}

void reportHotKeys(const HotKeys &hotKeys, QJsonObject &status)
{
    QJsonArray keys;
    for (const HotKeys::Entry &each : hotKeys.entries())
        keys.append(QJsonObject{
            {u"keys"_s, each.keys}, {u"action"_s, each.action}, {u"registered"_s, each.registered}});
    status.insert("hotKeys"_L1, keys);
}

void reportNotices(const Defaults &defaults, QJsonObject &status)
{
    const auto notices = NoticePreferences::in(defaults);
    status.insert(
        "notifications"_L1, QJsonObject{{u"waiting"_s, notices.waiting}, {u"done"_s, notices.done}});
}

QByteArray statusJson(const QJsonObject &report)
{
    const QString json = QString::fromUtf8(QJsonDocument(report).toJson(QJsonDocument::Indented));
    QString safe;
    for (const QChar each : json)
        safe += disturbsTerminals(each) ? u"\\u%1"_s.arg(each.unicode(), 4, 16, QChar(u'0')) : QString(each);
    return safe.toUtf8();
}

QString statusTable(const QJsonObject &report, qsizetype width, const QDateTime &now)
{
    return sessionsTable(report.value("sessions"_L1).toArray(), width)
        + usageTable(report.value("usage"_L1).toObject(), now);
}

} // namespace nubble

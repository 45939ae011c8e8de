#include "StatusReport.h"

#include <QJsonArray>

#include <algorithm>
#include <array>

#include "Panel/NotchPlacement.h"
#include "Panel/PanelState.h"
#include "Platform/Clock.h"
#include "Sessions/SessionDetails.h"
#include "Sessions/SessionMonitor.h"
#include "Sessions/SessionTexts.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

QJsonObject sessionReport(SessionMonitor &monitor, const ClaudeSession &session, const Clock &clock)
{
    const SessionDetail detail = monitor.details().byId().value(session.sessionId);
    const RunState state = monitor.runState(session);
    return {
        {u"sessionId"_s, session.sessionId},
        {u"pid"_s, session.pid},
        {u"cwd"_s, session.cwd},
        {u"title"_s, rowTitle(session, detail)},
        {u"lastPrompt"_s, detail.lastPrompt ? QJsonValue(*detail.lastPrompt) : QJsonValue()},
        {u"state"_s, stateName(state)},
        {u"word"_s, rowWord(session, state)},
        {u"elapsed"_s, elapsedText(session.updatedAt.value_or(session.startedAt), clock.msecsSinceEpoch())},
        {u"startedAt"_s, session.startedAt},
        {u"updatedAt"_s, session.updatedAt ? QJsonValue(*session.updatedAt) : QJsonValue()},
    };
}

QString printable(const QJsonValue &value)
{
    QString text = value.toString();
    text.removeIf([](QChar character) { return character.category() == QChar::Other_Control; });
    return text;
}

QString fitted(const QString &text, qsizetype width)
{
    if (text.size() <= width)
        return text.leftJustified(width);
    QString start = text.first(std::max<qsizetype>(width - 1, 0));
    if (!start.isEmpty() && start.back().isHighSurrogate())
        start.chop(1); // not half a character
    start += u'…';
    return start.leftJustified(width);
}

// The last column takes what is left of the line.
using Row = std::array<QString, 4>;

QString tableOf(const QList<Row> &rows, qsizetype width)
{
    std::array<qsizetype, 4> widths {};
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

} // namespace

QJsonObject statusReport(SessionMonitor &monitor, const Clock &clock)
{
    QJsonArray sessions;
    for (const ClaudeSession &session : monitor.sessions())
        sessions.append(sessionReport(monitor, session, clock));
    return {{u"activity"_s, stateName(monitor.activity())}, {u"sessions"_s, sessions}};
}

QJsonObject panelReport(const PanelState &state, const NotchPlacement &placement)
{
    return {
        {u"mode"_s, name(state.mode())},
        {u"edge"_s, rawValue(placement.edge())},
        {u"offset"_s, placement.offset()},
        {u"locked"_s, placement.isLocked()},
        {u"visible"_s, placement.isVisible()},
    };
}

QString statusTable(const QJsonObject &report, qsizetype width)
{
    const QJsonArray sessions = report.value("sessions"_L1).toArray();
    if (sessions.isEmpty())
        return u"No sessions running\n"_s;
    QList<Row> rows {{u"STATE"_s, u"SINCE"_s, u"SESSION"_s, u"LAST PROMPT"_s}};
    for (const QJsonValue &session : sessions)
        rows.append({printable(session["word"_L1]), printable(session["elapsed"_L1]),
            printable(session["title"_L1]), printable(session["lastPrompt"_L1])});
    return tableOf(rows, width);
}

} // namespace nubble

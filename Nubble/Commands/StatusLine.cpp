#include "Commands/StatusLine.h"

#include <QJsonArray>

#include "Shell/OneLine.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

QString percentage(const QJsonObject &report)
{
    const QJsonValue percent = report["usage"_L1]["session"_L1]["percent"_L1];
    return percent.isDouble() ? QString::number(percent.toInt()) : QString();
}

int countOf(const QJsonArray &sessions, const QString &word)
{
    return static_cast<int>(std::ranges::count_if(
        sessions, [&word](const QJsonValue &session) { return session["word"_L1] == word; }));
}

} // namespace

QString statusLine(const QJsonObject &report)
{
    const QJsonArray sessions = report["sessions"_L1].toArray();
    QStringList counts;
    for (const QString &word : {u"working"_s, u"waiting"_s, u"done"_s, u"idle"_s})
        if (const int count = countOf(sessions, word); count > 0)
            counts.append(QString::number(count) + u' ' + word);
    const QString line = counts.isEmpty() ? u"no sessions"_s : counts.join(u", "_s);
    const QString percent = percentage(report);
    return percent.isEmpty() ? line : line + u" · " + percent + u'%';
}

QJsonObject forStatusBars(QJsonObject report)
{
    QStringList lines;
    for (const QJsonValue session : report["sessions"_L1].toArray())
        lines.append(oneLine(session["title"_L1].toString()) + u": " + session["word"_L1].toString());
    report["text"_L1] = statusLine(report);
    report["tooltip"_L1] = lines.isEmpty() ? u"No sessions running"_s : lines.join(u'\n');
    report["class"_L1] = report["activity"_L1];
    report["percentage"_L1] = percentage(report).toInt();
    return report;
}

} // namespace nubble

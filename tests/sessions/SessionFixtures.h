#pragma once

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include "Sessions/ClaudeSession.h"

namespace nubble {

// A session record as its process writes it; a status that is null is left out.
inline QByteArray recordJson(qint32 pid, const QString &id, const QString &status, double updatedAt = 2000)
{
    using namespace Qt::StringLiterals;
    QJsonObject record{
        {u"pid"_s, pid},
        {u"sessionId"_s, id},
        {u"cwd"_s, u"/tmp/my.app"_s},
        {u"startedAt"_s, 1000},
        {u"updatedAt"_s, updatedAt}};
    if (!status.isNull())
        record.insert(u"status"_s, status);
    return QJsonDocument(record).toJson(QJsonDocument::Compact);
}

inline ClaudeSession sessionOf(const QString &id, const QString &cwd = QStringLiteral("/tmp/my.app"))
{
    ClaudeSession session;
    session.pid = 7;
    session.sessionId = id;
    session.cwd = cwd;
    return session;
}

inline void append(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::Append) || file.write(bytes) != bytes.size())
        qFatal("cannot append to %s", qPrintable(path));
}

inline QByteArray titleLine(const QByteArray &title)
{
    return R"({"type":"ai-title","aiTitle":")" + title + "\"}\n";
}

inline QByteArray lastPromptLine(const QByteArray &prompt)
{
    return R"({"type":"last-prompt","lastPrompt":")" + prompt + "\"}\n";
}

inline QByteArray typedLine(const QByteArray &prompt)
{
    return R"({"type":"user","message":{"role":"user","content":")" + prompt + "\"}}\n";
}

} // namespace nubble

#pragma once

#include <QByteArray>

#include "Sessions/ClaudeSession.h"

namespace nubble {

// A session record as its process writes it; a status that is null is left out.
inline QByteArray recordJson(qint32 pid, const QString &id, const QString &status, double updatedAt = 2000)
{
    const QString word = status.isNull() ? QString() : QStringLiteral(R"(,"status":"%1")").arg(status);
    return QStringLiteral(
               R"({"pid":%1,"sessionId":"%2","cwd":"/tmp/my.app","startedAt":1000,"updatedAt":%3%4})")
        .arg(QString::number(pid), id, QString::number(updatedAt), word)
        .toUtf8();
}

inline ClaudeSession sessionOf(const QString &id, const QString &cwd = QStringLiteral("/tmp/my.app"))
{
    ClaudeSession session;
    session.pid = 7;
    session.sessionId = id;
    session.cwd = cwd;
    return session;
}

inline QByteArray titleLine(const QByteArray &text)
{
    return R"({"type":"ai-title","aiTitle":")" + text + "\"}\n";
}

inline QByteArray lastPromptLine(const QByteArray &text)
{
    return R"({"type":"last-prompt","lastPrompt":")" + text + "\"}\n";
}

inline QByteArray typedLine(const QByteArray &text)
{
    return R"({"type":"user","message":{"role":"user","content":")" + text + "\"}}\n";
}

} // namespace nubble

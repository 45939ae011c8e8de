#pragma once

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "support/TemporaryHome.h"

namespace nubble {

// A `claude` of a home's own that follows a script: Python, with these words.
//   turn()        the next turn that it is given, also kept in "turns"
//   say(OBJECT…)  writes events, a line each; delta(TEXT), reply(TEXT…), done(), failed() make some
//   raw(BYTES), complain(BYTES)   to standard output and standard error
// How it was started is kept in "starts", a line of JSON each time.
class ClaudeStandIn {
public:
    explicit ClaudeStandIn(const TemporaryHome &home) : m_home(home) { }

    void follow(const QByteArray &script) const
    {
        m_home.writeScript(QStringLiteral(".local/bin/claude"), words + script);
    }
    [[nodiscard]] QList<QJsonObject> starts() const { return lines(QStringLiteral("starts")); }
    [[nodiscard]] QList<QJsonObject> turns() const { return lines(QStringLiteral("turns")); }

private:
    static constexpr char words[] = R"(#!/usr/bin/python3 -S
import json, os, signal, sys, time
home = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
def keep(name, line):
    with open(os.path.join(home, name), "a") as file:
        file.write(line + "\n")
def raw(data):
    sys.stdout.buffer.write(data)
    sys.stdout.buffer.flush()
def complain(data):
    sys.stderr.buffer.write(data)
    sys.stderr.buffer.flush()
def say(*events):
    raw(b"".join(json.dumps(event).encode() + b"\n" for event in events))
def turn():
    line = sys.stdin.readline()
    if not line:
        sys.exit(0)
    keep("turns", line.strip())
def delta(text):
    return {"type": "stream_event", "event": {"type": "content_block_delta", "delta": {"type": "text_delta", "text": text}}}
def reply(*texts, **more):
    return {"type": "assistant", "message": {"content": [{"type": "text", "text": text} for text in texts], **more}}
def done(**more):
    return {"type": "result", "subtype": "success", "is_error": False, **more}
def failed(**more):
    return {"type": "result", "is_error": True, **more}
keep("starts", json.dumps({"arguments": sys.argv[1:], "folder": os.getcwd(), "pid": os.getpid(),
    "environment": [os.environ.get(name) for name in ("PATH", "OURS", "CLAUDE_CODE_DISABLE_ATTACHMENTS")]}))
)";

    [[nodiscard]] QList<QJsonObject> lines(const QString &name) const
    {
        QList<QJsonObject> objects;
        for (const QByteArray &line : m_home.read(name).split('\n'))
            if (!line.isEmpty())
                objects.append(QJsonDocument::fromJson(line).object());
        return objects;
    }

    const TemporaryHome &m_home;
};

} // namespace nubble

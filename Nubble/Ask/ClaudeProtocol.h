#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>
#include <variant>

namespace nubble {

struct ScreenContext;

// What is written to `claude -p --input-format stream-json --output-format stream-json` and read from it: one
// JSON object a line. Pure functions; any thread.
namespace ClaudeProtocol {

// `resumed` is the conversation that is to go on.
[[nodiscard]] QStringList arguments(const std::optional<QString> &resumed);

// The text that Claude gets, which also says what is on the screen.
[[nodiscard]] QString promptOf(const QString &text, const std::optional<ScreenContext> &screen);

// A user's turn, with the line's end.
[[nodiscard]] QByteArray turn(const QString &text, const std::optional<ScreenContext> &screen);

struct TextDelta {
    QString text;
};
struct Reply { // a whole message of the assistant, or the next part of one
    QString text;
    QString messageId; // empty: not told
};
struct TurnEnd {
    std::optional<QString> error; // why the turn has failed
};
struct Event {
    std::optional<QString> sessionId;
    std::variant<std::monostate, TextDelta, Reply, TurnEnd> content; // of the kinds that matter here
};

// None when the line is no JSON object.
[[nodiscard]] std::optional<Event> decode(const QByteArray &line);

} // namespace ClaudeProtocol

} // namespace nubble

#pragma once

#include <QByteArrayView>
#include <QLatin1String>
#include <QString>

#include <optional>

namespace nubble {

// What the last line says that is of the conversation itself.
struct TranscriptEnd {
    enum class Kind {
        Asked,    // Claude is to go on: a prompt, a tool's call or its result
        Speaking, // perhaps more follows
        Answered
    };

    Kind kind = Kind::Answered;
    std::optional<QString> question{}; // of a call that asks the user

    bool operator==(const TranscriptEnd &) const = default;
};

// The newest texts found in a transcript, each on one line and never empty.
struct TranscriptValues {
    std::optional<QString> title;      // generated, or given by the user
    std::optional<QString> lastPrompt; // as the user typed it, or as Claude Code has noted it
    std::optional<TranscriptEnd> end{};

    bool operator==(const TranscriptValues &) const = default;
};

// Fills in what `values` lacks from the newest of `lines`, one JSON object a line, walking from the last to
// the first. Of the kinds of lines that tell the same, the newest counts. Pure; any thread.
void findNewest(QByteArrayView lines, TranscriptValues &values);

// The text under `key`, its line breaks made spaces; none when the line is no object or has no such text.
[[nodiscard]] std::optional<QString> field(QByteArrayView line, QLatin1String key);

// The prompt in a line that records what the user typed, at most 200 characters of it; none for what only
// looks like one.
[[nodiscard]] std::optional<QString> typedPrompt(QByteArrayView line);

} // namespace nubble

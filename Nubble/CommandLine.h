#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <variant>

namespace nubble {

// What the program has been asked to do.
struct CommandLine {
    enum class Verb { Run, Sessions, Status, Help, Version };

    Verb verb = Verb::Run;
    bool json = false;           // of the status
    std::optional<QString> home; // another home folder, absolute
};

// One line for standard error.
struct UsageError {
    QString message;
};

// Pure but for one look at the folder that --home names. `arguments` are without the program's name.
[[nodiscard]] std::variant<CommandLine, UsageError> parseCommandLine(const QStringList &arguments);

[[nodiscard]] QString helpText();

} // namespace nubble

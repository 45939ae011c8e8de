#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <variant>

namespace nubble {

enum ExitStatus : int { ExitDone = 0, ExitFailed = 1, ExitWrongUsage = 2, ExitNotRunning = 3 };

// What the program has been asked to do.
struct CommandLine {
    enum class Verb {
        Run,
        Start,
        Show,
        Hide,
        Toggle,
        Sessions,
        Ask,
        Search,
        StartNotes,
        StopNotes,
        Status,
        AutostartOn,
        AutostartOff,
        Restart,
        Quit,
        Help,
        Version,
    };

    Verb verb = Verb::Run;
    bool json = false;           // of the status
    QString question;            // to ask; may be empty
    std::optional<QString> home; // another home folder, absolute

    // With which the program starts for the same home, and leaves an instance that is there as it is.
    [[nodiscard]] QStringList startArguments() const;

    bool operator==(const CommandLine &) const = default;
};

// One line for standard error.
struct UsageError {
    QString message;
};

// Pure but for one look at the folder that --home names. `arguments` are without the program's name.
[[nodiscard]] std::variant<CommandLine, UsageError> parseCommandLine(const QStringList &arguments);

[[nodiscard]] QString helpText();

// Writes to standard output. Returns the status: failed, as said on standard error, when that cannot be.
int print(const QByteArray &text);

// Says in one line on standard error why it is that status, which it returns.
int fail(ExitStatus status, const QString &message);

} // namespace nubble

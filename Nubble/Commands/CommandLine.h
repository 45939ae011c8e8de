#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace nubble {

enum ExitStatus : int { ExitDone = 0, ExitFailed = 1, ExitWrongUsage = 2, ExitNotRunning = 3 };

// What the program has been asked to do. Without the toolkit, as all of this file: most commands are over
// before it would have been loaded.
struct CommandLine {
    enum class Verb {
        Run,
        Start,
        Show,
        Hide,
        Toggle,
        Sessions,
        Next,
        Ask,
        Search,
        StartNotes,
        StopNotes,
        Status,
        NotificationsOn,
        NotificationsOff,
        AutostartOn,
        AutostartOff,
        Restart,
        Quit,
        Help,
        Version,
    };

    Verb verb = Verb::Run;
    bool json = false;               // of the status
    bool follow = false;             // the same
    std::string question;            // to ask; may be empty
    std::optional<std::string> home; // another home folder, absolute

    // The bus name of the instance: each home folder given by hand has one of its own.
    [[nodiscard]] std::string serviceName() const;

    // With which the program starts for the same home, and leaves an instance that is there as it is.
    [[nodiscard]] std::vector<std::string> startArguments() const;

    bool operator==(const CommandLine &) const = default;
};

// One line for standard error.
struct UsageError {
    std::string message;
};

// Pure but for one look at the folder that --home names. `arguments` are without the program's name.
[[nodiscard]] std::variant<CommandLine, UsageError> parseCommandLine(
    const std::vector<std::string> &arguments);

[[nodiscard]] std::string_view helpText();

// Writes to standard output, at once. Returns the status: failed, as said on standard error, when that cannot
// be.
int print(std::string_view text);

// Says in one line on standard error why it is that status, which it returns.
int fail(ExitStatus status, std::string_view message);

} // namespace nubble

#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace nubble {

// What goes on with a session in a new terminal window: in a login shell, which stays when the session ends.

// The user's, as the password database has it. Empty when it tells none. Any thread.
[[nodiscard]] QString loginShell();

// Which shell it is to be: `zsh` where that is an executable file, else `login`, if it is one that
// understands the command, else the system's. Any thread.
[[nodiscard]] QString resumeShell(const QString &zsh, const QString &login);

// The script. None for a command that no shell could run. Pure.
[[nodiscard]] std::optional<QByteArray> resumeScript(const QString &command, const QString &shell);

} // namespace nubble

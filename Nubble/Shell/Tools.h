#pragma once

#include <QString>

#include <optional>

namespace nubble {

class Home;

// Finds the outside commands that the program runs. Started by the desktop, it inherits a PATH that lacks the
// folders where people install command-line tools. Nothing is kept: a tool installed meanwhile is found at
// the next call. Any thread.
namespace Tools {

[[nodiscard]] std::optional<QString> inheritedPath(); // the process's own PATH

[[nodiscard]] bool isExecutableFile(const QString &path);

// The absolute path of the first executable file of that name.
[[nodiscard]] std::optional<QString> find(
    const QString &name, const Home &home, const std::optional<QString> &path = inheritedPath());

// The PATH for child processes.
[[nodiscard]] QString searchPath(const Home &home, const std::optional<QString> &path = inheritedPath());

} // namespace Tools

} // namespace nubble

#pragma once

#include <QStringList>

namespace nubble {

struct CommandLine;
class Home;

// The commands that no running instance carries out. Each needs a QCoreApplication and no display, and
// returns the exit status, having said on standard error why it is not 0.

// Starts an instance and has it do what the line asks for.
int startFor(const CommandLine &line, const Home &home);

// Starts Nubble at login, or no longer.
int setAutostart(const CommandLine &line, const Home &home);

// In the preferences, which the next instance reads.
int setNotifications(const CommandLine &line, const Home &home);

// See CommandLine::startArguments().
[[nodiscard]] QStringList startArguments(const CommandLine &line);

} // namespace nubble

#pragma once

#include <QStringList>

namespace nubble {

class Defaults;
class Home;

// The folders where Claude Code keeps its sessions and projects, absolute and without repetitions: the
// standard one, that of our own environment, and those in the preference "sessions.folders", separated by
// colons, where "~/" is the home folder; sixteen at most. Main thread only.
[[nodiscard]] QStringList claudeFolders(const Home &home, const Defaults &defaults);

} // namespace nubble

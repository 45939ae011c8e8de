#pragma once

class QString;

namespace nubble {

class Home;

// Starts an application by the identifier of its desktop entry, as the desktop's menu does: with its
// arguments, in a terminal if it wants one, by the bus if it is started there. It outlives the program. False
// when there is no such entry, or nothing on this machine to start it with. Main thread only; does not block.
[[nodiscard]] bool launchDesktopEntry(const QString &identifier, const Home &home);

} // namespace nubble

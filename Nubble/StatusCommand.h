#pragma once

namespace nubble {

class Home;
class SessionBus;

// Prints what the running instance shows; when none runs, what one fresh read finds. Needs a
// QCoreApplication, no display. Returns the exit status.
int printStatus(const Home &home, const SessionBus &bus, bool json);

} // namespace nubble

#pragma once

namespace nubble {

class Home;
class InstanceBus;

// Prints what the running instance shows; when none answers, what one fresh read finds, and says so on
// standard error. Needs a QCoreApplication, no display. Returns the exit status.
int printStatus(const Home &home, const InstanceBus &bus, bool json);

} // namespace nubble

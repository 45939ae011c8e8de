#pragma once

namespace nubble {

class Home;

// Prints what one fresh read finds, where no instance runs, and says so on standard error. Needs a
// QCoreApplication, no display. Returns the exit status.
int printStatus(const Home &home, bool json);

} // namespace nubble

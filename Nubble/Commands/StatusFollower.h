#pragma once

namespace nubble {

struct CommandLine;

// Prints a line about the running instance now and each time that it has changed, and one that it does not
// run, until nobody reads them any more. Without the toolkit; sleeps in between. Returns the exit status.
int followStatus(const CommandLine &line);

} // namespace nubble

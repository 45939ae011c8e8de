#pragma once

namespace nubble {

class Defaults;
class Home;

// Preferences of the program's former domain, brought over once.
namespace Migration {

// Copies what the new preferences lack, and switches on every add-on that can work here. Does nothing, and
// tries again at the next start, until the old domain holds a placement. Main thread only.
void fromBrindleCove(Defaults &defaults, const Home &home);

} // namespace Migration

} // namespace nubble

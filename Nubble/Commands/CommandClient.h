#pragma once

namespace nubble {

struct BusAnswer;
struct CommandLine;
class Home;
class InstanceBus;

// Has the running instance do what the line asks for, and starts one first for the commands that open
// something. Needs a QCoreApplication, no display. Returns the exit status, having said on standard error why
// it is not 0.
int runInInstance(const CommandLine &line, const InstanceBus &bus);

// Starts Nubble at login, or no longer. The same otherwise.
int setAutostart(const CommandLine &line, const Home &home);

// What the instance's answer means, said on standard error when it is not 0.
int exitStatusOf(const BusAnswer &answer);

} // namespace nubble

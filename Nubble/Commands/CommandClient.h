#pragma once

#include <optional>

namespace nubble {

struct CommandLine;
struct InstanceAnswer;
class InstanceClient;

// The commands, as far as the running instance carries them out. Without the toolkit. Each returns the exit
// status, having said on standard error why it is not 0.

// None where no instance runs and the command can do without one, or starts one first.
std::optional<int> runInInstance(const CommandLine &line, InstanceClient &client);

// For the commands that open something: in the instance that comes up within ten seconds.
int runOnceThere(const CommandLine &line, InstanceClient &client);

[[nodiscard]] int terminalWidth(); // columns of the terminal on standard output, 100 where there is none

int exitStatusOf(const InstanceAnswer &answer);

} // namespace nubble

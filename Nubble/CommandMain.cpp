#include <algorithm>
#include <array>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

#include "Commands/CommandClient.h"
#include "Commands/CommandLine.h"
#include "Commands/StatusFollower.h"
#include "Platform/InstanceClient.h"
#include "Platform/StandardDescriptors.h"

using namespace nubble;

// The program that users call. It carries out what the running instance is asked for, and becomes the large
// one for all else: that takes the toolkit, which costs ten times as much as a whole command.

namespace {

std::string ownPath()
{
    std::array<char, PATH_MAX> path{};
    const ssize_t length = ::readlink("/proc/self/exe", path.data(), path.size());
    return {path.data(), static_cast<size_t>(std::max<ssize_t>(length, 0))};
}

// With this program's path as its name, by which it is started again.
[[noreturn]] void becomePanel(char *argv[])
{
    std::string self = ownPath();
    const std::string folder = self.substr(0, self.rfind('/') + 1);
    argv[0] = self.data();
    for (const char *place : {NUBBLE_PANEL_FROM_HERE, "nubble-panel"}) // installed, and as it is built
        ::execv((folder + place).c_str(), argv);
    std::exit(fail(ExitFailed, "nubble-panel, which belongs to it, cannot be run"));
}

std::optional<int> carryOut(const CommandLine &line)
{
    using Verb = CommandLine::Verb;
    switch (line.verb) {
    case Verb::Help:
        return print(helpText());
    case Verb::Version:
        return print("nubble " NUBBLE_VERSION "\n");
    case Verb::AutostartOn:
    case Verb::AutostartOff:
        return std::nullopt;
    default:
        break;
    }
    if (line.follow)
        return followStatus(line);
    InstanceClient client(line.serviceName());
    return runInInstance(line, client);
}

} // namespace

int main(int argc, char *argv[])
{
    openStandardDescriptors();
    if (argc > 1 && std::string_view(argv[1]) == "--render-quenwick")
        becomePanel(argv);
    const auto parsed = parseCommandLine(std::vector<std::string>(argv + std::min(argc, 1), argv + argc));
    if (const auto *error = std::get_if<UsageError>(&parsed))
        return fail(ExitWrongUsage, error->message);
    if (const std::optional<int> status = carryOut(*std::get_if<CommandLine>(&parsed)))
        return *status;
    becomePanel(argv);
}

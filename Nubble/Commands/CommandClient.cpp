#include "Commands/CommandClient.h"

#include <cstdio>
#include <sys/ioctl.h>
#include <thread>
#include <unistd.h>

#include "Commands/CommandLine.h"
#include "Platform/InstanceClient.h"

using namespace std::chrono_literals;

namespace nubble {

namespace {

using Verb = CommandLine::Verb;
using Kind = InstanceAnswer::Kind;

struct Request {
    const char *method = nullptr;
    std::vector<InstanceClient::Argument> arguments = {};
    const char *methodAfterStart = nullptr; // none where nothing is started
};

Request requestFor(const CommandLine &line)
{
    switch (line.verb) {
    case Verb::Start:
        return {"Status", {}, "Status"}; // nothing but whether it is there
    case Verb::Hide:
        return {"Hide"};
    case Verb::Toggle:
        return {"Toggle", {}, "Show"};
    case Verb::Sessions:
        return {"OpenSessions", {}, "OpenSessions"};
    case Verb::Next:
        return {"Next"};
    case Verb::Ask:
        return {"Ask", {line.question}, "Ask"};
    case Verb::Search:
        return {"Search", {}, "Search"};
    case Verb::StartNotes:
        return {"StartNotes"};
    case Verb::StopNotes:
        return {"StopNotes"};
    case Verb::Status:
        return {"StatusText", {line.json ? "json" : "table", terminalWidth()}};
    case Verb::NotificationsOn:
        return {"NotificationsOn"};
    case Verb::NotificationsOff:
        return {"NotificationsOff"};
    case Verb::Restart:
        return {"Restart"};
    case Verb::Quit:
        return {"Quit"};
    default:
        return {"Show", {}, "Show"};
    }
}

// Whichever instance comes up first: another command may be starting one as well.
InstanceAnswer askOnceThere(
    InstanceClient &client, const char *method, const std::vector<InstanceClient::Argument> &arguments)
{
    const auto end = std::chrono::steady_clock::now() + 10s;
    while (true) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        InstanceAnswer answer = client.call(method, arguments, left);
        if (answer.kind != Kind::NotOwned || left <= 0ms)
            return answer;
        std::this_thread::sleep_for(20ms);
    }
}

} // namespace

std::optional<int> runInInstance(const CommandLine &line, InstanceClient &client)
{
    const Request request = requestFor(line);
    const bool isStatus = line.verb == Verb::Status;
    const bool isPreference = line.verb == Verb::NotificationsOn || line.verb == Verb::NotificationsOff;
    InstanceAnswer answer = client.call(request.method, request.arguments, isStatus ? 2s : 5s);
    if (answer.kind == Kind::NotOwned && (request.methodAfterStart || isStatus || isPreference))
        return std::nullopt;
    if (answer.kind == Kind::Reply && line.verb == Verb::Restart)
        answer = askOnceThere(client, "Status", {}); // what follows in a script finds the successor
    if (answer.kind == Kind::Reply && isStatus)
        return print(answer.text);
    return exitStatusOf(answer);
}

int runOnceThere(const CommandLine &line, InstanceClient &client)
{
    const Request request = requestFor(line);
    const InstanceAnswer answer = askOnceThere(client, request.methodAfterStart, request.arguments);
    if (answer.kind == Kind::NotOwned)
        return fail(ExitFailed, "Nubble does not start; without a command it says why");
    return exitStatusOf(answer);
}

int terminalWidth()
{
    winsize size{};
    return ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 100;
}

int exitStatusOf(const InstanceAnswer &answer)
{
    switch (answer.kind) {
    case Kind::Reply:
        return ExitDone;
    case Kind::NotOwned:
        std::fputs("Nubble is not running.\n", stderr);
        return ExitNotRunning;
    case Kind::Foreign:
        return fail(ExitFailed, "another program, or another version, has Nubble's name on the session bus");
    case Kind::Error:
        return fail(ExitFailed, answer.text);
    case Kind::Silence:
        return fail(ExitFailed, "the running instance does not answer");
    case Kind::BusSilence:
        break;
    }
    return fail(ExitFailed, "the session bus does not answer");
}

} // namespace nubble

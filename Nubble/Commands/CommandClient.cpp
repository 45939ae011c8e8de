#include "Commands/CommandClient.h"

#include <QDeadlineTimer>
#include <QThread>

#include <cstdio>

#include "Commands/CommandLine.h"
#include "Platform/Backend.h"
#include "Platform/Home.h"
#include "Platform/InstanceBus.h"
#include "Shell/Autostart.h"
#include "Shell/Relaunch.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

using Verb = CommandLine::Verb;

struct Request {
    QString method;
    QVariantList arguments;
    QString methodAfterStart; // empty where nothing is started
};

Request requestFor(const CommandLine &line)
{
    const auto opening = [](const QString &method, const QVariantList &arguments = {}) {
        return Request{method, arguments, method};
    };
    switch (line.verb) {
    case Verb::Start:
        return opening(u"Status"_s); // nothing but whether it is there
    case Verb::Hide:
        return {u"Hide"_s, {}, {}};
    case Verb::Toggle:
        return {u"Toggle"_s, {}, u"Show"_s};
    case Verb::Sessions:
        return opening(u"OpenSessions"_s);
    case Verb::Ask:
        return opening(u"Ask"_s, {line.question});
    case Verb::Search:
        return opening(u"Search"_s);
    case Verb::StartNotes:
        return {u"StartNotes"_s, {}, {}};
    case Verb::StopNotes:
        return {u"StopNotes"_s, {}, {}};
    case Verb::Restart:
        return {u"Restart"_s, {}, {}};
    case Verb::Quit:
        return {u"Quit"_s, {}, {}};
    default:
        return opening(u"Show"_s);
    }
}

Outcome start(const CommandLine &line, const InstanceBus &bus)
{
    if (!qtPlatform())
        return Outcome::failed(u"there is no display to show the panel on"_s);
    if (!bus.isConnected())
        return Outcome::failed(u"there is no session bus to reach Nubble by"_s);
    if (!Relaunch::ofThisProgram(line.startArguments()).startDetached())
        return Outcome::failed(u"Nubble cannot be started"_s);
    return Outcome::done();
}

// Whichever instance comes up first: another command may be starting one as well.
BusAnswer askOnceThere(const InstanceBus &bus, const QString &method, const QVariantList &arguments = {})
{
    QDeadlineTimer patience(10s);
    while (true) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(patience.remainingTimeAsDuration());
        BusAnswer answer = bus.call(method, arguments, left);
        if (answer.kind != BusAnswer::Kind::NotOwned || patience.hasExpired())
            return answer;
        QThread::msleep(20);
    }
}

} // namespace

int runInInstance(const CommandLine &line, const InstanceBus &bus)
{
    constexpr auto patience = 5s;
    const Request request = requestFor(line);
    BusAnswer answer = bus.call(request.method, request.arguments, patience);
    if (answer.kind == BusAnswer::Kind::NotOwned && !request.methodAfterStart.isEmpty()) {
        if (const Outcome started = start(line, bus); !started.isDone())
            return fail(ExitFailed, started.why());
        answer = askOnceThere(bus, request.methodAfterStart, request.arguments);
        if (answer.kind == BusAnswer::Kind::NotOwned)
            return fail(ExitFailed, u"Nubble does not start; without a command it says why"_s);
    }
    if (answer.kind == BusAnswer::Kind::Reply && line.verb == Verb::Restart)
        answer = askOnceThere(bus, u"Status"_s); // what follows in a script finds the successor
    return exitStatusOf(answer);
}

int setAutostart(const CommandLine &line, const Home &home)
{
    const Autostart autostart(home.configFolder());
    const Outcome outcome = line.verb == Verb::AutostartOn
        ? autostart.enable(Relaunch::ofThisProgram(line.startArguments()))
        : autostart.disable();
    return outcome.isDone() ? ExitDone : fail(ExitFailed, outcome.why());
}

int exitStatusOf(const BusAnswer &answer)
{
    switch (answer.kind) {
    case BusAnswer::Kind::Reply:
        return ExitDone;
    case BusAnswer::Kind::NotOwned:
        std::fputs("Nubble is not running.\n", stderr);
        return ExitNotRunning;
    case BusAnswer::Kind::Error:
        return fail(ExitFailed, answer.error);
    case BusAnswer::Kind::Silence:
        break;
    }
    return fail(ExitFailed, u"the running instance does not answer"_s);
}

} // namespace nubble

#include "Commands/StartCommand.h"

#include "Commands/AddonRequest.h"
#include "Commands/CommandClient.h"
#include "Commands/CommandLine.h"
#include "Platform/Backend.h"
#include "Platform/Home.h"
#include "Platform/InstanceClient.h"
#include "Platform/Outcome.h"
#include "Sessions/NoticePreferences.h"
#include "Shell/Autostart.h"
#include "Shell/Defaults.h"
#include "Shell/Relaunch.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

using Verb = CommandLine::Verb;

// A start would be in vain: the same preferences decide about the request then.
Outcome mayBeAsked(const CommandLine &line, const Home &home)
{
    if (line.verb != Verb::Ask && line.verb != Verb::Search)
        return Outcome::done();
    const Defaults defaults(Defaults::fileOf(u"com.brevandel.nubble"_s, home.configFolder()));
    const Addon addon = line.verb == Verb::Ask ? Addon::Ask : Addon::Search;
    return ActiveAddons(defaults).contains(addon) ? Outcome::done() : Outcome::failed(offText(addon));
}

Outcome start(const CommandLine &line)
{
    if (!qtPlatform())
        return Outcome::failed(u"there is no display to show the panel on"_s);
    if (!InstanceClient::isBusSetUp())
        return Outcome::failed(u"there is no session bus to reach Nubble by"_s);
    if (!Relaunch::ofThisProgram(startArguments(line)).startDetached())
        return Outcome::failed(u"Nubble cannot be started"_s);
    return Outcome::done();
}

int statusOf(const Outcome &outcome)
{
    return outcome.isDone() ? ExitDone : fail(ExitFailed, outcome.why().toStdString());
}

} // namespace

int startFor(const CommandLine &line, const Home &home)
{
    Outcome outcome = mayBeAsked(line, home);
    if (outcome.isDone())
        outcome = start(line);
    if (!outcome.isDone())
        return statusOf(outcome);
    InstanceClient client(line.serviceName());
    return runOnceThere(line, client);
}

int setAutostart(const CommandLine &line, const Home &home)
{
    const Autostart autostart(home.configFolder());
    return statusOf(
        line.verb == Verb::AutostartOn ? autostart.enable(Relaunch::ofThisProgram(startArguments(line)))
                                       : autostart.disable());
}

int setNotifications(const CommandLine &line, const Home &home)
{
    const bool on = line.verb == Verb::NotificationsOn;
    const QString file = Defaults::fileOf(u"com.brevandel.nubble"_s, home.configFolder());
    {
        Defaults defaults(file);
        NoticePreferences::setOn(defaults, on);
    }
    const auto written = NoticePreferences::in(Defaults(file));
    const bool isDone = written.waiting == on && written.done == on;
    return isDone ? ExitDone : fail(ExitFailed, file.toStdString() + " cannot be written");
}

QStringList startArguments(const CommandLine &line)
{
    QStringList arguments;
    for (const std::string &argument : line.startArguments())
        arguments.append(QString::fromLocal8Bit(argument));
    return arguments;
}

} // namespace nubble

#include <QApplication>
#include <QPalette>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <vector>

#include "AppDelegate.h"
#include "Commands/CommandClient.h"
#include "Commands/CommandLine.h"
#include "Commands/ControlObject.h"
#include "Commands/StatusCommand.h"
#include "Platform/InstanceBus.h"
#include "Platform/InstanceLock.h"
#include "Platform/StandardDescriptors.h"
#include "Platform/System.h"
#include "Platform/TerminationSignals.h"
#include "RenderPreview.h"
#include "Shell/Migration.h"
#include "Widgets/Palette.h"
#include "Widgets/Typography.h"

using namespace Qt::StringLiterals;
using namespace nubble;

namespace {

// At once: the bus's thread may still be at work, and complains when the program is taken apart around it.
[[noreturn]] void leave(int status)
{
    std::fflush(nullptr);
    std::_Exit(status);
}

void setUpLook()
{
    QApplication::setPalette(Palette::widgets());
    QApplication::setFont(Typography::menu(), "QMenu");
}

[[noreturn]] void runCommand(const CommandLine &line, const Home &home)
{
    using Verb = CommandLine::Verb;
    if (line.verb == Verb::AutostartOn || line.verb == Verb::AutostartOff)
        leave(setAutostart(line, home));
    const auto bus = System::instanceBus(ControlObject::serviceName(line));
    leave(line.verb == Verb::Status ? printStatus(home, *bus, line.json) : runInInstance(line, *bus));
}

int run(int argc, char *argv[], QByteArray platform, const CommandLine &line, const Home &home)
{
    auto fonts = System::fontPreload();
    // As an argument, for the environment would be handed down to every child process.
    std::vector<char *> qtArguments(argv, argv + argc);
    QByteArray option("-platform");
    if (!platform.isEmpty())
        qtArguments.insert(qtArguments.begin() + 1, {option.data(), platform.data()});
    int count = static_cast<int>(qtArguments.size());
    qtArguments.push_back(nullptr);
    QCoreApplication::setAttribute(Qt::AA_DisableSessionManager); // which would start it again by itself
    QApplication application(count, qtArguments.data());
    QApplication::setApplicationName(u"Nubble"_s); // desktops list the status item by it
    QApplication::setApplicationDisplayName(u"Nubble"_s);
    QApplication::setDesktopFileName(u"com.brevandel.nubble"_s);
    setUpLook();
    QApplication::setQuitOnLastWindowClosed(false);

    const auto bus = System::instanceBus(ControlObject::serviceName(line));
    ControlObject control;
    if (!bus->claim(&control))
        leave(line.verb == CommandLine::Verb::Start ? ExitDone : runInInstance(line, *bus));
    InstanceLock lock(home.configFolder() + u"/com.brevandel.nubble.lock");
    constexpr std::chrono::seconds forPredecessor(3);
    if (!bus->isConnected() && lock.isHeldElsewhere(forPredecessor))
        return fail(ExitFailed, u"Nubble runs already, and there is no session bus to reach it by"_s);

    {
        Defaults defaults(Defaults::fileOf(u"com.brevandel.nubble"_s, home.configFolder()));
        Migration::fromBrindleCove(defaults, home);
    }
    fonts.reset();
    AppDelegate delegate(home, *bus, Relaunch::ofThisProgram(line.startArguments()));
    control.serve(delegate.commands());
    const auto termination = System::terminationSignals();
    QObject::connect(termination.get(), &TerminationSignals::received, &application, &AppDelegate::end);
    return QApplication::exec();
}

} // namespace

int main(int argc, char *argv[])
{
    openStandardDescriptors();
    if (const std::optional<int> status = RenderPreview::runIfAsked(argc, argv))
        return *status;
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    const auto parsed = parseCommandLine(arguments);
    if (const auto *error = std::get_if<UsageError>(&parsed))
        return fail(ExitWrongUsage, error->message);
    const CommandLine &line = *std::get_if<CommandLine>(&parsed);
    const Home home = line.home ? Home(*line.home) : Home::ofUser();

    switch (line.verb) {
    case CommandLine::Verb::Help:
        return print(helpText().toUtf8());
    case CommandLine::Verb::Version:
        return print("nubble " NUBBLE_VERSION "\n");
    case CommandLine::Verb::Run:
    case CommandLine::Verb::Start:
        if (const std::optional<QByteArray> platform = qtPlatform())
            return run(argc, argv, *platform, line, home);
        break;
    default:
        break;
    }
    const QCoreApplication application(argc, argv);
    runCommand(line, home);
}

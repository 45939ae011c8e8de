#include <QApplication>
#include <QCryptographicHash>
#include <QPalette>
#include <QToolTip>

#include <cstdio>
#include <optional>
#include <vector>

#include "AppDelegate.h"
#include "CommandLine.h"
#include "Control.h"
#include "Panel/Palette.h"
#include "Platform/Freedesktop/FontPreload.h"
#include "Platform/Linux/TerminationSignals.h"
#include "Shell/Migration.h"
#include "StatusCommand.h"

using namespace Qt::StringLiterals;
using namespace nubble;

namespace {

constexpr int exitFailure = 1;
constexpr int exitUsage = 2;

int fail(int status, const QString &message)
{
    std::fprintf(stderr, "nubble: %s\n", qUtf8Printable(message));
    return status;
}

// Each home folder given by hand has an instance of its own.
QString serviceName(const CommandLine &line)
{
    QString name = u"com.brevandel.nubble"_s;
    if (!line.home)
        return name;
    const QByteArray hash = QCryptographicHash::hash(line.home->toUtf8(), QCryptographicHash::Sha1);
    return name + u".home_"_s + QString::fromLatin1(hash.toHex());
}

int askRunningInstance(const SessionBus &bus, const QString &method)
{
    constexpr int patience = 5000;
    return bus.call(method, {}, patience) ? 0 : fail(exitFailure, u"the running instance does not answer"_s);
}

int run(int argc, char *argv[], const CommandLine &line, const Home &home)
{
    std::optional<QByteArray> platform = qtPlatform();
    if (!platform)
        return fail(exitFailure, u"there is no display to show the panel on; see nubble --help"_s);
    std::optional<FontPreload> fonts(std::in_place);
    // As an argument, for the environment would be handed down to every child process.
    std::vector<char *> qtArguments(argv, argv + argc);
    QByteArray option("-platform");
    if (!platform->isEmpty())
        qtArguments.insert(qtArguments.begin() + 1, {option.data(), platform->data()});
    int count = static_cast<int>(qtArguments.size());
    qtArguments.push_back(nullptr);
    QApplication application(count, qtArguments.data());
    QApplication::setApplicationName(u"nubble"_s);
    QApplication::setApplicationDisplayName(u"Nubble"_s);
    QApplication::setPalette(Palette::widgets());
    QToolTip::setPalette(Palette::widgets());
    QApplication::setQuitOnLastWindowClosed(false);

    const bool openSessions = line.verb == CommandLine::Verb::Sessions;
    SessionBus bus(serviceName(line));
    QObject exported;
    auto *control = new Control(&exported);
    if (!bus.claim(&exported))
        return askRunningInstance(bus, openSessions ? u"OpenSessions"_s : u"Show"_s);

    {
        Defaults defaults(Defaults::fileOf(u"com.brevandel.nubble"_s, home.configFolder()));
        Migration::fromBrindleCove(defaults, home);
    }
    fonts.reset();
    AppDelegate delegate(home, bus);
    control->serve(delegate);
    const TerminationSignals signals_;
    QObject::connect(&signals_, &TerminationSignals::received, &application, &QCoreApplication::quit);
    if (openSessions)
        delegate.openSessions();
    return QApplication::exec();
}

} // namespace

int main(int argc, char *argv[])
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    const auto parsed = parseCommandLine(arguments);
    if (const auto *error = std::get_if<UsageError>(&parsed))
        return fail(exitUsage, error->message);
    const CommandLine &line = *std::get_if<CommandLine>(&parsed);
    const Home home = line.home ? Home(*line.home) : Home::ofUser();

    switch (line.verb) {
    case CommandLine::Verb::Help:
        std::fputs(qUtf8Printable(helpText()), stdout);
        return 0;
    case CommandLine::Verb::Version:
        std::puts("nubble " NUBBLE_VERSION);
        return 0;
    case CommandLine::Verb::Status: {
        const QCoreApplication application(argc, argv);
        return printStatus(home, SessionBus(serviceName(line)), line.json);
    }
    case CommandLine::Verb::Run:
    case CommandLine::Verb::Sessions:
        break;
    }
    return run(argc, argv, line, home);
}

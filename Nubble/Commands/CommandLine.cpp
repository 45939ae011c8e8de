#include "Commands/CommandLine.h"

#include <QCommandLineParser>
#include <QFileInfo>

#include <array>
#include <cerrno>
#include <cstdio>

#include "Platform/Outcome.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

struct Spelling {
    QStringView words;
    CommandLine::Verb verb;
};

constexpr std::array spellings{
    Spelling{u"start", CommandLine::Verb::Start},
    Spelling{u"show", CommandLine::Verb::Show},
    Spelling{u"hide", CommandLine::Verb::Hide},
    Spelling{u"toggle", CommandLine::Verb::Toggle},
    Spelling{u"sessions", CommandLine::Verb::Sessions},
    Spelling{u"search", CommandLine::Verb::Search},
    Spelling{u"notes start", CommandLine::Verb::StartNotes},
    Spelling{u"notes stop", CommandLine::Verb::StopNotes},
    Spelling{u"status", CommandLine::Verb::Status},
    Spelling{u"autostart on", CommandLine::Verb::AutostartOn},
    Spelling{u"autostart off", CommandLine::Verb::AutostartOff},
    Spelling{u"restart", CommandLine::Verb::Restart},
    Spelling{u"quit", CommandLine::Verb::Quit},
};

Outcome readCommand(CommandLine &line, const QStringList &words)
{
    if (words.isEmpty())
        return Outcome::done();
    if (words.first() == u"ask") {
        line.verb = CommandLine::Verb::Ask;
        line.question = words.sliced(1).join(u' ').trimmed();
        return Outcome::done();
    }
    const QString command = words.join(u' ');
    for (const Spelling &spelling : spellings)
        if (spelling.words == command) {
            line.verb = spelling.verb;
            return Outcome::done();
        }
    if (command == u"notes")
        return Outcome::failed(u"\"notes\" needs \"start\" or \"stop\"."_s);
    if (command == u"autostart")
        return Outcome::failed(u"\"autostart\" needs \"on\" or \"off\"."_s);
    return Outcome::failed(u"There is no command \"%1\"."_s.arg(command));
}

Outcome readOptions(CommandLine &line, const QCommandLineParser &parser)
{
    if (parser.isSet(u"home"_s)) {
        const QFileInfo folder(parser.value(u"home"_s));
        if (!folder.isDir())
            return Outcome::failed(u"--home needs an existing folder."_s);
        line.home = folder.canonicalFilePath(); // one folder, one instance, however it is spelled
    }
    line.json = parser.isSet(u"json"_s);
    if (line.json && line.verb != CommandLine::Verb::Status)
        return Outcome::failed(u"--json belongs to the command \"status\"."_s);
    return Outcome::done();
}

} // namespace

QStringList CommandLine::startArguments() const
{
    const QStringList command{u"start"_s};
    return home ? QStringList{u"--home"_s, *home} + command : command;
}

std::variant<CommandLine, UsageError> parseCommandLine(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    using Option = QCommandLineOption;
    parser.addOptions(
        {Option(QStringList{u"h"_s, u"help"_s}), Option(u"version"_s), Option(u"json"_s),
         Option(u"home"_s, {}, u"DIR"_s)});
    const bool understood = parser.parse(QStringList(u"nubble"_s) + arguments);
    CommandLine line;
    if (parser.isSet(u"help"_s)) { // whatever else is there
        line.verb = CommandLine::Verb::Help;
        return line;
    }
    Outcome outcome = understood ? Outcome::done() : Outcome::failed(parser.errorText());
    if (outcome.isDone() && parser.isSet(u"version"_s)) {
        line.verb = CommandLine::Verb::Version;
        return line;
    }
    if (outcome.isDone())
        outcome = readCommand(line, parser.positionalArguments());
    if (outcome.isDone())
        outcome = readOptions(line, parser);
    if (!outcome.isDone())
        return UsageError{outcome.why() + u" See nubble --help."};
    return line;
}

QString helpText()
{
    return u"Usage: nubble [--home DIR] [COMMAND]\n"
           "\n"
           "Shows at the edge of the screen what the Claude Code sessions on this machine are doing.\n"
           "Without a command it starts, or shows the panel of the instance that runs already.\n"
           "\n"
           "Commands, for key bindings and scripts:\n"
           "  show, hide, toggle  the panel\n"
           "  sessions            open the list of sessions, with the keyboard in it\n"
           "  ask [QUESTION...]   ask Claude about the screen, at once if there is a question\n"
           "  search              open the search of chats\n"
           "  notes start|stop    start or stop meeting notes\n"
           "  status [--json]     print what is shown, as a table or as JSON\n"
           "  autostart on|off    start Nubble at login, or no longer\n"
           "  start               start Nubble, or leave the running instance as it is\n"
           "  restart, quit       the running instance\n"
           "\n"
           "show, toggle, sessions, ask and search start Nubble when it is not running.\n"
           "\n"
           "Options:\n"
           "  --home DIR          run against another home folder, apart from your own instance\n"
           "                      and preferences\n"
           "  -h, --help          print this help\n"
           "  --version           print the version\n"
           "  --                  end the options: nubble ask -- --why\n"
           "\n"
           "Exit status: 0 done, 1 could not be done, 2 wrong usage, 3 not running.\n"_s;
}

int print(const QByteArray &text)
{
    const auto size = static_cast<size_t>(text.size());
    const bool isWritten = std::fwrite(text.constData(), 1, size, stdout) == size && std::fflush(stdout) == 0;
    return isWritten ? ExitDone : fail(ExitFailed, u"standard output: "_s + qt_error_string(errno));
}

int fail(ExitStatus status, const QString &message)
{
    std::fprintf(stderr, "nubble: %s\n", qUtf8Printable(message.simplified()));
    return status;
}

} // namespace nubble

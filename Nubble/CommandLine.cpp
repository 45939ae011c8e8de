#include "CommandLine.h"

#include <QFileInfo>

#include <array>

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

struct Spelling {
    QStringView text;
    CommandLine::Verb verb;
};

constexpr std::array verbs{
    Spelling{u"sessions", CommandLine::Verb::Sessions}, Spelling{u"status", CommandLine::Verb::Status},
    Spelling{u"--help", CommandLine::Verb::Help},       Spelling{u"-h", CommandLine::Verb::Help},
    Spelling{u"--version", CommandLine::Verb::Version},
};

std::optional<CommandLine::Verb> verbFrom(const QString &argument)
{
    for (const Spelling &spelling : verbs)
        if (spelling.text == argument)
            return spelling.verb;
    return std::nullopt;
}

UsageError unknown(const QString &argument)
{
    const QString kind = argument.startsWith(u'-') ? u"option"_s : u"command"_s;
    return {u"unknown %1 \"%2\"; see nubble --help"_s.arg(kind, argument)};
}

} // namespace

std::variant<CommandLine, UsageError> parseCommandLine(const QStringList &arguments)
{
    CommandLine line;
    bool verbGiven = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString &argument = arguments.at(i);
        if (argument == u"--home") {
            const QFileInfo folder(arguments.value(++i));
            if (!folder.isDir())
                return UsageError{u"--home needs an existing folder"_s};
            line.home = folder.canonicalFilePath(); // one folder, one instance, however it is spelled
        } else if (argument == u"--json") {
            line.json = true;
        } else if (const auto verb = verbFrom(argument); verb && !verbGiven) {
            line.verb = *verb;
            verbGiven = true;
        } else {
            return unknown(argument);
        }
    }
    if (line.json && line.verb != CommandLine::Verb::Status)
        return unknown(u"--json"_s);
    return line;
}

QString helpText()
{
    return u"Usage: nubble [--home DIR] [COMMAND]\n"
           "\n"
           "Shows at the edge of the screen what the Claude Code sessions on this machine are doing.\n"
           "Without a command it starts, or shows the panel of the instance that runs already.\n"
           "\n"
           "Commands:\n"
           "  sessions          open the list of sessions, with the keyboard in it\n"
           "  status [--json]   print what is shown, as a table or as JSON\n"
           "\n"
           "Options:\n"
           "  --home DIR        run against another home folder, apart from your own instance\n"
           "                    and preferences\n"
           "  -h, --help        print this help\n"
           "  --version         print the version\n"_s;
}

} // namespace nubble

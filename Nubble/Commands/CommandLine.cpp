#include "Commands/CommandLine.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>

namespace nubble {

namespace {

using Verb = CommandLine::Verb;

struct Spelling {
    std::string_view words;
    Verb verb;
};

constexpr std::array spellings{
    Spelling{"start", Verb::Start},
    Spelling{"show", Verb::Show},
    Spelling{"hide", Verb::Hide},
    Spelling{"toggle", Verb::Toggle},
    Spelling{"sessions", Verb::Sessions},
    Spelling{"next", Verb::Next},
    Spelling{"search", Verb::Search},
    Spelling{"notes start", Verb::StartNotes},
    Spelling{"notes stop", Verb::StopNotes},
    Spelling{"status", Verb::Status},
    Spelling{"notifications on", Verb::NotificationsOn},
    Spelling{"notifications off", Verb::NotificationsOff},
    Spelling{"autostart on", Verb::AutostartOn},
    Spelling{"autostart off", Verb::AutostartOff},
    Spelling{"restart", Verb::Restart},
    Spelling{"quit", Verb::Quit},
};

constexpr std::string_view spaces = " \t\n\v\f\r";

std::string joined(const std::vector<std::string> &words, size_t first)
{
    std::string text;
    for (size_t i = first; i < words.size(); ++i)
        text += (i > first ? " " : "") + words.at(i);
    return text;
}

std::string trimmed(const std::string &text)
{
    const size_t first = text.find_first_not_of(spaces);
    return first == std::string::npos ? std::string()
                                      : text.substr(first, text.find_last_not_of(spaces) - first + 1);
}

// The options and words of a command line, not yet what they mean together.
struct Arguments {
    std::vector<std::string> words;
    std::optional<std::string> home;
    bool help = false;
    bool version = false;
    bool json = false;
    bool follow = false;
    std::string error; // the first; empty for none
};

bool *switchOf(Arguments &read, std::string_view name)
{
    if (name == "help" || name == "h")
        return &read.help;
    if (name == "version")
        return &read.version;
    if (name == "json")
        return &read.json;
    return name == "follow" ? &read.follow : nullptr;
}

// One that begins with a dash, and for --home the next argument, which it then steps over.
void readOption(Arguments &read, const std::vector<std::string> &arguments, size_t &at)
{
    std::string_view name = arguments.at(at);
    name.remove_prefix(name.starts_with("--") ? 2 : 1);
    const size_t equals = name.find('=');
    const bool hasValue = equals != std::string_view::npos;
    const std::string_view value = hasValue ? name.substr(equals + 1) : std::string_view();
    name = name.substr(0, equals);
    std::string error;
    if (name == "home") {
        if (hasValue)
            read.home = value;
        else if (at + 1 < arguments.size())
            read.home = arguments.at(++at);
        else
            error = "Missing value after '--home'.";
    } else if (bool *option = switchOf(read, name)) {
        *option = true;
        if (hasValue)
            error = "Unexpected value after '--" + std::string(name) + "'.";
    } else {
        error = "Unknown option '" + std::string(name) + "'.";
    }
    if (read.error.empty())
        read.error = error;
}

Arguments readArguments(const std::vector<std::string> &arguments)
{
    Arguments read;
    bool options = true;
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string &each = arguments.at(i);
        if (options && each == "--")
            options = false;
        else if (options && each.starts_with('-') && each != "-")
            readOption(read, arguments, i);
        else
            read.words.push_back(each);
    }
    return read;
}

// Each of these returns what is wrong; empty when nothing is.
std::string readCommand(CommandLine &line, const std::vector<std::string> &words)
{
    if (words.empty())
        return {};
    if (words.front() == "ask") {
        line.verb = Verb::Ask;
        line.question = trimmed(joined(words, 1));
        return {};
    }
    const std::string command = joined(words, 0);
    const auto *spelling = std::ranges::find(spellings, std::string_view(command), &Spelling::words);
    if (spelling != spellings.end()) {
        line.verb = spelling->verb;
        return {};
    }
    if (command == "notes")
        return R"("notes" needs "start" or "stop".)";
    if (command == "autostart" || command == "notifications")
        return '"' + command + R"(" needs "on" or "off".)";
    return "There is no command \"" + command + "\".";
}

// One folder, one instance, however it is spelled.
std::optional<std::string> existingFolder(const std::string &path)
{
    struct stat found { };
    if (::stat(path.c_str(), &found) != 0 || !S_ISDIR(found.st_mode))
        return std::nullopt;
    char *canonical = ::realpath(path.c_str(), nullptr);
    std::optional<std::string> folder;
    if (canonical)
        folder = canonical;
    std::free(canonical);
    return folder;
}

std::string readOptions(CommandLine &line, const Arguments &read)
{
    line.home = read.home ? existingFolder(*read.home) : std::nullopt;
    if (read.home && !line.home)
        return "--home needs an existing folder.";
    line.json = read.json;
    line.follow = read.follow;
    if ((line.json || line.follow) && line.verb != Verb::Status)
        return std::string(line.json ? "--json" : "--follow") + " belongs to the command \"status\".";
    return {};
}

} // namespace

std::string CommandLine::serviceName() const
{
    std::string name = "com.brevandel.nubble";
    if (!home)
        return name;
    // FNV-1a: short, the same in every program, and nobody gains by two folders of his with one hash.
    uint64_t hash = 0xcbf29ce484222325;
    for (const char byte : *home)
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3;
    std::array<char, 17> digits{};
    std::snprintf(digits.data(), digits.size(), "%016llx", static_cast<unsigned long long>(hash));
    return name + ".home_" + digits.data();
}

std::vector<std::string> CommandLine::startArguments() const
{
    if (home)
        return {"--home", *home, "start"};
    return {"start"};
}

std::variant<CommandLine, UsageError> parseCommandLine(const std::vector<std::string> &arguments)
{
    const Arguments read = readArguments(arguments);
    CommandLine line;
    if (read.help) { // whatever else is there
        line.verb = Verb::Help;
        return line;
    }
    std::string error = read.error;
    if (error.empty() && read.version) {
        line.verb = Verb::Version;
        return line;
    }
    if (error.empty())
        error = readCommand(line, read.words);
    if (error.empty())
        error = readOptions(line, read);
    if (!error.empty())
        return UsageError{error + " See nubble --help."};
    return line;
}

std::string_view helpText()
{
    return "Usage: nubble [--home DIR] [COMMAND]\n"
           "\n"
           "Shows at the edge of the screen what the Claude Code sessions on this machine are doing.\n"
           "Without a command it starts, or shows the panel of the instance that runs already.\n"
           "\n"
           "Commands, for key bindings and scripts:\n"
           "  show, hide, toggle  the panel\n"
           "  sessions            open the list of sessions, with the keyboard in it\n"
           "  next                bring forward the session that needs you most\n"
           "  ask [QUESTION...]   ask Claude about the screen, at once if there is a question\n"
           "  search              open the search of chats\n"
           "  notes start|stop    start or stop meeting notes\n"
           "  status [--json]     print what is shown, as a table or as JSON\n"
           "  status --follow     print one line now and at each change, for status bars;\n"
           "                      with --json a JSON object\n"
           "  notifications on|off\n"
           "                      tell you when a session waits or has finished, or no longer\n"
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
           "Exit status: 0 done, 1 could not be done, 2 wrong usage, 3 not running.\n";
}

int print(std::string_view text)
{
    const bool isWritten =
        std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
    return isWritten ? ExitDone : fail(ExitFailed, std::string("standard output: ") + std::strerror(errno));
}

int fail(ExitStatus status, std::string_view message)
{
    std::string line;
    for (size_t at = message.find_first_not_of(spaces); at != std::string_view::npos;
         at = message.find_first_not_of(spaces, at)) {
        const size_t end = std::min(message.find_first_of(spaces, at), message.size());
        line += ' ' + std::string(message.substr(at, end - at));
        at = end;
    }
    std::fprintf(stderr, "nubble:%s\n", line.c_str());
    return status;
}

} // namespace nubble

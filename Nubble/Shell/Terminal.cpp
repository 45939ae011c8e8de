#include "Shell/Terminal.h"

#include <QDir>
#include <QFile>
#include <QSocketNotifier>
#include <QStandardPaths>

#include <array>
#include <climits>
#include <cstring>
#include <functional>
#include <sys/inotify.h>
#include <unistd.h>
#include <utility>

#include "Platform/MainThread.h"
#include "Shell/ChildProcess.h"
#include "Shell/Tools.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr auto patience = 3s; // until a terminal that still runs is taken to have a window

struct Known {
    QLatin1StringView name;
    QLatin1StringView options; // before the program, parted by spaces
    bool keepsSpaces = true;   // in the program's path
};

// The two that stand for the user's choice, the desktops' own, those that people add, and what comes with X.
constexpr std::array known{
    Known{"xdg-terminal-exec"_L1, {}},
    Known{"x-terminal-emulator"_L1, "-e"_L1, false}, // some that it may be do not
    Known{"gnome-terminal"_L1, "--"_L1},
    Known{"ptyxis"_L1, "--new-window --"_L1},
    Known{"konsole"_L1, "-e"_L1},
    Known{"xfce4-terminal"_L1, "-x"_L1},
    Known{"mate-terminal"_L1, "-x"_L1},
    Known{"lxterminal"_L1, "-e"_L1},
    Known{"qterminal"_L1, "-e"_L1, false},
    Known{"tilix"_L1, "-e"_L1, false},
    Known{"terminator"_L1, "-x"_L1},
    Known{"ghostty"_L1, "-e"_L1},
    Known{"kitty"_L1, {}},
    Known{"alacritty"_L1, "-e"_L1},
    Known{"wezterm"_L1, "start --"_L1},
    Known{"foot"_L1, {}},
    Known{"urxvt"_L1, "-e"_L1},
    Known{"st"_L1, "-e"_L1},
    Known{"xterm"_L1, "-e"_L1},
};

// Not where command-line tools are found besides: the desktop runs its own terminals from its PATH.
QStringList searchedFolders()
{
    QStringList folders =
        Tools::inheritedPath().value_or(u"/usr/local/bin:/usr/bin:/bin"_s).split(u':', Qt::SkipEmptyParts);
    folders.removeIf([](const QString &each) { return !QDir::isAbsolutePath(each); });
    return folders;
}

QList<Command> installedTerminals(const QString &program, const QString &folder)
{
    const QStringList folders = searchedFolders();
    const bool hasSpaces = program.contains(u' ');
    QList<Command> found;
    for (const Known &each : known) {
        const bool isFit = !folders.isEmpty() && (each.keepsSpaces || !hasSpaces);
        const QString path = isFit ? QStandardPaths::findExecutable(each.name, folders) : QString();
        if (path.isEmpty())
            continue;
        const QStringList options = QString(each.options).split(u' ', Qt::SkipEmptyParts);
        found.append({.program = path, .arguments = options + QStringList(program), .folder = folder});
    }
    return found;
}

} // namespace

// Sees that a program begins, since its file is opened then: so a terminal that fails is told from one whose
// window was there and has been closed, and no second one opens.
class Terminal::Beginning {
public:
    Beginning(const QString &program, std::function<void()> begun)
        : m_inotify(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
    {
        if (m_inotify < 0)
            return;
        ::inotify_add_watch(m_inotify, QFile::encodeName(program).constData(), IN_OPEN | IN_ONESHOT);
        m_notifier = std::make_unique<QSocketNotifier>(m_inotify, QSocketNotifier::Read);
        QObject::connect(
            m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(),
            [this, begun = std::move(begun)] {
                if (hasBegun())
                    begun();
            });
    }
    ~Beginning()
    {
        m_notifier.reset();
        if (m_inotify >= 0)
            ::close(m_inotify);
    }
    Q_DISABLE_COPY_MOVE(Beginning)

    [[nodiscard]] bool hasBegun()
    {
        alignas(inotify_event) std::array<char, sizeof(inotify_event) + NAME_MAX + 1> buffer{};
        inotify_event event{};
        if (m_inotify >= 0 && ::read(m_inotify, buffer.data(), buffer.size()) >= qsizetype(sizeof event)) {
            std::memcpy(&event, buffer.data(), sizeof event);
            m_seen = m_seen || (event.mask & IN_OPEN) != 0;
        }
        return m_seen;
    }

private:
    int m_inotify;
    bool m_seen = false;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

Terminal::Terminal(QString program, QString folder, QObject *parent)
    : QObject(parent), m_program(std::move(program)), m_folder(std::move(folder))
{
    m_patience.setSingleShot(true);
    m_patience.callOnTimeout(this, [this] { conclude(true); });
}

Terminal::~Terminal() = default;

void Terminal::open()
{
    assertMainThread("Nubble/Shell/Terminal");
    m_candidates = installedTerminals(m_program, m_folder);
    m_beginning = std::make_unique<Beginning>(m_program, [this] { conclude(true); });
    QMetaObject::invokeMethod(this, &Terminal::tryNext, Qt::QueuedConnection);
}

void Terminal::tryNext()
{
    if (m_candidates.isEmpty()) {
        conclude(false);
        return;
    }
    using enum ChildProcess::Delivery;
    using enum ChildProcess::Lifetime;
    m_process = std::make_unique<ChildProcess>(m_candidates.takeFirst(), CommandLimits(), None, ItsOwn);
    connect(m_process.get(), &ChildProcess::ended, this, &Terminal::decide);
    m_patience.start(patience);
    m_process->start();
}

// A terminal that hands the program to one that runs already ends at once, with 0.
void Terminal::decide(const CommandEnd &end)
{
    const bool succeeded = end.kind == CommandEnd::Kind::Exited && end.code == 0;
    if (succeeded || m_beginning->hasBegun())
        conclude(true);
    else
        tryNext();
}

void Terminal::conclude(bool isOpen)
{
    if (std::exchange(m_isDecided, true))
        return;
    m_patience.stop();
    if (m_process)
        m_process->disconnect(this);
    Q_EMIT opened(isOpen);
}

} // namespace nubble

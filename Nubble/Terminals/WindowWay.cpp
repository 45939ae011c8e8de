#include "Terminals/WindowWay.h"

#include <algorithm>
#include <sys/stat.h>
#include <unistd.h>

#include "Platform/ProcessTable.h"
#include "Shell/Command.h"
#include "Terminals/KittyWindow.h"
#include "Terminals/KonsoleTab.h"
#include "Terminals/ScreenWindow.h"
#include "Terminals/TerminalCommand.h"
#include "Terminals/TmuxPane.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr int mostAncestors = 24;
constexpr CommandLimits lookupLimits{.output = 100, .time = 1s};
constexpr int mostMultiplexers = 3; // within each other
constexpr qsizetype mostClients = 4;

bool isOwnSocket(const QString &path)
{
    struct stat info { };
    return ::lstat(path.toLocal8Bit().constData(), &info) == 0 && S_ISSOCK(info.st_mode)
        && info.st_uid == ::getuid();
}

bool isRemote(const QString &program)
{
    return program.startsWith("sshd"_L1) || program == "mosh-server"_L1 || program == "dropbear"_L1;
}

} // namespace

ParentLookup TerminalLookups::askingPs(const ProcessTable &processes, const QString &ps)
{
    return [&processes, ps](pid_t pid) -> std::optional<pid_t> {
        const Command command{ps, {u"-o"_s, u"ppid="_s, u"-p"_s, QString::number(pid)}};
        const CommandEnd end = runCommand(command, {}, lookupLimits);
        if (end.kind == CommandEnd::Kind::NotStarted) {
            const auto process = processes.find(pid);
            return process ? process->parent : std::nullopt;
        }
        bool isNumber = false;
        const pid_t parent = end.output.trimmed().toInt(&isNumber);
        return isNumber ? std::optional(parent) : std::nullopt;
    };
}

WindowWayFinder::WindowWayFinder(TerminalLookups lookups, QSet<pid_t> owners)
    : m_lookups(std::move(lookups)), m_owners(std::move(owners))
{
}

// A multiplexer's variables count where its server is an ancestor, and nearer than any application: those
// inherit them and hand them on.
WindowWay WindowWayFinder::find(pid_t pid, int multiplexers) const
{
    const TerminalVariables variables = terminalVariables(m_lookups.processes.environment(pid));
    const QList<pid_t> chain = withAncestors(pid);
    const auto isIn = [&chain](const auto &multiplexer) {
        return multiplexer && chain.contains(multiplexer->server);
    };
    WindowWay way{.chain = chain, .window = variables.window};
    if (isIn(variables.tmux) && multiplexers < mostMultiplexers)
        way = throughTmux(*variables.tmux, multiplexers);
    else if (leadsToWindow(way))
        addTab(way, variables);
    else
        way.obstacle = obstacle(chain, variables.isWayland);
    if (isIn(variables.screen))
        addScreen(way, *variables.screen);
    return way;
}

QList<pid_t> WindowWayFinder::withAncestors(pid_t pid) const
{
    QList<pid_t> chain{pid};
    while (chain.size() <= mostAncestors && !m_owners.contains(chain.last())) {
        const auto parent = m_lookups.parentOf(chain.last());
        if (!parent || *parent < 2 || *parent == chain.last())
            break;
        chain.append(*parent);
    }
    return chain;
}

bool WindowWayFinder::leadsToWindow(const WindowWay &way) const
{
    return !way.chain.isEmpty() && m_owners.contains(way.chain.last());
}

// From the nearest of its clients with a window here, else from the nearest of all.
WindowWay WindowWayFinder::throughTmux(const TerminalVariables::Tmux &place, int multiplexers) const
{
    const auto tmux = m_lookups.tool(u"tmux"_s);
    const TmuxServer server(tmux.value_or(QString()), place);
    const QList<TmuxPlace> places = tmux && isOwnSocket(place.socket) ? server.places() : QList<TmuxPlace>();
    if (places.isEmpty())
        return {.obstacle = u"Runs in tmux, which is silent"_s};
    QList<TmuxClient> clients = server.clients(places);
    if (clients.isEmpty())
        return {
            .obstacle = u"Runs in tmux, detached"_s, .attachCommand = server.attachCommand(places.first())};
    clients.resize(std::min(clients.size(), mostClients));
    std::optional<WindowWay> nearest;
    for (const TmuxClient &client : clients) {
        WindowWay way = find(client.process, multiplexers + 1);
        way.panes.push_back(std::make_shared<TmuxPane>(server, places, client));
        if (leadsToWindow(way))
            return way;
        if (!nearest)
            nearest = std::move(way);
    }
    return *nearest;
}

void WindowWayFinder::addTab(WindowWay &way, const TerminalVariables &variables) const
{
    const pid_t terminal = way.chain.last();
    if (variables.konsole && KonsoleTab::isServiceOf(terminal, variables.konsole->service))
        way.panes.push_back(std::make_shared<KonsoleTab>(*variables.konsole));
    if (variables.kitty && variables.kitty->process == terminal)
        if (const auto kitty = m_lookups.tool(u"kitty"_s))
            way.panes.push_back(std::make_shared<KittyWindow>(*kitty, *variables.kitty));
}

// Its server has the client that started it for a parent, until that has left: from then on nobody says which
// terminal shows it.
void WindowWayFinder::addScreen(WindowWay &way, const TerminalVariables::Screen &place) const
{
    if (const auto screen = m_lookups.tool(u"screen"_s))
        way.panes.push_back(std::make_shared<ScreenWindow>(*screen, place));
    const auto server = m_lookups.processes.find(place.server);
    if (server && server->isOrphan && !leadsToWindow(way)) {
        way.obstacle = u"Runs in screen, terminal unknown"_s;
        way.attachCommand = u"screen -x "_s + shellQuoted(place.session);
    }
}

QString WindowWayFinder::obstacle(const QList<pid_t> &chain, bool isWayland) const
{
    const auto process = m_lookups.processes.find(chain.first());
    if (!process)
        return u"Its process has ended"_s;
    if (process->isContained)
        return u"Runs in a container"_s;
    for (const pid_t each : chain)
        if (const auto ancestor = m_lookups.processes.find(each); ancestor && isRemote(ancestor->name))
            return u"Runs over SSH, shown elsewhere"_s;
    if (!process->hasTerminal)
        return u"Runs without a terminal"_s;
    return isWayland ? u"Cannot raise a Wayland window"_s : u"No window of it was found"_s;
}

} // namespace nubble

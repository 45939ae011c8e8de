#include "Platform/X11/X11Workspace.h"

#include <QStringDecoder>

#include <algorithm>
#include <limits>
#include <unistd.h>

#include "Platform/MainThread.h"
#include "Platform/WindowChoice.h"
#include "Platform/X11/X11Connection.h"
#include "Platform/X11/X11KeyboardFocus.h"

namespace nubble {

namespace {

constexpr uint32_t fromPager = 2;
constexpr uint32_t everyDesktop = 0xFFFFFFFF;
constexpr uint32_t mostWindows = 4096;

// Without the domain, which some toolkits add.
QByteArray shortHostName(const QByteArray &name)
{
    const auto end =
        std::find_if(name.begin(), name.end(), [](char each) { return each == '.' || each == '\0'; });
    return name.left(end - name.begin()).toLower();
}

QByteArray thisHost()
{
    std::array<char, 256> name{};
    return ::gethostname(name.data(), name.size() - 1) == 0 ? shortHostName(name.data()) : QByteArray();
}

bool isThisHost(const QByteArray &clientMachine, const QByteArray &host)
{
    const QByteArray name = shortHostName(clientMachine);
    return name.isEmpty() || name == "localhost" || name == host;
}

pid_t processId(const std::vector<uint32_t> &property)
{
    const bool valid = property.size() == 1 && property[0] > 0
        && property[0] <= static_cast<uint32_t>(std::numeric_limits<pid_t>::max());
    return valid ? static_cast<pid_t>(property[0]) : 0;
}

RunningApplication application(pid_t pid, const QByteArray &windowClass)
{
    const auto names = windowClass.split('\0');
    return {
        pid > 0 ? std::optional(pid) : std::nullopt, QString::fromUtf8(names.value(1)),
        QString::fromUtf8(names.value(0))};
}

// Without the half character that a bounded read may end with. None when it is no UTF-8.
std::optional<QString> fromUtf8(const QByteArray &bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8);
    QString text = decoder(bytes);
    return decoder.hasError() ? std::nullopt : std::optional(text);
}

// Of the click that a token was made for: it ends with "_TIME" and the server's time. 0: none.
xcb_timestamp_t timeOf(const QByteArray &token)
{
    const QByteArray mark = "_TIME";
    const qsizetype at = token.lastIndexOf(mark);
    return at < 0 ? XCB_CURRENT_TIME : token.mid(at + mark.size()).toUInt();
}

} // namespace

X11Workspace::X11Workspace(
    std::shared_ptr<const X11Connection> x11, std::shared_ptr<X11KeyboardFocus> keyboard)
    : m_x11(std::move(x11)), m_keyboard(std::move(keyboard))
{
}

std::vector<xcb_window_t> X11Workspace::managedWindows(X11Atom list) const
{
    return X11Property(*m_x11, m_x11->root(), m_x11->atom(list), mostWindows).numbers();
}

std::vector<pid_t> X11Workspace::owners(const std::vector<xcb_window_t> &windows) const
{
    std::vector<std::pair<X11Property, X11Property>> asked;
    asked.reserve(windows.size());
    for (const xcb_window_t window : windows)
        asked.emplace_back(
            X11Property(*m_x11, window, m_x11->atom(X11Atom::NetWmPid)),
            X11Property(*m_x11, window, XCB_ATOM_WM_CLIENT_MACHINE));
    const QByteArray host = thisHost();
    std::vector<pid_t> result;
    result.reserve(asked.size());
    for (auto &[pid, machine] : asked)
        result.push_back(isThisHost(machine.text(), host) ? processId(pid.numbers()) : 0);
    return result;
}

QList<RunningApplication> X11Workspace::runningApplications() const
{
    assertMainThread("Nubble/Platform/X11/X11Workspace");
    const auto windows = managedWindows(X11Atom::NetClientList);
    std::vector<X11Property> classes;
    classes.reserve(windows.size());
    for (const xcb_window_t window : windows)
        classes.emplace_back(*m_x11, window, XCB_ATOM_WM_CLASS);
    const auto pids = owners(windows);

    QList<RunningApplication> result;
    for (size_t i = 0; i < windows.size(); ++i) {
        const auto isThis = [pid = pids[i]](const RunningApplication &each) { return each.pid == pid; };
        if (pids[i] != 0 && std::none_of(result.begin(), result.end(), isThis))
            result.append(application(pids[i], classes[i].text()));
    }
    return result;
}

bool X11Workspace::canActivate() const
{
    const auto supported =
        X11Property(*m_x11, m_x11->root(), m_x11->atom(X11Atom::NetSupported), mostWindows).numbers();
    return std::find(supported.begin(), supported.end(), m_x11->atom(X11Atom::NetActiveWindow))
        != supported.end();
}

Activation X11Workspace::activate(const RunningApplication &application)
{
    assertMainThread("Nubble/Platform/X11/X11Workspace");
    return activateNearest({.chain = {application.pid.value_or(0)}});
}

Activation X11Workspace::activateNearest(const WantedWindow &wanted)
{
    assertMainThread("Nubble/Platform/X11/X11Workspace");
    const OwnedWindows windows = ownedWindows(wanted);
    if (windows.all.empty())
        return canActivate() ? Activation::NotFound : Activation::Impossible;
    bringForward(windows, timeOf(wanted.token));
    return Activation::Requested;
}

bool X11Workspace::isInFront(const WantedWindow &wanted) const
{
    assertMainThread("Nubble/Platform/X11/X11Workspace");
    const OwnedWindows windows = ownedWindows(wanted);
    return windows.isCertain && windows.all.back().id == activeWindow();
}

X11Workspace::OwnedWindows X11Workspace::ownedWindows(const WantedWindow &wanted) const
{
    const auto windows = stackedWindows();
    const auto pids = owners(windows);
    for (const pid_t pid : wanted.chain) {
        std::vector<xcb_window_t> own;
        for (size_t i = 0; i < windows.size(); ++i)
            if (pid > 0 && pids[i] == pid)
                own.push_back(windows[i]);
        if (own.empty())
            continue;
        OwnedWindows result{.all = withStates(own)};
        QList<CandidateWindow> candidates;
        for (const Window &each : result.all)
            candidates.append({each.id, title(each.id).value_or(QString())});
        const WindowChoice choice = chooseWindow(candidates, wanted);
        const auto chosen = result.all.begin() + choice.index;
        std::rotate(chosen, chosen + 1, result.all.end());
        result.isCertain = choice.isCertain;
        return result;
    }
    return {};
}

std::optional<RunningApplication> X11Workspace::frontApplication() const
{
    const xcb_window_t window = activeWindow();
    if (window == XCB_WINDOW_NONE)
        return std::nullopt;
    const QByteArray windowClass = X11Property(*m_x11, window, XCB_ATOM_WM_CLASS).text();
    const pid_t pid = owners({window}).front();
    return pid == 0 && windowClass.isEmpty() ? std::nullopt : std::optional(application(pid, windowClass));
}

std::optional<QString> X11Workspace::windowTitle(pid_t pid) const
{
    const auto windows = stackedWindows();
    const auto pids = owners(windows);
    const uint32_t desktop = currentDesktop();
    for (size_t i = windows.size(); i-- > 0;) {
        if (pid <= 0 || pids[i] != pid || !isOrdinary(windows[i]))
            continue;
        const Window window = withStates({windows[i]}).front();
        const bool isInView =
            window.desktop == desktop || window.desktop == everyDesktop || desktop == everyDesktop;
        if (isInView && !window.iconified)
            return title(windows[i]);
    }
    return std::nullopt;
}

xcb_window_t X11Workspace::activeWindow() const
{
    // Some window managers write another value behind the window.
    const auto active = X11Property(*m_x11, m_x11->root(), m_x11->atom(X11Atom::NetActiveWindow)).numbers();
    return active.empty() ? xcb_window_t{XCB_WINDOW_NONE} : active.front();
}

std::vector<xcb_window_t> X11Workspace::stackedWindows() const
{
    const auto windows = managedWindows(X11Atom::NetClientListStacking);
    return windows.empty() ? managedWindows(X11Atom::NetClientList) : windows;
}

uint32_t X11Workspace::currentDesktop() const
{
    const auto current =
        X11Property(*m_x11, m_x11->root(), m_x11->atom(X11Atom::NetCurrentDesktop)).numbers();
    return current.empty() ? everyDesktop : current[0];
}

// A window may name several types, also such as nobody knows.
bool X11Workspace::isOrdinary(xcb_window_t window) const
{
    const auto types = X11Property(*m_x11, window, m_x11->atom(X11Atom::NetWmWindowType)).numbers();
    return types.empty() || std::ranges::any_of(types, [this](xcb_atom_t each) {
               return each == m_x11->atom(X11Atom::NetWmWindowTypeNormal)
                   || each == m_x11->atom(X11Atom::NetWmWindowTypeDialog);
           });
}

std::optional<QString> X11Workspace::title(xcb_window_t window) const
{
    X11Property modern(*m_x11, window, m_x11->atom(X11Atom::NetWmName));
    X11Property old(*m_x11, window, XCB_ATOM_WM_NAME);
    QByteArray bytes = modern.text();
    if (bytes.isEmpty())
        bytes = old.text();
    if (bytes.isEmpty())
        return std::nullopt;
    return fromUtf8(bytes).value_or(QString::fromLatin1(bytes));
}

// The one used last comes last.
std::vector<X11Workspace::Window> X11Workspace::withStates(const std::vector<xcb_window_t> &windows) const
{
    std::vector<Window> result;
    for (const xcb_window_t window : windows) {
        const auto desktop = X11Property(*m_x11, window, m_x11->atom(X11Atom::NetWmDesktop)).numbers();
        const auto states = X11Property(*m_x11, window, m_x11->atom(X11Atom::NetWmState)).numbers();
        const bool iconified =
            std::find(states.begin(), states.end(), m_x11->atom(X11Atom::NetWmStateHidden)) != states.end();
        result.push_back({window, desktop.empty() ? everyDesktop : desktop[0], iconified});
    }
    // Iconified windows keep their place in the order, although the user has put them away.
    std::stable_partition(result.begin(), result.end(), [](const Window &each) { return each.iconified; });
    return result;
}

void X11Workspace::bringForward(const OwnedWindows &windows, xcb_timestamp_t time) const
{
    uint32_t desktop = currentDesktop();
    const Window &wanted = windows.all.back();
    // Some window managers do not go to another desktop for a window that is activated there.
    if (wanted.desktop != everyDesktop && wanted.desktop != desktop) {
        desktop = wanted.desktop;
        m_x11->askWindowManager(m_x11->root(), X11Atom::NetCurrentDesktop, {desktop, time});
    }
    // Only what lies on the desktop in view is deiconified: activating it elsewhere would leave that desktop.
    // Where the wanted one is certain, the others stay where the user has put them.
    for (const Window &each : windows.all)
        if (each.iconified && !windows.isCertain && (each.desktop == desktop || each.desktop == everyDesktop))
            focus(each, XCB_CURRENT_TIME);
        else
            raise(each);
    focus(wanted, time);
    m_keyboard->handOn(wanted.id);
    m_x11->flush();
}

void X11Workspace::raise(const Window &window) const
{
    m_x11->askWindowManager(
        window.id, X11Atom::NetRestackWindow, {fromPager, XCB_WINDOW_NONE, XCB_STACK_MODE_ABOVE});
}

// As a pager, which no window manager refuses without a time, or with that of the newest click.
void X11Workspace::focus(const Window &window, xcb_timestamp_t time) const
{
    m_x11->askWindowManager(window.id, X11Atom::NetActiveWindow, {fromPager, time, XCB_WINDOW_NONE});
}

} // namespace nubble

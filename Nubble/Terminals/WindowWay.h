#pragma once

#include <QList>
#include <QSet>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <sys/types.h>
#include <vector>

#include "Terminals/TerminalVariables.h"

namespace nubble {

class ProcessTable;
class TerminalPane;

using ParentLookup = std::function<std::optional<pid_t>(pid_t)>;

// What finding a window asks the system. Any thread.
struct TerminalLookups {
    const ProcessTable &processes;
    ParentLookup parentOf;
    std::function<std::optional<QString>(const QString &)> tool; // its path, by its name

    // With the parents that the program `ps` tells, and the kernel's table where that is not installed.
    [[nodiscard]] static ParentLookup askingPs(
        const ProcessTable &processes, const QString &ps = QStringLiteral("/bin/ps"));
};

// From a process to the window in which the user sees it.
struct WindowWay {
    QList<pid_t> chain{}; // to the application that owns the window, which comes last where there is one
    quint32 window = 0;   // the desktop's number for it, as far as a process tells it
    std::vector<std::shared_ptr<const TerminalPane>> panes{}; // in it, the outermost first
    QString obstacle{};      // where no application owns a window: why, in a few words for the row
    QString attachCommand{}; // for the user's shell, where the process waits for a terminal
};

// Finds it through the multiplexers between. Blocks, since it asks them; worker threads.
class WindowWayFinder {
public:
    // `owners` are the processes that own windows.
    WindowWayFinder(TerminalLookups lookups, QSet<pid_t> owners);

    [[nodiscard]] WindowWay find(pid_t pid) const { return find(pid, 0); }

private:
    [[nodiscard]] WindowWay find(pid_t pid, int multiplexers) const;
    [[nodiscard]] QList<pid_t> withAncestors(pid_t pid) const;
    [[nodiscard]] bool leadsToWindow(const WindowWay &way) const;
    [[nodiscard]] WindowWay throughTmux(const TerminalVariables::Tmux &place, int multiplexers) const;
    void addTab(WindowWay &way, const TerminalVariables &variables) const;
    void addScreen(WindowWay &way, const TerminalVariables::Screen &place) const;
    [[nodiscard]] QString obstacle(const QList<pid_t> &chain, bool isWayland) const;

    TerminalLookups m_lookups;
    QSet<pid_t> m_owners;
};

} // namespace nubble

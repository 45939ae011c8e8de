#include "Platform/WindowChoice.h"

#include "Platform/Workspace.h"

namespace nubble {

namespace {

constexpr qsizetype shortestTitle = 3;  // anything shorter is part of many a title
constexpr qsizetype longestTitle = 200; // what terminals and window managers surely keep of it

bool holds(const QString &windowTitle, const QString &title)
{
    return title.size() >= shortestTitle
        && windowTitle.contains(title.first(std::min(title.size(), longestTitle)));
}

} // namespace

// What a terminal puts around a title is alike in all its windows, so the shortest that holds the wanted one
// holds nothing else.
WindowChoice chooseWindow(const QList<CandidateWindow> &windows, const WantedWindow &wanted)
{
    const qsizetype last = windows.size() - 1;
    for (qsizetype i = last; i >= 0; --i)
        if (wanted.window != 0 && windows.at(i).id == wanted.window)
            return {i, true};
    WindowChoice best{-1, false};
    for (qsizetype i = last; i >= 0; --i) {
        const qsizetype size = windows.at(i).title.size();
        const qsizetype least = best.index < 0 ? size + 1 : windows.at(best.index).title.size();
        if (!holds(windows.at(i).title, wanted.title) || size > least)
            continue;
        best = size < least ? WindowChoice{i, true} : WindowChoice{best.index, false};
    }
    return best.index < 0 ? WindowChoice{last, windows.size() == 1} : best;
}

} // namespace nubble

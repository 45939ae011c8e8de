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

WindowChoice chooseWindow(const QList<CandidateWindow> &windows, const WantedWindow &wanted)
{
    const qsizetype last = windows.size() - 1;
    for (qsizetype i = last; i >= 0; --i)
        if (wanted.window != 0 && windows.at(i).id == wanted.window)
            return {i, true};
    for (qsizetype i = last; i >= 0; --i)
        if (holds(windows.at(i).title, wanted.title))
            return {i, true};
    return {last, windows.size() == 1};
}

} // namespace nubble

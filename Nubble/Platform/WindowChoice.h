#pragma once

#include <QList>
#include <QString>

namespace nubble {

struct WantedWindow;

// One of an application's windows.
struct CandidateWindow {
    quint32 id = 0;
    QString title; // as its program has written it
};

// The wanted one of an application's windows, and whether it certainly is that: not, where several remain.
struct WindowChoice {
    qsizetype index = 0;
    bool isCertain = false;

    bool operator==(const WindowChoice &) const = default;
};

// Of `windows`, of which there is at least one, the one used last behind the others: that of the wanted
// number, else the one whose title is closest to the wanted one, else the last one. A pure function.
[[nodiscard]] WindowChoice chooseWindow(const QList<CandidateWindow> &windows, const WantedWindow &wanted);

} // namespace nubble

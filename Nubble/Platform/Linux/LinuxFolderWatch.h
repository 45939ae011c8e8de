#pragma once

#include <QHash>
#include <QMutex>
#include <QSet>
#include <QSocketNotifier>
#include <QTimer>

#include <atomic>
#include <chrono>

#include "Platform/FolderWatch.h"

struct inotify_event;

namespace nubble {

// By inotify. Of a folder that does not exist, the nearest one above it is watched instead.
class LinuxFolderWatch : public FolderWatch {
    Q_OBJECT

public:
    LinuxFolderWatch();
    ~LinuxFolderWatch() override;

    [[nodiscard]] bool watch(const QList<WatchedEntries> &entries) override;

private:
    struct Watched {
        QSet<QByteArray> endings{};
        bool isWaitedIn = false; // for a folder that is to be made

        bool operator==(const Watched &) const = default;
    };
    using Watches = QHash<int, Watched>; // by inotify's number

    [[nodiscard]] bool add(const WatchedEntries &entries, Watches &watches) const;
    void replaceBy(const Watches &watches);
    void readEvents();
    [[nodiscard]] bool concerns(const inotify_event &event, const char *name);

    const int m_inotify; // negative when the user has too many already
    QSocketNotifier m_arrival;
    QTimer m_pause;
    std::atomic<bool> m_hasMoved = false; // a folder, or one that is waited for has been made

    // What watch() remembers.
    QList<WatchedEntries> m_entries;
    std::chrono::steady_clock::time_point m_lookedAt;
    bool m_tellsAll = false;

    QMutex m_mutex; // guards the next
    Watches m_watches;
};

} // namespace nubble

#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>

namespace nubble {

// The entries of a folder whose names end so.
struct WatchedEntries {
    QByteArray folder; // absolute
    QByteArray ending;

    bool operator==(const WatchedEntries &) const = default;
};

// Tells that entries of folders have come, gone or changed, also of folders that are yet to be made.
class FolderWatch : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    // Watches these from now on and no others. Returns whether all their changes will be told: the system may
    // be out of watches, and other machines write to network file systems unnoticed. Meant to be called
    // before each reading, and cheap while nothing has moved. Blocks as long as the file system does; any
    // thread, but one at a time.
    [[nodiscard]] virtual bool watch(const QList<WatchedEntries> &entries) = 0;

Q_SIGNALS:
    // At once, then no more often than every 50 ms; and once after a watch has begun, since nobody told what
    // came before it. On the thread that made this object.
    void changed();
};

} // namespace nubble

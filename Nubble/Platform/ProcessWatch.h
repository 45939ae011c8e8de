#pragma once

#include <QObject>
#include <QSet>

#include <sys/types.h>

namespace nubble {

// Tells that processes have ended. Main thread only; never blocks.
class ProcessWatch : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    // Watches these from now on and no others. Returns whether the end of each will be told.
    [[nodiscard]] virtual bool watch(const QSet<pid_t> &processes) = 0;

    // Whether a watched process has ended, though its parent may not have taken note of it yet.
    [[nodiscard]] virtual bool hasEnded(pid_t process) const = 0;

Q_SIGNALS:
    void ended();
};

} // namespace nubble

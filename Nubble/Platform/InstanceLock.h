#pragma once

#include <QByteArray>
#include <QString>

namespace nubble {

// Says which instance of a home is the only one, also while no session bus does. A regular file that stays
// empty and stays there is locked; what it holds does not matter, and the lock ends with its process however
// that ends. Where no such file can be locked, since a folder, a FIFO or a link stands there or the folder
// refuses it, there is no lock, and nobody is barred: starting twice is the lesser harm. One thread.
class InstanceLock {
public:
    explicit InstanceLock(const QString &path);
    ~InstanceLock();
    Q_DISABLE_COPY_MOVE(InstanceLock)

    // Takes it, unless another process has it.
    [[nodiscard]] bool isHeldElsewhere();

private:
    const QByteArray m_path;
    int m_descriptor = -1; // open while the lock is ours
};

} // namespace nubble

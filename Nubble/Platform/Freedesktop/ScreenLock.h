#pragma once

#include <QDBusServiceWatcher>
#include <QObject>

class QDBusMessage;

namespace nubble {

// Whether the session is locked or behind a screen saver, as the desktop's locker tells on the session bus.
// Unlocked until it does, and when it goes. Main thread only.
class ScreenLock : public QObject {
    Q_OBJECT

public:
    explicit ScreenLock(QObject *parent = nullptr);

    [[nodiscard]] bool isLocked() const { return m_isLocked; }

Q_SIGNALS:
    void changed();

private Q_SLOTS:
    void onActiveChanged(const QDBusMessage &message);

private:
    void setLocked(bool locked);

    QDBusServiceWatcher m_locker;
    bool m_isLocked = false;
};

} // namespace nubble

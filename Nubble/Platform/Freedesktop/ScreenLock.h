#pragma once

#include <QDBusServiceWatcher>
#include <QObject>

#include <memory>

class QDBusMessage;

namespace nubble {

class SessionLink;

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
    void listen();
    void setLocked(bool locked);

    std::shared_ptr<SessionLink> m_link;
    QDBusServiceWatcher m_locker;
    bool m_isLocked = false;
};

} // namespace nubble

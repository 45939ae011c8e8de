#pragma once

#include <QDBusServiceWatcher>
#include <QObject>

#include <memory>

namespace nubble {

class SessionLink;

// Knows whether the desktop shows status items that are announced on the session bus (freedesktop.org's
// StatusNotifierItem, under the names that all implementations use). Asks without waiting. Main thread only.
class StatusNotifierWatch : public QObject {
    Q_OBJECT

public:
    enum class State {
        Absent,
        Unanswered, // there may be a slow one, and whoever waits for its answer is stuck
        Announced,  // somebody answers that there is none yet
        Hosted
    };

    explicit StatusNotifierWatch(QObject *parent = nullptr);

    [[nodiscard]] State state() const { return m_state; }

Q_SIGNALS:
    void changed();

private Q_SLOTS:
    void ask();

private:
    void listen();
    void setState(State state);

    std::shared_ptr<SessionLink> m_link;
    QDBusServiceWatcher m_watcher;
    State m_state = State::Absent;
};

} // namespace nubble

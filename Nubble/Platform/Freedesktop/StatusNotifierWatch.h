#pragma once

#include <QDBusServiceWatcher>
#include <QObject>

namespace nubble {

// Knows whether the desktop shows status items that are announced on the session bus (freedesktop.org's
// StatusNotifierItem, under the names that all implementations use). Asks without waiting. Main thread only.
class StatusNotifierWatch : public QObject {
    Q_OBJECT

public:
    enum class State {
        Absent,
        Pending,
        Hosted
    }; // pending: not known yet, or somebody announces that one comes

    explicit StatusNotifierWatch(QObject *parent = nullptr);

    [[nodiscard]] State state() const { return m_state; }

Q_SIGNALS:
    void changed();

private Q_SLOTS:
    void ask();

private:
    void setState(State state);

    QDBusServiceWatcher m_watcher;
    State m_state = State::Absent;
};

} // namespace nubble

#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QTimer>

#include <memory>
#include <thread>

namespace nubble {

// This program's connection to the session bus. When the bus dies it looks every five seconds whether there
// is one again; the toolkit would not. Main thread only.
class SessionLink : public QObject {
    Q_OBJECT

public:
    // One for all who hold it.
    [[nodiscard]] static std::shared_ptr<SessionLink> ofThisProgram();

    SessionLink();

    // The present one, not to be kept.
    [[nodiscard]] QDBusConnection connection() const { return m_connection; }

Q_SIGNALS:
    void lost();
    void returned(); // with a connection that nobody has registered anything at

private Q_SLOTS:
    void noteLoss();

private:
    void watch();
    void look();
    void connectAgain();

    QDBusConnection m_connection;
    int m_number = 1; // of the connection
    QTimer m_pause;
    std::jthread m_look; // asks, which may take its time
};

} // namespace nubble

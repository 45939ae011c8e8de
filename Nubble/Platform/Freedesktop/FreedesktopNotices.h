#pragma once

#include <QDBusServiceWatcher>
#include <QMap>
#include <QStringList>

#include <functional>
#include <memory>

#include "Platform/DesktopNotices.h"

class QDBusMessage;

namespace nubble {

class SessionLink;

// The notices of whatever owns org.freedesktop.Notifications on the session bus. It is asked one thing at a
// time, and without a time limit: one that hangs holds a single call, and is not sent later what has become
// pointless meanwhile. What is up, or on its way, when the server goes is forgotten.
class FreedesktopNotices : public DesktopNotices {
    Q_OBJECT

public:
    explicit FreedesktopNotices(QObject *parent = nullptr);
    ~FreedesktopNotices() override;

    void post(quint32 id, const Notice &notice) override;
    void withdraw(quint32 id) override;

private Q_SLOTS:
    // The raw messages: with parameters of their own the toolkit would crash on another signature.
    void noteToken(const QDBusMessage &message);
    void noteAction(const QDBusMessage &message);
    void noteClosed(const QDBusMessage &message);

private:
    struct Posted {
        Notice notice;
        quint32 serverId = 0; // the server's own; 0 until it has told it
        bool isSent = false;  // as it is now
    };
    using Then = std::function<void(const QDBusMessage &reply)>;

    void listen();
    void forgetServer();
    void sendNext();
    void askForCapabilities();
    void send(quint32 id, Posted &posted);
    void takeServerId(quint32 id, const QDBusMessage &reply);
    void call(const QDBusMessage &message, const Then &then);
    void close(quint32 serverId) const;
    [[nodiscard]] bool isOfServer(const QDBusMessage &message) const;
    [[nodiscard]] QMap<quint32, Posted>::iterator find(const QDBusMessage &message);

    std::shared_ptr<SessionLink> m_link;
    QDBusServiceWatcher m_watcher;
    QMap<quint32, Posted> m_posted; // by the caller's ids
    QString m_server;               // its unique name; empty until it has answered
    QStringList m_capabilities;
    bool m_isAsking = false;
    int m_generation = 0; // of the server; answers to an earlier one come too late
    quint32 m_tokenOf = 0;
    QByteArray m_token; // for the click that follows on that one
};

} // namespace nubble

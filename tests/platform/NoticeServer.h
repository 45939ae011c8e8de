#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QMap>
#include <QObject>

#include <optional>

namespace nubble {

// A server of org.freedesktop.Notifications as a test wants it, on a connection of its own.
class NoticeServer : public QObject, public QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    explicit NoticeServer(const QString &name, quint32 firstId = 1)
        : m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, name)), m_next(firstId)
    {
        m_bus.registerObject(path(), this, QDBusConnection::ExportAllSlots);
    }
    ~NoticeServer() override { QDBusConnection::disconnectFromBus(m_bus.name()); }

    bool own(bool owned = true)
    {
        return owned ? m_bus.registerService(service()) : m_bus.unregisterService(service());
    }
    void tell(const QString &member, const QVariantList &arguments)
    {
        auto signal = QDBusMessage::createSignal(path(), service(), member);
        signal.setArguments(arguments);
        m_bus.send(signal);
    }
    // To the calls that were held back.
    void answer()
    {
        for (const QDBusMessage &call : std::exchange(held, {}))
            m_bus.send(call.createReply(replyTo(call.member())));
    }

    [[nodiscard]] quint32 newest() const { return m_next - 1; } // id that has been given

    bool holdsBack = false;
    QList<QDBusMessage> held;
    std::optional<QVariant> odd; // the answer to all, in the place of the right one
    QStringList capabilities{QStringLiteral("body"), QStringLiteral("actions")};
    QList<QVariantList> posted; // what the calls have brought
    QList<quint32> closed;
    int questions = 0;

public Q_SLOTS:
    QStringList GetCapabilities()
    {
        ++questions;
        return isAnsweredElse() ? QStringList() : capabilities;
    }
    quint32 Notify(
        const QString &name, quint32 replaced, const QString &icon, const QString &title, const QString &text,
        const QStringList &actions, const QVariantMap &hints, int time)
    {
        posted.append(QVariantList{name, replaced, icon, title, text, actions, hints, time});
        return isAnsweredElse() ? 0 : replyTo(QStringLiteral("Notify")).toUInt();
    }
    void CloseNotification(quint32 id) { closed.append(id); }

private:
    static QString service() { return QStringLiteral("org.freedesktop.Notifications"); }
    static QString path() { return QStringLiteral("/org/freedesktop/Notifications"); }

    QVariant replyTo(const QString &member)
    {
        if (member == QStringView(u"GetCapabilities"))
            return capabilities;
        const quint32 replaced = posted.last().at(1).toUInt();
        return replaced != 0 ? replaced : m_next++;
    }
    bool isAnsweredElse()
    {
        if (!holdsBack && !odd)
            return false;
        setDelayedReply(true);
        if (holdsBack)
            held.append(message());
        else
            m_bus.send(
                odd->isValid() ? message().createReply(*odd)
                               : message().createErrorReply(QDBusError::Failed, QStringLiteral("No")));
        return true;
    }

    QDBusConnection m_bus;
    quint32 m_next;
};

} // namespace nubble

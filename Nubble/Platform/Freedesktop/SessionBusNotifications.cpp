#include "Platform/Freedesktop/SessionBusNotifications.h"

#include <QDBusArgument>
#include <QDBusMessage>

#include "Platform/Freedesktop/SessionLink.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

QMap<QString, QString> textsOf(const QVariantMap &values)
{
    QMap<QString, QString> texts;
    for (auto each = values.constBegin(); each != values.constEnd(); ++each)
        if (each->typeId() == QMetaType::QString)
            texts.insert(each.key(), each->toString());
    return texts;
}

QMap<QString, QString> userInfoOf(const QDBusMessage &message)
{
    const QVariant first = message.arguments().value(0);
    if (message.signature() == u"a{sv}")
        return textsOf(qdbus_cast<QVariantMap>(first));
    return message.signature() == u"a{ss}" ? qdbus_cast<QMap<QString, QString>>(first)
                                           : QMap<QString, QString>();
}

} // namespace

SessionBusNotifications::SessionBusNotifications(QObject *parent)
    : DistributedNotifications(parent), m_link(SessionLink::ofThisProgram())
{
    connect(m_link.get(), &SessionLink::returned, this, &SessionBusNotifications::listen);
    listen();
}

void SessionBusNotifications::listen()
{
    QDBusConnection bus = m_link->connection();
    for (const QString &name : {u"ask"_s, u"notes"_s})
        bus.connect({}, {}, u"com.brevandel.nubble"_s, name, this, SLOT(receive(QDBusMessage)));
}

void SessionBusNotifications::receive(const QDBusMessage &message)
{
    Q_EMIT received(message.member(), userInfoOf(message));
}

} // namespace nubble

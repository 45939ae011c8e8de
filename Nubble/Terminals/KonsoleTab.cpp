#include "Terminals/KonsoleTab.h"

#include <QDBusConnection>
#include <QDBusMessage>

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

// The answer's value; none without an answer.
QVariant ask(QDBusMessage message, const QVariantList &arguments)
{
    constexpr int patience = 1000; // milliseconds
    message.setArguments(arguments);
    message.setAutoStartService(false);
    return QDBusConnection::sessionBus().call(message, QDBus::Block, patience).arguments().value(0);
}

QDBusMessage windowCall(const TerminalVariables::Konsole &place, const QString &method)
{
    return QDBusMessage::createMethodCall(place.service, place.window, u"org.kde.konsole.Window"_s, method);
}

} // namespace

bool KonsoleTab::isServiceOf(pid_t konsole, const QString &service)
{
    const QDBusMessage call = QDBusMessage::createMethodCall(
        u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s,
        u"GetConnectionUnixProcessID"_s);
    return ask(call, {service}).toInt() == konsole;
}

void KonsoleTab::select() const
{
    (void)ask(windowCall(m_place, u"setCurrentSession"_s), {m_place.session});
}

bool KonsoleTab::isSelected() const
{
    const QVariant current = ask(windowCall(m_place, u"currentSession"_s), {});
    return current.typeId() != QMetaType::Int || current.toInt() == m_place.session;
}

} // namespace nubble

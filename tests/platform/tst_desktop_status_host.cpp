#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>

#include "Platform/DesktopStatusHost.h"
#include "Platform/Freedesktop/StatusNotifierWatch.h"
#include "Platform/X11/X11Tray.h"
#include "platform/ForeignApplication.h"

using namespace Qt::StringLiterals;
using namespace nubble;

namespace {

using Kind = StatusHost::Kind;

// The service with which hosts on the bus register. A silent one never says whether any has.
class Announcement : public QDBusVirtualObject {
public:
    explicit Announcement(bool isSilent = false) : m_isSilent(isSilent)
    {
        QVERIFY(m_bus.registerVirtualObject(m_path, this));
        QVERIFY(m_bus.registerService(m_name));
    }
    ~Announcement() override { QDBusConnection::disconnectFromBus(m_bus.name()); }

    [[nodiscard]] QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &) override
    {
        wasAsked = true;
        if (m_isSilent)
            message.setDelayedReply(true);
        else
            m_bus.send(message.createReply(QVariant::fromValue(QDBusVariant(m_hasHost))));
        return true;
    }
    void registerHost()
    {
        m_hasHost = true;
        m_bus.send(QDBusMessage::createSignal(m_path, m_name, u"StatusNotifierHostRegistered"_s));
    }

    bool wasAsked = false;

private:
    const QString m_path = u"/StatusNotifierWatcher"_s;
    const QString m_name = u"org.kde.StatusNotifierWatcher"_s;
    QDBusConnection m_bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"another program"_s);
    bool m_isSilent;
    bool m_hasHost = false;
};

} // namespace

class TestDesktopStatusHost : public QObject {
    Q_OBJECT

private:
    ForeignApplication m_tray;

    std::unique_ptr<DesktopStatusHost> makeHost(std::chrono::milliseconds patience = std::chrono::hours(1))
    {
        return std::make_unique<DesktopStatusHost>(
            std::make_unique<StatusNotifierWatch>(),
            std::make_unique<X11Tray>(X11Connection::ofThisProgram()), patience);
    }

private Q_SLOTS:
    void init()
    {
        const auto window = m_tray.open({0, 0, 100, 100}, Qt::red, ForeignApplication::Unmanaged);
        m_tray.setNumbers(
            window, "_NET_SYSTEM_TRAY_COLORS", {0x1000, 0x8080, 0xffff, 0, 0, 0, 0, 0, 0, 0, 0, 0});
        m_tray.own(X11Atom::SystemTray, window);
    }
    void cleanup() { m_tray.closeAll(); }

    void anAnnouncedHostIsPreferredToATrayForAWhile()
    {
        Announcement announcement;
        const auto patient = makeHost();
        const auto hasty = makeHost(std::chrono::milliseconds(1));
        QTRY_COMPARE(hasty->kind(), Kind::Embedding);
        QCOMPARE(hasty->foreground(), QColor(0x10, 0x80, 0xff));
        QCOMPARE(patient->kind(), Kind::None);
        announcement.registerHost();
        QTRY_COMPARE(patient->kind(), Kind::Remote);
        QCOMPARE(hasty->kind(), Kind::Embedding); // once picked it stays
    }

    void anAnnouncementThatGoesLeavesTheTrayHoweverItHasAnswered()
    {
        for (const bool isSilent : {true, false}) {
            auto announcement = std::make_optional<Announcement>(isSilent);
            const auto host = makeHost(isSilent ? std::chrono::milliseconds(1) : std::chrono::hours(1));
            QTRY_VERIFY(announcement->wasAsked);
            QCOMPARE(host->kind(), Kind::None);
            announcement.reset();
            QTRY_COMPARE(host->kind(), Kind::Embedding);
        }
    }
};

QTEST_MAIN(TestDesktopStatusHost)
#include "tst_desktop_status_host.moc"

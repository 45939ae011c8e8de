#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QTest>
#include <QWidget>

#include "Platform/DesktopStatusHost.h"
#include "Platform/Freedesktop/StatusNotifierWatch.h"
#include "Platform/X11/X11Connection.h"
#include "Platform/X11/X11Tray.h"

using namespace Qt::StringLiterals;
using namespace nubble;

namespace {

using Kind = StatusHost::Kind;

// The window that announces a tray.
class Tray {
public:
    explicit Tray(const X11Connection &x11) : m_x11(x11)
    {
        const std::array<uint32_t, 12> colors{0x1000, 0x8080, 0xffff};
        const auto window = static_cast<xcb_window_t>(m_window.winId());
        xcb_change_property(
            m_x11.get(), XCB_PROP_MODE_REPLACE, window, m_x11.atom(X11Atom::NetSystemTrayColors),
            XCB_ATOM_CARDINAL, 32, colors.size(), colors.data());
        own(window);
    }
    ~Tray() { own(XCB_WINDOW_NONE); }

private:
    void own(xcb_window_t owner)
    {
        xcb_set_selection_owner(m_x11.get(), owner, m_x11.atom(X11Atom::SystemTray), XCB_CURRENT_TIME);
        m_x11.flush();
    }

    const X11Connection &m_x11;
    QWidget m_window;
};

// The service with which hosts on the bus register. A silent one never says whether any has.
class Announcement : public QDBusVirtualObject {
public:
    explicit Announcement(bool isSilent = false) : m_isSilent(isSilent)
    {
        QVERIFY(m_bus.registerVirtualObject(m_path, this));
        QVERIFY(m_bus.registerService(m_name));
    }
    ~Announcement() override
    {
        m_bus.unregisterService(m_name);
        m_bus.unregisterObject(m_path);
    }

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
    std::shared_ptr<const X11Connection> m_x11 = X11Connection::ofThisProgram();

    std::unique_ptr<DesktopStatusHost> makeHost(std::chrono::milliseconds patience = std::chrono::hours(1))
    {
        return std::make_unique<DesktopStatusHost>(
            std::make_unique<StatusNotifierWatch>(), std::make_unique<X11Tray>(m_x11), patience);
    }

private Q_SLOTS:
    void anAnnouncedHostIsPreferredToATrayForAWhile()
    {
        const Tray tray(*m_x11);
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
        const Tray tray(*m_x11);
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

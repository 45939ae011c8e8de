#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusMessage>
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

class Watcher : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered MEMBER hasHost)

public:
    explicit Watcher(QObject *exported) : QDBusAbstractAdaptor(exported) { }

    bool hasHost = false;

Q_SIGNALS:
    void StatusNotifierHostRegistered();
};

class SilentObject : public QDBusVirtualObject {
public:
    [[nodiscard]] QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &) override
    {
        message.setDelayedReply(true);
        return asked = true;
    }

    bool asked = false;
};

// The service with which hosts on the bus register.
class Announcement {
public:
    Announcement()
    {
        [&] {
            QVERIFY(m_bus.registerObject(m_path, &m_exported, QDBusConnection::ExportAdaptors));
            QVERIFY(m_bus.registerService(m_name));
        }();
    }
    ~Announcement()
    {
        m_bus.unregisterService(m_name);
        m_bus.unregisterObject(m_path);
    }

    void registerHost()
    {
        m_watcher.hasHost = true;
        Q_EMIT m_watcher.StatusNotifierHostRegistered();
    }

private:
    const QString m_path = u"/StatusNotifierWatcher"_s;
    const QString m_name = u"org.kde.StatusNotifierWatcher"_s;
    QDBusConnection m_bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"another program"_s);
    QObject m_exported;
    Watcher m_watcher{&m_exported};
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
    void aTrayIsFoundWheneverItComes()
    {
        const auto before = makeHost();
        QCOMPARE(before->kind(), Kind::None);
        const Tray tray(*m_x11);
        const auto after = makeHost();
        QTRY_COMPARE(before->kind(), Kind::Embedding);
        QTRY_COMPARE(after->kind(), Kind::Embedding);
        QCOMPARE(after->foreground(), QColor(0x10, 0x80, 0xff));
    }

    void aHostOnTheBusIsFoundWheneverItComes()
    {
        const auto before = makeHost();
        Announcement announcement;
        announcement.registerHost();
        QTRY_COMPARE(before->kind(), Kind::Remote);
        const auto after = makeHost();
        QTRY_COMPARE(after->kind(), Kind::Remote);
        QCOMPARE(after->foreground(), std::nullopt);
    }

    void anAnnouncedHostIsPreferredToATrayForAWhile()
    {
        const Tray tray(*m_x11);
        Announcement announcement;
        const auto patient = makeHost();
        const auto hasty = makeHost(std::chrono::milliseconds(1));
        QTRY_COMPARE(hasty->kind(), Kind::Embedding);
        QCOMPARE(patient->kind(), Kind::None);
        announcement.registerHost();
        QTRY_COMPARE(patient->kind(), Kind::Remote);
        QCOMPARE(hasty->kind(), Kind::Embedding); // once picked it stays
    }

    void whoDoesNotAnswerIsNotWaitedFor()
    {
        const Tray tray(*m_x11);
        QDBusConnection silent = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"silent"_s);
        QVERIFY(silent.registerService(u"org.kde.StatusNotifierWatcher"_s));
        SilentObject object;
        QVERIFY(silent.registerVirtualObject(u"/StatusNotifierWatcher"_s, &object));
        const auto host = makeHost(std::chrono::milliseconds(1));
        QTRY_VERIFY(object.asked);
        QCOMPARE(host->kind(), Kind::None);
        QVERIFY(silent.unregisterService(u"org.kde.StatusNotifierWatcher"_s));
        QTRY_COMPARE(host->kind(), Kind::Embedding);
    }

    void anAnnouncementThatGoesLeavesTheTray()
    {
        const Tray tray(*m_x11);
        auto announcement = std::make_optional<Announcement>();
        const auto host = makeHost();
        QCOMPARE(host->kind(), Kind::None);
        announcement.reset();
        QTRY_COMPARE(host->kind(), Kind::Embedding);
    }
};

QTEST_MAIN(TestDesktopStatusHost)
#include "tst_desktop_status_host.moc"

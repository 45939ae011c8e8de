#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>

#include "Platform/DesktopStatusHost.h"
#include "Platform/Freedesktop/StatusNotifierWatch.h"
#include "Platform/X11/X11KeyboardFocus.h"
#include "Platform/X11/X11Settings.h"
#include "Platform/X11/X11Tray.h"
#include "Platform/X11/X11Workspace.h"
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

class TestX11Services : public QObject {
    Q_OBJECT

private:
    const std::shared_ptr<const X11Connection> m_x11 = X11Connection::ofThisProgram();
    X11Workspace m_workspace{m_x11, std::make_shared<X11KeyboardFocus>(m_x11)};
    ForeignApplication m_terminal{4242};
    ForeignApplication m_editor{4343};

    [[nodiscard]] QList<pid_t> runningPids() const
    {
        QList<pid_t> pids;
        for (const RunningApplication &each : m_workspace.runningApplications())
            pids.append(each.pid.value_or(0));
        return pids;
    }
    void openTray()
    {
        const auto window = m_editor.open({0, 0, 100, 100}, Qt::red, ForeignApplication::Unmanaged);
        m_editor.setNumbers(
            window, "_NET_SYSTEM_TRAY_COLORS", {0x1000, 0x8080, 0xffff, 0, 0, 0, 0, 0, 0, 0, 0, 0});
        m_editor.own(X11Atom::SystemTray, window);
    }
    static std::unique_ptr<DesktopStatusHost> makeHost(
        std::chrono::milliseconds patience = std::chrono::hours(1))
    {
        return std::make_unique<DesktopStatusHost>(
            std::make_unique<StatusNotifierWatch>(),
            std::make_unique<X11Tray>(X11Connection::ofThisProgram()), patience);
    }

private Q_SLOTS:
    void cleanup()
    {
        m_terminal.closeAll();
        m_editor.closeAll();
        QTRY_COMPARE(runningPids(), QList<pid_t>());
    }

    void believesNoNonsenseAndSaysWhereNobodyBringsWindowsForward()
    {
        const auto window = m_terminal.open({0, 0, 100, 100}, Qt::red);
        for (const std::vector<uint32_t> &nonsense :
             {std::vector<uint32_t>{0}, {0xFFFFFFFF}, {}, std::vector<uint32_t>(60'000, 7)}) {
            m_terminal.setNumbers(window, "_NET_WM_PID", nonsense);
            QCOMPARE(runningPids(), QList<pid_t>());
        }
        m_terminal.setText(window, "_NET_WM_PID", "4242");
        QCOMPARE(runningPids(), QList<pid_t>());

        m_terminal.setNumbers(window, "_NET_WM_PID", {4242});
        m_terminal.setText(window, "WM_CLIENT_MACHINE", "a-machine-far-away.example");
        QCOMPARE(runningPids(), QList<pid_t>());

        m_terminal.setText(window, "WM_CLIENT_MACHINE", "localhost");
        m_terminal.setText(window, "WM_CLASS", QByteArray(100'000, 'x'));
        QCOMPARE(runningPids(), QList<pid_t>{4242});
        QVERIFY(m_workspace.runningApplications().first().name.size() <= 1024);

        std::vector<uint32_t> list(60'000, 0x7FFFFFFF); // windows that have gone
        list.front() = window;
        for (const char *property : {"_NET_CLIENT_LIST", "_NET_CLIENT_LIST_STACKING"})
            m_terminal.setNumbers(m_terminal.root(), property, list, "WINDOW");
        QCOMPARE(runningPids(), QList<pid_t>{4242});
        QCOMPARE(m_workspace.activateNearest({.chain = {4242}}), Activation::Requested);
        QCOMPARE(m_workspace.activateNearest({.chain = {4343, 0}}), Activation::NotFound);
        m_terminal.setNumbers(m_terminal.root(), "_NET_CLIENT_LIST", {window}, "WINDOW");

        QVERIFY(m_workspace.canActivate());
        const auto supported = m_terminal.numbers(m_terminal.root(), "_NET_SUPPORTED");
        m_terminal.setNumbers(m_terminal.root(), "_NET_SUPPORTED", {}, "ATOM"); // no window manager
        QVERIFY(!m_workspace.canActivate());
        QCOMPARE(m_workspace.activateNearest({.chain = {4343}}), Activation::Impossible);
        m_terminal.setNumbers(m_terminal.root(), "_NET_SUPPORTED", supported, "ATOM");
    }

    void activatingARunningApplicationRaisesAllItsWindowsInTheirOrder()
    {
        const auto stacking = [this] {
            return m_terminal.numbers(m_terminal.root(), "_NET_CLIENT_LIST_STACKING");
        };
        const auto below = m_terminal.open({0, 0, 300, 300}, Qt::red);
        const auto above = m_terminal.open({50, 50, 300, 300}, Qt::red);
        m_terminal.focus(above);
        const auto text = m_editor.open({100, 100, 300, 300}, Qt::blue);
        m_editor.focus(text);
        QTRY_COMPARE(stacking().back(), text);
        ForeignApplication menu(4444);
        (void)menu.open({400, 0, 100, 100}, Qt::red, ForeignApplication::Unmanaged);
        const RunningApplication first{4242, u"Terminal"_s, u"terminal"_s};
        QCOMPARE(m_workspace.runningApplications().first(), first);
        QCOMPARE(runningPids(), (QList<pid_t>{4242, 4343}));

        // 4444 has no managed window, 0 names no process, and 4343 is not the nearest.
        QCOMPARE(m_workspace.activateNearest({.chain = {4444, 0, 4242, 4343}}), Activation::Requested);
        QTRY_COMPARE(m_terminal.focusedWindow(), above);
        QTRY_COMPARE(stacking(), (std::vector<uint32_t>{text, below, above}));
    }

    void deiconifiesWhatLiesOnTheDesktopInViewBelowTheOthers()
    {
        const auto kept = m_terminal.open({0, 0, 300, 300}, Qt::red);
        const auto here = m_terminal.open({50, 50, 300, 300}, Qt::red);
        const auto elsewhere = m_terminal.open({50, 50, 300, 300}, Qt::red);
        ForeignApplication::manage(elsewhere, u"-r"_s, u"-t 1"_s);
        for (const auto window : {here, elsewhere}) {
            ForeignApplication::manage(window, u"-r"_s, u"-b add,hidden"_s);
            QTRY_VERIFY(m_terminal.hasState(window, "_NET_WM_STATE_HIDDEN"));
        }
        m_editor.focus(m_editor.open({100, 100, 300, 300}, Qt::blue));
        QCOMPARE(m_workspace.activateNearest({.chain = {4242}}), Activation::Requested);
        QTRY_VERIFY(!m_terminal.hasState(here, "_NET_WM_STATE_HIDDEN"));
        QTRY_COMPARE(m_terminal.focusedWindow(), kept);
        QVERIFY(m_terminal.hasState(elsewhere, "_NET_WM_STATE_HIDDEN"));
    }

    void theWantedWindowGetsTheKeyboardWhereItIsThatApplications()
    {
        const auto first = m_terminal.open({0, 0, 300, 300}, Qt::red);
        const auto second = m_terminal.open({50, 50, 300, 300}, Qt::red);
        const auto hidden = m_terminal.open({50, 50, 300, 300}, Qt::red);
        const auto text = m_editor.open({100, 100, 300, 300}, Qt::blue);
        m_terminal.setText(first, "_NET_WM_NAME", "* Plant the hedge");
        ForeignApplication::manage(hidden, u"-r"_s, u"-b add,hidden"_s);
        QTRY_VERIFY(m_terminal.hasState(hidden, "_NET_WM_STATE_HIDDEN"));
        m_editor.focus(text);
        QTRY_COMPARE(m_terminal.focusedWindow(), text);
        const QString title = u"Plant the hedge"_s;
        const auto of = [&](quint32 window, const QString &part, const QByteArray &token = {}) {
            return WantedWindow{.chain = {4242}, .window = window, .title = part, .token = token};
        };
        QVERIFY(!m_workspace.isInFront(of(first, {})));
        QCOMPARE(m_workspace.activateNearest(of(first, {})), Activation::Requested);
        QTRY_COMPARE(m_terminal.focusedWindow(), first);
        QVERIFY(m_workspace.isInFront(of(first, {})) && m_workspace.isInFront(of(text, title)));
        QVERIFY(!m_workspace.isInFront(of(second, title)) && !m_workspace.isInFront(of(0, {})));
        QCOMPARE(m_workspace.activateNearest(of(second, title, "other_TIME1")), Activation::Requested);
        QTRY_COMPARE(m_terminal.focusedWindow(), second);
        QCOMPARE(m_workspace.activateNearest(of(text, title, "_TIMEnonsense")), Activation::Requested);
        QTRY_COMPARE(m_terminal.focusedWindow(), first);
        QVERIFY(m_terminal.hasState(hidden, "_NET_WM_STATE_HIDDEN"));
        QCOMPARE(m_workspace.activateNearest(of(hidden, {})), Activation::Requested);
        QTRY_COMPARE(m_terminal.focusedWindow(), hidden);
    }

    void theApplicationInFrontIsTheActiveWindows()
    {
        const auto window = m_terminal.open({0, 0, 300, 300}, Qt::red);
        m_terminal.focus(window);
        const RunningApplication terminal{4242, u"Terminal"_s, u"terminal"_s};
        QTRY_COMPARE(m_workspace.frontApplication(), terminal);
        for (const auto &[active, front] :
             {std::pair<std::vector<uint32_t>, std::optional<RunningApplication>>({window, 0}, terminal),
              {{0}, std::nullopt},
              {{}, std::nullopt},
              {{0x7FFFFFFF}, std::nullopt}}) {
            m_terminal.setNumbers(m_terminal.root(), "_NET_ACTIVE_WINDOW", active, "WINDOW");
            QCOMPARE(m_workspace.frontApplication(), front);
        }
        m_terminal.setNumbers(m_terminal.root(), "_NET_ACTIVE_WINDOW", {window}, "WINDOW");
        m_terminal.setNumbers(window, "_NET_WM_PID", {});
        QCOMPARE(m_workspace.frontApplication(), (RunningApplication{{}, u"Terminal"_s, u"terminal"_s}));
    }

    void theTitleIsTheForemostOrdinaryWindowsInView()
    {
        const auto below = m_terminal.open({0, 0, 300, 300}, Qt::red);
        const auto above = m_terminal.open({50, 50, 300, 300}, Qt::red);
        const auto elsewhere = m_terminal.open({50, 50, 300, 300}, Qt::red);
        const auto tool = m_terminal.open({0, 0, 300, 20}, Qt::red);
        m_terminal.setNumbers(
            tool, "_NET_WM_WINDOW_TYPE", {m_terminal.atom("_NET_WM_WINDOW_TYPE_UTILITY")}, "ATOM");
        m_editor.focus(m_editor.open({100, 100, 300, 300}, Qt::blue)); // above them all
        for (const auto &[window, title] :
             {std::pair<xcb_window_t, QByteArray>(below, "below"),
              {above, "above"},
              {elsewhere, "elsewhere"},
              {tool, "tool"}})
            m_terminal.setText(window, "_NET_WM_NAME", title);
        ForeignApplication::manage(elsewhere, u"-r"_s, u"-t 1"_s);
        QTRY_COMPARE(m_workspace.windowTitle(4242), u"above"_s);
        ForeignApplication::manage(above, u"-r"_s, u"-b add,hidden"_s);
        QTRY_COMPARE(m_workspace.windowTitle(4242), u"below"_s);
        for (const auto &[modern, old, title] :
             {std::tuple<QByteArray, QByteArray, QString>("gr\xc3\xbc\xc3\x9f", "old", u"grüß"_s),
              {"", "gr\xc3\xbc", u"grü"_s},
              {"", "gr\xfc", u"grü"_s},
              {QByteArray("\xc3\xbc").repeated(600).prepend('x'), "", u'x' + QString(511, u'ü')}}) {
            m_terminal.setText(below, "_NET_WM_NAME", modern);
            m_terminal.setText(below, "WM_NAME", old);
            QCOMPARE(m_workspace.windowTitle(4242), title);
        }
        m_terminal.setText(below, "_NET_WM_NAME", "");
        for (const pid_t pid : {4242, 4444, 0}) // without a title, without a window, and no process
            QCOMPARE(m_workspace.windowTitle(pid), std::nullopt);
    }

    void animationsAreFollowedAsTheSettingsManagerAnnouncesThemWheneverItComes()
    {
        using namespace std::string_literals;
        const auto bytes = [](const std::string &text) { return QByteArray::fromStdString(text); };
        const QByteArray text = bytes("\1\0\0\5Net/X\0\0\0\0\0\0\1\0\0\0\3abc\0"s); // big endian
        const QByteArray colour = bytes("\2\0\0\1C\0\0\0\0\0\0\1\0\0\0\0\0\0\0\0"s);
        const QByteArray name = bytes("\0\0\0\24Gtk/EnableAnimations\0\0\0\1"s);
        const QByteArray head = bytes("\1\0\0\0\0\0\0\1\0\0\0\3"s);
        const auto settings = [&](char value) -> QByteArray {
            return head + text + colour + name + bytes("\0\0\0"s) + value;
        };
        const QByteArray little =
            bytes("\0\0\0\0\1\0\0\0\1\0\0\0\0\0\24\0Gtk/EnableAnimations\1\0\0\0\0\0\0\0"s);
        QCOMPARE(settingIn(little, "Gtk/EnableAnimations"), 0);
        for (qsizetype length = 0; length < settings(1).size(); ++length)
            QVERIFY(!settingIn(settings(1).first(length), "Gtk/EnableAnimations"));
        QVERIFY(!settingIn(head + bytes("\1\0\xff\xff"s) + QByteArray(99, '\xff'), "Gtk/EnableAnimations"));

        X11Settings watched(X11Connection::ofThisProgram());
        QCOMPARE(watched.animates(), std::nullopt);
        const auto manager = m_editor.open({0, 0, 100, 100}, Qt::red, ForeignApplication::Unmanaged);
        m_editor.setText(manager, "_XSETTINGS_SETTINGS", settings(0));
        m_editor.own(X11Atom::SettingsManager, manager);
        QTRY_COMPARE(watched.animates(), false);
        m_editor.setText(manager, "_XSETTINGS_SETTINGS", settings(1));
        QTRY_COMPARE(watched.animates(), true);
        m_editor.own(X11Atom::SettingsManager, XCB_WINDOW_NONE);
        QTRY_COMPARE(watched.animates(), std::nullopt);
    }

    void anAnnouncedHostIsPreferredToATrayForAWhile()
    {
        openTray();
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
        openTray();
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

QTEST_MAIN(TestX11Services)
#include "tst_x11_services.moc"

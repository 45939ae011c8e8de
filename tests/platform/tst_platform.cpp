#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QElapsedTimer>
#include <QImage>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>
#include <QWidget>

#include <csignal>
#include <pty.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Platform/Backend.h"
#include "Platform/FolderWatch.h"
#include "Platform/Freedesktop/FreedesktopPreferences.h"
#include "Platform/Freedesktop/KdeSettings.h"
#include "Platform/Freedesktop/SessionBusNotifications.h"
#include "Platform/InstanceClient.h"
#include "Platform/ProcessTable.h"
#include "Platform/RegularFile.h"
#include "Platform/System.h"
#include "Platform/WindowChoice.h"
#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace nubble;

namespace {

// Answers as the real one does: with a value wrapped twice.
class Portal : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public Q_SLOTS:
    QDBusVariant Read(const QString &group, const QString &key)
    {
        const bool known = group == u"org.gnome.desktop.interface" && key == u"enable-animations";
        return QDBusVariant(QVariant::fromValue(QDBusVariant(known ? QVariant(false) : u"unknown"_s)));
    }
};

class SettableAnimations : public AnimationSetting {
public:
    [[nodiscard]] std::optional<bool> animates() const override { return m_animates; }
    void set(std::optional<bool> animates)
    {
        m_animates = animates;
        Q_EMIT changed();
    }

private:
    std::optional<bool> m_animates;
};

} // namespace

// What needs no display: the files, the session bus, and the services of a desktop that is not there.
class TestPlatform : public QObject {
    Q_OBJECT

private:
    QDBusConnection m_other =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"another process"_s);

private Q_SLOTS:
    void tellsOfAFolderThatIsMadeLaterAtOnceButNoMoreOftenThanEvery50Milliseconds()
    {
        const TemporaryHome home;
        const auto watch = System::folderWatch();
        QSignalSpy changed(watch.get(), &FolderWatch::changed);
        const auto watched = [&] {
            return watch->watch({{QFile::encodeName(home.path(u"a/b"_s)), ".json"}});
        };
        QVERIFY(watched());
        QTRY_COMPARE(changed.count(), 1); // from now on
        home.write(u"other"_s, "1");
        home.write(u"a/b/1.json"_s, "1");
        QTRY_COMPARE(changed.count(), 2);
        for (int look = 0; look < 3; ++look)
            QVERIFY(watched());
        QTRY_COMPARE(changed.count(), 3);
        QElapsedTimer time;
        time.start();
        for (int number = 0; number < 500; ++number) {
            home.write(number % 2 == 0 ? u"a/b/1.json"_s : u"a/b/1.json.new"_s, "2");
            QCoreApplication::processEvents();
        }
        QTRY_VERIFY(changed.count() > 3);
        QVERIFY(changed.count() <= 3 + 2 + time.elapsed() / 50);
        QTest::qWait(0);
        const qsizetype before = changed.count();
        home.write(u"a/b/1.json.new"_s, "of no concern");
        QVERIFY(QDir(home.path(u"a"_s)).removeRecursively());
        QTRY_VERIFY(changed.count() > before);
        QVERIFY(watched());
    }

    void theWantedWindowIsTheOneOfItsNumberElseOfItsTitleElseTheLast()
    {
        const QList<CandidateWindow> windows{
            {1, u"* Plant the hedge"_s}, {2, u"* Plant"_s}, {3, u"plant"_s},
            {4, u"* Plant a tree"_s},    {5, u"* Water"_s}, {6, u"- Water"_s}};
        const QString title = u"Plant"_s;
        for (const auto &[window, wanted, choice] :
             std::initializer_list<std::tuple<quint32, QString, WindowChoice>>{
                 {1, title, {0, true}},
                 {0, title, {1, true}},
                 {9, title, {1, true}},
                 {9, u"Plant the hedge"_s, {0, true}},
                 {9, u"Water"_s, {5, false}},
                 {0, u"Pl"_s, {5, false}},
                 {0, {}, {5, false}},
                 {0, u"PLANT"_s, {5, false}}})
            QCOMPARE(chooseWindow(windows, {.chain = {}, .window = window, .title = wanted}), choice);
        QCOMPARE(chooseWindow(windows.first(1), {.chain = {}}), (WindowChoice{0, true}));
        const QString cutOff(200, u'x');
        QVERIFY(chooseWindow({{1, cutOff}, {2, {}}}, {.chain = {}, .title = cutOff + cutOff}).isCertain);
    }

    void everyServiceIsThereWithoutADesktop()
    {
        Backend backend = makeBackend(Home(u"/nonexistent"_s));
        QVERIFY(backend.mouseMonitor && backend.hotKeys && backend.preferences);
        QCOMPARE(backend.workspace->runningApplications(), QList<RunningApplication>());
        QVERIFY(!backend.workspace->canActivate() && !backend.mouseMonitor->canWatch());
        QVERIFY(!backend.screenCapture->canCapture() && backend.screenCapture->grab().isNull());
        QVERIFY(!backend.workspace->frontApplication() && !backend.workspace->windowTitle(::getpid()));
        QVERIFY(!backend.hotKeys->grab(1, Qt::CTRL | Qt::Key_A) && !backend.hotKeys->isGrabbed(1));
        QCOMPARE(backend.workspace->activateNearest({.chain = {::getpid()}}), Activation::Impossible);

        QWidget window;
        const auto surface = backend.makePanelSurface(window);
        surface->place({.frame = {10, 20, 300, 200}});
        surface->orderFront();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QCOMPARE(window.geometry(), QRect(10, 20, 300, 200));
        QVERIFY(surface->takeKeyboard());
        QTRY_VERIFY(window.isActiveWindow());
        surface->orderOut();
        QVERIFY(!window.isVisible());

        QVERIFY(surface->isObservable());
        for (const auto *interface : {"org.freedesktop.ScreenSaver", "org.gnome.ScreenSaver"}) {
            const auto tell = [&](bool active) {
                auto signal = QDBusMessage::createSignal(
                    u"/locker"_s, QString::fromLatin1(interface), u"ActiveChanged"_s);
                signal.setArguments({active});
                return QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"locker"_s).send(signal);
            };
            for (const bool dies : {false, true}) {
                QVERIFY(tell(true));
                QTRY_VERIFY(!surface->isObservable());
                if (dies)
                    QDBusConnection::disconnectFromBus(u"locker"_s);
                else
                    QVERIFY(tell(false));
                QTRY_VERIFY(surface->isObservable());
            }
        }
    }

    void aFloatingWindowHasTheKeyboardAndIsMovedByHand()
    {
        QWidget window;
        const auto surface = makeBackend(Home(u"/nonexistent"_s)).makeFloatingSurface(window);
        surface->place({10, 20, 300, 200});
        surface->orderFront();
        QTRY_VERIFY(surface->hasKeyboard());

        QTest::mousePress(&window, Qt::LeftButton, {}, {40, 30});
        QCursor::setPos(window.mapToGlobal(QPoint(40, 30)));
        surface->startMove();
        QTest::mouseMove(&window, {60, 70});
        QTRY_COMPARE(window.pos(), QPoint(30, 60));
        QTest::mouseRelease(&window, Qt::LeftButton, {}, {40, 30});
        QTest::mouseMove(&window, {90, 90});
        QCOMPARE(window.pos(), QPoint(30, 60));
    }

    void onlyRegularFilesAreOpened()
    {
        const TemporaryHome home;
        QCOMPARE(::mkfifo(QFile::encodeName(home.path(u"fifo"_s)), 0600), 0);
        QVERIFY(QFile::link(home.write(u"file"_s, "text"), home.path(u"link"_s)));
        for (const auto &[name, opens] :
             {std::pair(u"file"_s, true), {u"link"_s, true}, {u"fifo"_s, false}, {u"."_s, false}})
            QVERIFY2(RegularFile::open(home.path(name)).has_value() == opens, qPrintable(name));
        QVERIFY(!RegularFile::open(u"/dev/zero"_s));
    }

    void aProcessIsKnownByItsExecutableAndItsParent()
    {
        const TemporaryHome home;
        const std::unique_ptr<ProcessTable> table = System::processTable();
        const QString odd = u"od) d (S 1 2"_s;
        QVERIFY(QFile::copy(u"/bin/sleep"_s, home.path(odd)));
        QProcess process;
        process.start(home.path(odd), {u"60"_s});
        QVERIFY(process.waitForStarted());
        const auto pid = static_cast<pid_t>(process.processId());
        const std::optional<ProcessInfo> info = table->find(pid);
        QVERIFY(info && !info->isOrphan);
        QCOMPARE(info->name, odd);
        QCOMPARE(info->parent, ::getpid());
        QVERIFY(QFile::remove(home.path(odd)));
        QVERIFY(table->find(pid) == info);
        table->signal(pid, info->birth + 1, SIGKILL);
        QVERIFY(!process.waitForFinished(200));
        table->signal(pid, info->birth, SIGINT);
        for (int i = 0; i < 500 && table->find(pid); ++i)
            ::usleep(10'000); // nobody has taken note of its end so far
        QVERIFY(!table->find(pid));
        QVERIFY(process.waitForFinished());
        for (const pid_t none : {pid, 0, -1})
            QVERIFY(!table->find(none));

        process.start(u"/bin/sh"_s, {u"-c"_s, u"sleep 60 >/dev/null & echo $!"_s});
        QVERIFY(process.waitForFinished());
        const pid_t left = process.readAll().trimmed().toInt();
        QVERIFY(table->find(left).value_or(ProcessInfo()).isOrphan);
        ::kill(left, SIGKILL);
    }

    void aProcessIsFoundWithItsTerminal()
    {
        int terminal = -1;
        const pid_t pid = ::forkpty(&terminal, nullptr, nullptr, nullptr);
        if (pid == 0)
            ::_exit(::pause());
        const auto processes = System::processTable();
        QTRY_COMPARE(
            u"/dev/"_s + processes->find(pid).value_or(ProcessInfo()).terminal,
            QString::fromUtf8(::ptsname(terminal)));
        ::close(terminal); // which ends it
        QCOMPARE(::waitpid(pid, nullptr, 0), pid);
    }

    void homeIsThePasswordDatabasesWhateverTheEnvironmentSays()
    {
        const QString before = Home::ofUser().path();
        const QByteArray home = qgetenv("HOME");
        qputenv("HOME", "/nonexistent");
        QCOMPARE(Home::ofUser().path(), before);
        qputenv("HOME", home);

        qputenv("XDG_CONFIG_HOME", "/tmp/settings/");
        qputenv("CLAUDE_CONFIG_DIR", "/tmp/claude/");
        QCOMPARE(Home::ofUser().configFolder(), u"/tmp/settings"_s);
        QCOMPARE(Home::ofUser().claudeFolders(), QStringList({before + u"/.claude", u"/tmp/claude"_s}));
        QCOMPARE(Home(u"/trial/"_s).configFolder(), u"/trial/.config"_s);
        QCOMPARE(Home(u"/trial/"_s).claudeFolders(), QStringList{u"/trial/.claude"_s});
        qputenv("XDG_CONFIG_HOME", "not/absolute");
        qputenv("CLAUDE_CONFIG_DIR", "not/absolute");
        QCOMPARE(Home::ofUser().configFolder(), before + u"/.config");
        QCOMPARE(Home::ofUser().claudeFolders().size(), 1);
        qunsetenv("XDG_CONFIG_HOME");
        qunsetenv("CLAUDE_CONFIG_DIR");
    }

    void applicationDataLiesInTheLibraryWhereThatExists()
    {
        const TemporaryHome home;
        for (const QString &folder : {u".config"_s, u"Library/Application Support"_s}) {
            QVERIFY(QDir().mkpath(home.path(folder + u"/Claude")));
            QCOMPARE(home.home().applicationSupport(u"Claude"_s), home.path(folder + u"/Claude"));
        }
    }

    void aCallTellsWhyItIsNotAnswered()
    {
        using Kind = InstanceAnswer::Kind;
        InstanceClient client("com.brevandel.nubble.test");
        const auto repeat = [&client](std::chrono::milliseconds patience) {
            return client.call("Repeat", {"text", 1}, patience).kind;
        };
        QCOMPARE(repeat(1s), Kind::NotOwned);
        QVERIFY(m_other.registerService(u"com.brevandel.nubble.test"_s));
        QCOMPARE(repeat(1s), Kind::Foreign); // it has no such object

        QObject busy; // this thread serves it, and is waiting
        QVERIFY(m_other.registerObject(u"/com/brevandel/nubble"_s, &busy, QDBusConnection::ExportAllSlots));
        QCOMPARE(repeat(50ms), Kind::Silence);
        QVERIFY(m_other.unregisterService(u"com.brevandel.nubble.test"_s));
    }

    void reducedMotionComesFromThePortalAndFollowsIt()
    {
        Portal portal;
        const auto path = u"/org/freedesktop/portal/desktop"_s;
        QVERIFY(m_other.registerObject(path, &portal, QDBusConnection::ExportAllSlots));
        QVERIFY(m_other.registerService(u"org.freedesktop.portal.Desktop"_s));

        const TemporaryHome home;
        FreedesktopPreferences preferences(home.home().configFolder(), nullptr);
        const QSignalSpy changes(&preferences, &DesktopPreferences::reducedMotionChanged);
        QVERIFY(!preferences.reducedMotion()); // until the answer comes
        QTRY_VERIFY(preferences.reducedMotion());

        const auto tell = [&](const QString &key, const QVariant &value) {
            auto signal =
                QDBusMessage::createSignal(path, u"org.freedesktop.portal.Settings"_s, u"SettingChanged"_s);
            signal.setArguments(
                {u"org.gnome.desktop.interface"_s, key, QVariant::fromValue(QDBusVariant(value))});
            QVERIFY(m_other.send(signal));
        };
        tell(u"enable-animations"_s, u"nonsense"_s);
        tell(u"cursor-blink"_s, true);
        tell(u"enable-animations"_s, true);
        QTRY_VERIFY(!preferences.reducedMotion());
        tell(u"enable-animations"_s, false);
        QTRY_VERIFY(preferences.reducedMotion());
        QCOMPARE(changes.count(), 3);
        for (const bool isThere : {false, true}) { // asked again when another one comes
            const auto name = u"org.freedesktop.portal.Desktop"_s;
            QVERIFY(isThere ? m_other.registerService(name) : m_other.unregisterService(name));
            QTRY_COMPARE(preferences.reducedMotion(), isThere);
        }
        QVERIFY(m_other.unregisterService(u"org.freedesktop.portal.Desktop"_s));
    }

    void withoutAPortalReducedMotionComesFromTheDesktopsSettingsOrElseFromKdesFile()
    {
        const TemporaryHome home;
        const auto write = [&home](const char *text) { home.write(u".config/kdeglobals"_s, text); };
        QVERIFY(QDir().mkpath(home.home().configFolder()));
        auto settings = std::make_unique<SettableAnimations>();
        SettableAnimations &desktop = *settings;
        const FreedesktopPreferences preferences(home.home().configFolder(), std::move(settings));
        for (const auto *off : // a file that comes, is written again, and is replaced
             {"[General]\nAnimationDurationFactor=1\n\n [KDE]\r\n AnimationDurationFactor = 0.0 \r\n",
              "[KDE]\nAnimationDurationFactor=0\n"}) {
            write(off);
            QTRY_VERIFY(preferences.reducedMotion());
            home.write(u".config/new"_s, "[KDE]\nAnimationDurationFactor=0.5\n");
            QCOMPARE(
                ::rename(
                    qPrintable(home.path(u".config/new"_s)), qPrintable(home.path(u".config/kdeglobals"_s))),
                0);
            QTRY_VERIFY(!preferences.reducedMotion());
        }
        for (const std::optional<bool> &animates : {std::optional(false), {}, {true}, {false}}) {
            desktop.set(animates);
            QCOMPARE(preferences.reducedMotion(), !animates.value_or(true));
        }
        for (const auto *file :
             {"[KDE]\nAnimationDurationFactor=\n", "[KDE]\n[Other]\nAnimationDurationFactor=0\n", ""})
            QVERIFY2(!kdeAnimates(file), file);
    }

    void theTextsOfANotificationArriveWhateverElseIsInIt()
    {
        using Texts = QMap<QString, QString>;
        qDBusRegisterMetaType<Texts>();
        SessionBusNotifications notifications;
        const QSignalSpy spy(&notifications, &DistributedNotifications::received);
        const auto question = u"question"_s;
        const Texts texts{{question, u"Wer weiß? 🙂"_s}}, none;
        using Row = std::tuple<QString, QVariantList, Texts>;
        int received = 0;
        for (const auto &[name, arguments, expected] :
             {Row(u"ask"_s, {QVariantMap{{question, texts[question]}, {u"n"_s, 3}}}, texts), // a{sv}
              Row(u"ask"_s, {QVariant::fromValue(texts)}, texts),                            // a{ss}
              Row(u"ask"_s, {QVariantMap{{question, QVariantMap{{u"a"_s, 1}}}}}, none),
              Row(u"ask"_s, {texts[question]}, none),
              Row(u"ask"_s, {QVariantMap{{question, u"one"_s}}, 2}, none),
              Row(u"other"_s, {}, none), // which is nobody's
              Row(u"notes"_s, {}, none)}) {
            auto signal = QDBusMessage::createSignal(u"/any/path"_s, u"com.brevandel.nubble"_s, name);
            signal.setArguments(arguments);
            QVERIFY(m_other.send(signal));
            if (name == u"other"_s)
                continue;
            ++received;
            QTRY_COMPARE(spy.count(), received);
            QCOMPARE(spy.last().at(0).toString(), name);
            QCOMPARE(spy.last().at(1).value<Texts>(), expected);
        }
    }
};

QTEST_MAIN(TestPlatform)
#include "tst_platform.moc"

#include <QApplication>
#include <QTest>
#include <QWidget>

#include <sys/stat.h>

#include "Platform/Backend.h"
#include "Platform/RegularFile.h"
#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;
using namespace nubble;

// What is the same on every desktop, and what there is without one.
class TestPlatform : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyServiceIsThereWithoutADesktop()
    {
        Backend backend = makeBackend(Home(u"/nonexistent"_s));
        QVERIFY(backend.mouseMonitor && backend.preferences);
        QCOMPARE(backend.workspace->runningApplications(), QList<RunningApplication>());
        QVERIFY(!backend.workspace->canActivate() && !backend.mouseMonitor->canWatch());
        QCOMPARE(backend.workspace->activateNearest({::getpid()}), Activation::Impossible);

        QWidget window;
        const auto surface = backend.makePanelSurface(window);
        surface->place({.frame = {10, 20, 300, 200}});
        surface->setActiveRects({QRectF(0, 0, 10, 10)});
        surface->orderFront();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QCOMPARE(window.geometry(), QRect(10, 20, 300, 200));
        QVERIFY(surface->isTranslucent());
        surface->takeKeyboard();
        QTRY_VERIFY(window.isActiveWindow());
        surface->orderOut();
        QVERIFY(!window.isVisible());
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
        surface->orderOut();
        QVERIFY(!window.isVisible());
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

    void homeIsThePasswordDatabasesWhateverTheEnvironmentSays()
    {
        const QString before = Home::ofUser().path();
        const QByteArray home = qgetenv("HOME");
        qputenv("HOME", "/nonexistent");
        QCOMPARE(Home::ofUser().path(), before);
        qputenv("HOME", home);

        qputenv("XDG_CONFIG_HOME", "/tmp/settings/");
        QCOMPARE(Home::ofUser().configFolder(), u"/tmp/settings"_s);
        QCOMPARE(Home(u"/trial/"_s).configFolder(), u"/trial/.config"_s);
        qputenv("XDG_CONFIG_HOME", "not/absolute");
        QCOMPARE(Home::ofUser().configFolder(), before + u"/.config");
        qunsetenv("XDG_CONFIG_HOME");
    }

    void applicationDataLiesInTheLibraryWhereThatExists()
    {
        const TemporaryHome home;
        for (const QString &folder : {u".config"_s, u"Library/Application Support"_s}) {
            QVERIFY(QDir().mkpath(home.path(folder + u"/Claude")));
            QCOMPARE(home.home().applicationSupport(u"Claude"_s), home.path(folder + u"/Claude"));
        }
    }
};

QTEST_MAIN(TestPlatform)
#include "tst_platform.moc"

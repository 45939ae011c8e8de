#include <QApplication>
#include <QTest>
#include <QWidget>

#include "Platform/Backend.h"
#include "support/TemporaryHome.h"

using namespace nubble;

class TestPlainBackend : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyServiceIsThereWithoutADesktop()
    {
        const TemporaryHome home;
        Backend backend = makeBackend(home.home());
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
        const TemporaryHome home;
        const Backend backend = makeBackend(home.home());
        QWidget window;
        const auto surface = backend.makeFloatingSurface(window);
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
};

QTEST_MAIN(TestPlainBackend)
#include "tst_plain_backend.moc"

#include <QApplication>
#include <QDialog>
#include <QMenu>
#include <QPainterPath>
#include <QSignalSpy>

#include "platform/SurfaceTest.h"

using namespace Qt::StringLiterals;
using namespace nubble;

// Run with several window managers, at scales 1 and 2.
class TestX11FloatingSurface : public SurfaceTest {
    Q_OBJECT

private:
    static constexpr QRect frame{120, 90, 260, 180};
    std::unique_ptr<FloatingSurface> m_surface;

    void openAt(const QRect &place)
    {
        m_surface->place(place);
        m_surface->orderFront();
        QTRY_VERIFY(m_surface->hasKeyboard());
        QTRY_COMPARE(m_others->focusedWindow(), m_window->id());
        QTRY_COMPARE(onScreen(), QRect(place.topLeft() * m_scale, place.size() * m_scale));
    }
    void claimToComposite(xcb_window_t owner)
    {
        m_others->own(X11Atom::CompositingManager, owner);
        QTRY_COMPARE(m_surface->isTranslucent(), owner != XCB_WINDOW_NONE);
    }

private Q_SLOTS:
    void init()
    {
        m_surface.reset();
        openWindows();
        m_surface = m_backend.makeFloatingSurface(*m_window);
        m_surface->setOutline(outlineOf({{}, frame.size()}));
    }
    void takesTheKeyboardAndGivesItBackAtEachOpening()
    {
        m_others->setNumbers(m_work, "_NET_WM_USER_TIME", {0x7FFFFFFF}); // used later than this program
        for (const QPoint by : {QPoint(), QPoint(70, 40)}) {
            openAt(frame.translated(by));
            QCOMPARE(m_others->numbers(m_window->id(), "_NET_WM_DESKTOP"), std::vector<uint32_t>{0xFFFFFFFF});
            for (const char *state :
                 {"_NET_WM_STATE_ABOVE", "_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER"})
                QVERIFY2(m_others->hasState(m_window->id(), state), state);
            m_surface->orderOut();
            QTRY_COMPARE(m_others->focusedWindow(), m_work);
        }
    }

    void losesTheKeyboardToOtherWindowsButNotToGrabsItsMenusAndDialogs()
    {
        openAt(frame);
        const QSignalSpy lost(m_surface.get(), &FloatingSurface::keyboardLost);
        const auto isLostSoon = [&] { // Qt takes 100 ms to say so
            return QTest::qWaitFor([&] { return !lost.isEmpty(); }, 300);
        };
        xcb_connection_t *x11 = m_others->x11().get();
        xcb_grab_keyboard(
            x11, 0, m_others->root(), XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        QVERIFY(!isLostSoon());
        xcb_ungrab_keyboard(x11, XCB_CURRENT_TIME);

        QMenu menu(&*m_window);
        menu.addAction(u"Entry"_s);
        menu.popup(m_window->mapToGlobal(QPoint(20, 20)));
        QVERIFY(QTest::qWaitForWindowExposed(&menu));
        QVERIFY(!isLostSoon());
        menu.hide();

        QDialog dialog(&*m_window);
        dialog.show();
        dialog.activateWindow();
        QTRY_COMPARE(QGuiApplication::focusWindow(), dialog.windowHandle());
        QVERIFY(m_surface->hasKeyboard());
        dialog.close();
        QTRY_COMPARE(QGuiApplication::focusWindow(), m_window->windowHandle());
        QTRY_COMPARE(m_others->focusedWindow(), m_window->id());
        QCOMPARE(lost.count(), 0);
        m_others->focus(m_work);
        QTRY_COMPARE(lost.count(), 1);
        QVERIFY(!m_surface->hasKeyboard());
    }

    void leavesThePictureWithTheKeyboardInIt()
    {
        openAt(frame);
        const auto shown = [this] { return colourOf(pixelAt({100, 100})) == QColor(Qt::white); };
        QTRY_VERIFY(shown());
        for (const bool unseen : {true, false}) {
            m_surface->setUnseen(unseen);
            QTRY_COMPARE(shown(), !unseen);
            QVERIFY(m_surface->hasKeyboard());
        }
    }

    void isSoonOpenedAgainWithoutALossOfTheKeyboard()
    {
        QSignalSpy taken(m_surface.get(), &FloatingSurface::keyboardTaken);
        for (const auto pause : {0, 40, 80, 95, 120}) {
            openAt(frame);
            m_surface->orderOut();
            QVERIFY(!m_surface->hasKeyboard());
            QTest::qWait(pause); // the toolkit notices after a tenth of a second
            QSignalSpy lost(m_surface.get(), &FloatingSurface::keyboardLost);
            taken.clear();
            openAt(frame);
            QTRY_COMPARE(taken.size(), 1);
            QTest::qWait(150);
            QCOMPARE(lost.size(), 0);
            m_others->focus(m_work);
            QTRY_COMPARE(lost.size(), 1);
            m_surface->orderOut();
        }
    }

    void followsThePointerUntilTheButtonIsReleased()
    {
        openAt(frame);
        const QPoint before = onScreen().topLeft();
        const QPoint grip = pixelAt({30, 30});
        userPointsAt(grip, u"mousedown 1"_s);
        QTRY_COMPARE(PlainWindow::pressed, &*m_window);
        m_surface->startMove();
        const auto movedFar = [&] { return (onScreen().topLeft() - before).manhattanLength() > 60; };
        QVERIFY(QTest::qWaitFor([&] { // the window manager takes the pointer at a time of its own
            userPointsAt(grip + QPoint(40, 30));
            userPointsAt(grip + QPoint(80, 60));
            return movedFar();
        }));
        userPointsAt(grip + QPoint(80, 60), u"mouseup 1"_s);
        QVERIFY(clickReachesWindow({60, 60}));
        QVERIFY(movedFar());
        QVERIFY(m_surface->hasKeyboard());
    }

    void reachesNoFurtherThanItsOutline()
    {
        m_surface->setOutline(outlineOf({20, 20, 220, 140}));
        // Above a full screen i3 does not cut its own window again when it takes the frame away.
        ForeignApplication::manage(m_work, u"-r"_s, u"-b add,fullscreen"_s);
        openAt(frame);
        const auto colour = [this](const QPoint &position) { return colourOf(pixelAt(position)); };
        QVERIFY(!m_surface->isTranslucent());
        for (const QPoint corner : {QPoint(22, 22), QPoint(237, 157)})
            QTRY_COMPARE(colour(corner), QColor(Qt::white));
        for (const QPoint beyond : {QPoint(18, 18), QPoint(241, 161)})
            QTRY_COMPARE(colour(beyond), QColor(Qt::red));
        QVERIFY(clickReachesWindow({30, 30}));
        claimToComposite(m_work);
        QTRY_COMPARE(colour({10, 10}), QColor(Qt::white));
        QVERIFY(clickReachesWindow({30, 30}));
        QVERIFY(!clickReachesWindow({10, 10}));
        claimToComposite(XCB_WINDOW_NONE);
        m_surface->orderFront();
        QTRY_COMPARE(colour({10, 10}), QColor(Qt::red));
    }
};

QTEST_MAIN(TestX11FloatingSurface)
#include "tst_x11_floating_surface.moc"

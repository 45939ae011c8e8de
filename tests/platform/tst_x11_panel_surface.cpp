#include <QApplication>
#include <QPainterPath>
#include <QSignalSpy>

#include "platform/SurfaceTest.h"

using namespace nubble;

// Run at scales 1, 1.5 and 2.
class TestX11PanelSurface : public SurfaceTest {
    Q_OBJECT

private:
    std::unique_ptr<PanelSurface> m_surface;

    void showPanel(const QRect &frame)
    {
        m_surface->place({.frame = frame});
        m_surface->setOutline(outlineOf({{}, frame.size()}));
        m_surface->orderFront();
        QVERIFY(QTest::qWaitForWindowExposed(&*m_window));
    }

private Q_SLOTS:
    void init()
    {
        m_surface.reset();
        openWindows();
        m_surface = m_backend.makePanelSurface(*m_window);
    }
    void letsClicksThroughOutsideItsOutline()
    {
        showPanel({100, 100, 200, 200});
        QPainterPath twoPlaces = outlineOf({10, 10, 60, 60});
        twoPlaces.addRect({100, 100, 20, 20});
        m_surface->setOutline(twoPlaces);
        QVERIFY(clickReachesWindow({110, 110}));
        const auto expectThatClicksComeAndGoThrough = [this] {
            QVERIFY(clickReachesWindow({50, 50}));
            QVERIFY(!clickReachesWindow({90, 50}));
        };
        expectThatClicksComeAndGoThrough();
        m_surface->place({.frame = {60, 60, 240, 240}});
        expectThatClicksComeAndGoThrough();
        m_window->windowHandle()->destroy(); // as Qt does on its own when a screen goes away
        m_window->windowHandle()->create();
        m_surface->orderOut();
        m_surface->orderFront();
        QVERIFY(QTest::qWaitForWindowExposed(&*m_window));
        expectThatClicksComeAndGoThrough();
    }

    void isCutToItsOutlineToThePixelWithoutACompositingManager()
    {
        showPanel({100, 100, 200, 200});
        QVERIFY(!m_surface->isTranslucent());

        const int oddPixel = qRound(101 * m_scale) + 1; // no whole number of units at a scale of 2
        m_surface->setOutline(outlineOf(QRectF(QPointF(20, 20), QPointF(oddPixel / m_scale, 120))));
        const QPoint pastRightEdge = pixelAt({0, 50}) + QPoint(oddPixel, 0);
        QTRY_COMPARE(colourOf(pastRightEdge), QColor(Qt::red));
        QTRY_COMPARE(colourOf(pastRightEdge - QPoint(1, 0)), QColor(Qt::white));
        QCOMPARE(colourOf(pixelAt({10, 10})), QColor(Qt::red));
    }

    void liesFlushWithTheScreensEdgesWhateverDocksReserve()
    {
        const QRect screen = QGuiApplication::primaryScreen()->geometry();
        const auto dock = m_others->open({1240, 0, 40, 800}, Qt::blue, ForeignApplication::Dock);
        m_others->setNumbers(dock, "_NET_WM_STRUT_PARTIAL", {0, 40, 0, 0, 0, 0, 0, 800, 0, 0, 0, 0});
        for (const int width : {201, 202, 203}) { // different remainders at a scale of 1.5
            QRect frame(screen.topLeft(), QSize(width, width + 1));
            showPanel(frame);
            QTRY_COMPARE(onScreen().width(), qRound(width * m_scale));
            QTRY_COMPARE(onScreen().topLeft(), QPoint(0, 0));
            frame.moveBottomRight(screen.bottomRight());
            showPanel(frame);
            QTRY_COMPARE(onScreen().width(), qRound(width * m_scale));
            QTRY_COMPARE(onScreen().bottomRight(), QPoint(1279, 799));
        }
    }

    void tellsOfTheBarsOfDesktopsThatDrawThemAboveAllWindows()
    {
        const auto root = m_others->root();
        const auto manager = m_others->numbers(root, "_NET_SUPPORTING_WM_CHECK");
        const auto top = static_cast<uint32_t>(qRound(30 * m_scale));
        QSignalSpy changed(m_surface.get(), &PanelSurface::barsChanged);
        m_others->setNumbers(root, "_NET_SUPPORTING_WM_CHECK", {m_work}, "WINDOW");
        for (const auto &[name, areas, bars] : // of two screens, the other to the right
             {std::tuple<const char *, std::vector<uint32_t>, QMargins>(
                  "GNOME Shell", {1280, 0, 900, 700, 0, top, 1280, 800 - top}, {0, 30, 0, 0}),
              {"Mutter (Muffin)", {top, 0, 1280 - 2 * top, 800 - top}, {30, 0, 30, 30}},
              {"Mutter (Muffin)", {0, 0, 1280}, {}},
              {"Openbox", {0, top, 1280, 800 - top}, {}}}) {
            m_others->setText(m_work, "_NET_WM_NAME", name);
            m_others->setNumbers(root, "_GTK_WORKAREAS_D0", areas);
            QVERIFY(changed.wait());
            QTRY_COMPARE(m_surface->barsAbove(), bars);
        }
        m_others->setNumbers(root, "_NET_SUPPORTING_WM_CHECK", manager, "WINDOW");
    }

    void knowsWhenNobodyCanSeeIt()
    {
        xcb_connection_t *x11 = m_others->x11().get();
        showPanel({100, 100, 200, 200});
        m_window->windowHandle()->destroy();
        m_window->windowHandle()->create(); // another native window
        m_surface->orderOut();
        m_surface->orderFront();
        QVERIFY(m_surface->isObservable());
        for (const auto saver : {XCB_SCREEN_SAVER_ACTIVE, XCB_SCREEN_SAVER_RESET}) {
            xcb_force_screen_saver(x11, saver);
            m_others->x11().flush();
            QTRY_COMPARE(m_surface->isObservable(), saver == XCB_SCREEN_SAVER_RESET);
        }
        for (const auto state : {XCB_VISIBILITY_FULLY_OBSCURED, XCB_VISIBILITY_PARTIALLY_OBSCURED}) {
            xcb_visibility_notify_event_t event{};
            event.response_type = XCB_VISIBILITY_NOTIFY;
            event.window = m_window->id();
            event.state = static_cast<uint8_t>(state);
            xcb_send_event( // as a server does that has no Composite extension
                x11, 0, event.window, XCB_EVENT_MASK_VISIBILITY_CHANGE, reinterpret_cast<char *>(&event));
            m_others->x11().flush();
            QTRY_COMPARE(m_surface->isObservable(), state == XCB_VISIBILITY_PARTIALLY_OBSCURED);
        }
    }

    void givesTheKeyboardBackToTheWindowThatHadIt()
    {
        // Not the active window, to which it would go otherwise.
        const auto had = m_others->open({0, 0, 100, 100}, Qt::blue, ForeignApplication::Unmanaged);
        xcb_connection_t *x11 = m_others->x11().get();
        showPanel({100, 100, 200, 200});
        for (const bool hides : {false, true}) {
            xcb_set_input_focus(x11, XCB_INPUT_FOCUS_POINTER_ROOT, had, XCB_CURRENT_TIME);
            QVERIFY(m_surface->takeKeyboard());
            QTRY_COMPARE(m_others->focusedWindow(), m_window->id());
            hides ? m_surface->orderOut() : m_surface->releaseKeyboard();
            QTRY_COMPARE(m_others->focusedWindow(), had);
        }
    }
};

QTEST_MAIN(TestX11PanelSurface)
#include "tst_x11_panel_surface.moc"

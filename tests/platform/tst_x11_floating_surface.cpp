#include <QApplication>
#include <QDialog>
#include <QMenu>
#include <QPainter>
#include <QPainterPath>
#include <QProcess>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>
#include <QWindow>

#include "Platform/Backend.h"
#include "Platform/Home.h"
#include "platform/ForeignApplication.h"

using namespace nubble;

namespace {

constexpr QRect frame{120, 90, 260, 180};

// A white window that counts the presses that reach it.
class Window : public QWidget {
public:
    int presses = 0;

protected:
    void paintEvent(QPaintEvent *) override { QPainter(this).fillRect(rect(), Qt::white); }
    void mousePressEvent(QMouseEvent *) override { ++presses; }
};

// Another client of the X server, with a connection of its own.
class OtherClient {
public:
    OtherClient() : m_connection(xcb_connect(nullptr, nullptr)) { }
    ~OtherClient() { xcb_disconnect(m_connection); }
    OtherClient(const OtherClient &) = delete;
    OtherClient &operator=(const OtherClient &) = delete;

    [[nodiscard]] bool grabKeys()
    {
        const auto request = xcb_grab_keyboard(
            m_connection, 0, root(), XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        const XcbReply<xcb_grab_keyboard_reply_t> reply(
            xcb_grab_keyboard_reply(m_connection, request, nullptr));
        return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    }
    void claimToComposite()
    {
        const XcbReply<xcb_intern_atom_reply_t> selection(xcb_intern_atom_reply(
            m_connection, xcb_intern_atom(m_connection, 0, 13, "_NET_WM_CM_S0"), nullptr));
        const xcb_window_t owner = xcb_generate_id(m_connection);
        xcb_create_window(
            m_connection, 0, owner, root(), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT,
            0, nullptr);
        xcb_set_selection_owner(m_connection, owner, selection->atom, XCB_CURRENT_TIME);
        xcb_flush(m_connection);
    }

private:
    [[nodiscard]] xcb_window_t root() const
    {
        return xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
    }

    xcb_connection_t *m_connection;
};

void userMoves(const QPoint &pixel, const QStringList &then = {})
{
    QProcess::execute(
        QStringLiteral("xdotool"),
        QStringList{QStringLiteral("mousemove"), QString::number(pixel.x()), QString::number(pixel.y())}
            + then);
}

} // namespace

// Run with several window managers, at scales 1 and 2. Lengths of the surface are device-independent, those
// of the screen are pixels.
class TestX11FloatingSurface : public QObject {
    Q_OBJECT

private:
    Backend m_backend = makeBackend(Home(QStringLiteral("/nonexistent")));
    const qreal m_scale = QGuiApplication::primaryScreen()->devicePixelRatio();
    std::unique_ptr<ForeignApplication> m_others;
    std::unique_ptr<Window> m_window;
    std::unique_ptr<FloatingSurface> m_surface;
    xcb_window_t m_work = 0; // has the keyboard at first

    [[nodiscard]] xcb_window_t native() const
    {
        return static_cast<xcb_window_t>(m_window->windowHandle()->winId());
    }
    [[nodiscard]] QRect onScreen() const { return m_others->onScreen(native()); }
    [[nodiscard]] QPoint pixelAt(int x, int y) const { return onScreen().topLeft() + QPoint(x, y) * m_scale; }
    [[nodiscard]] QRect inPixels(const QRect &rect) const
    {
        return {rect.topLeft() * m_scale, rect.size() * m_scale};
    }
    void openAt(const QRect &place)
    {
        m_surface->place(place);
        m_surface->orderFront();
        QTRY_VERIFY(m_surface->hasKeyboard());
        QTRY_COMPARE(m_others->focusedWindow(), native());
        QTRY_COMPARE(onScreen(), inPixels(place));
    }
    [[nodiscard]] bool clickReachesWindow(int x, int y)
    {
        const int before = m_window->presses;
        const int beforeOthers = m_others->presses();
        userClicks(pixelAt(x, y));
        if (!QTest::qWaitFor(
                [&] { return m_window->presses > before || m_others->presses() > beforeOthers; }))
            qFatal("a click reaches nobody");
        return m_window->presses > before;
    }

private Q_SLOTS:
    void init()
    {
        m_others = std::make_unique<ForeignApplication>();
        m_work = m_others->open({0, 0, 1280, 800}, Qt::red);
        m_others->focus(m_work);
        m_window = std::make_unique<Window>();
        m_surface = m_backend.makeFloatingSurface(*m_window);
        QPainterPath all;
        all.addRect(QRect({}, frame.size()));
        m_surface->setOutline(all);
    }
    void cleanup()
    {
        m_surface.reset();
        m_window.reset();
        m_others.reset();
    }

    void takesTheKeyboardAndGivesItBackAtEachOpening()
    {
        m_others->setNumbers(m_work, "_NET_WM_USER_TIME", {0x7FFFFFFF}); // used later than this program
        for (const QPoint by : {QPoint(), QPoint(70, 40)}) {
            openAt(frame.translated(by));
            QCOMPARE(m_others->numbers(native(), "_NET_WM_DESKTOP"), std::vector<uint32_t>{0xFFFFFFFF});
            const auto states = m_others->numbers(native(), "_NET_WM_STATE");
            for (const char *state :
                 {"_NET_WM_STATE_ABOVE", "_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER"})
                QVERIFY2(std::count(states.begin(), states.end(), m_others->atom(state)) == 1, state);
            m_surface->orderOut();
            QTRY_COMPARE(m_others->focusedWindow(), m_work);
        }
    }

    void losesTheKeyboardToAnotherWindowButNotToAGrab()
    {
        openAt(frame);
        const QSignalSpy lost(m_surface.get(), &FloatingSurface::keyboardLost);
        {
            OtherClient hotKeys;
            QVERIFY(hotKeys.grabKeys());
            QVERIFY(!QTest::qWaitFor([&] { return !lost.isEmpty(); }, 300)); // Qt takes 100 ms to say so
        }
        m_others->focus(m_work);
        QTRY_COMPARE(lost.count(), 1);
        QVERIFY(!m_surface->hasKeyboard());
    }

    void keepsTheKeyboardForItsMenusAndDialogs()
    {
        openAt(frame);
        const QSignalSpy lost(m_surface.get(), &FloatingSurface::keyboardLost);
        QMenu menu(m_window.get());
        menu.addAction(QStringLiteral("Entry"));
        menu.popup(m_window->mapToGlobal(QPoint(20, 20)));
        QVERIFY(QTest::qWaitForWindowExposed(&menu));
        QVERIFY(!QTest::qWaitFor([&] { return !lost.isEmpty(); }, 300));
        menu.hide();

        QDialog dialog(m_window.get());
        dialog.show();
        dialog.activateWindow();
        QTRY_COMPARE(QGuiApplication::focusWindow(), dialog.windowHandle());
        QVERIFY(m_surface->hasKeyboard());
        dialog.close();
        QTRY_COMPARE(QGuiApplication::focusWindow(), m_window->windowHandle());
        QTRY_COMPARE(m_others->focusedWindow(), native());
        QCOMPARE(lost.count(), 0);
        m_others->focus(m_work);
        QTRY_COMPARE(lost.count(), 1);
    }

    void followsThePointerUntilTheButtonIsReleased()
    {
        openAt(frame);
        const QPoint before = onScreen().topLeft();
        const QPoint grip = pixelAt(30, 30);
        userMoves(grip, {QStringLiteral("mousedown"), QStringLiteral("1")});
        QTRY_COMPARE(m_window->presses, 1);
        m_surface->startMove();
        const auto movedFar = [&] { return (onScreen().topLeft() - before).manhattanLength() > 60; };
        QVERIFY(QTest::qWaitFor([&] { // the window manager takes the pointer at a time of its own
            userMoves(grip + QPoint(40, 30));
            userMoves(grip + QPoint(80, 60));
            return movedFar();
        }));
        userMoves(grip + QPoint(80, 60), {QStringLiteral("mouseup"), QStringLiteral("1")});
        QVERIFY(clickReachesWindow(60, 60));
        QVERIFY(movedFar());
        QVERIFY(m_surface->hasKeyboard());
    }

    void reachesNoFurtherThanItsOutline()
    {
        QPainterPath outline;
        outline.addRect(20, 20, 220, 140);
        m_surface->setOutline(outline);
        // Above a window on the full screen i3 does not cut its own window again when it takes the frame
        // away.
        QProcess::execute(
            QStringLiteral("wmctrl"),
            {QStringLiteral("-ir"), QString::number(m_work), QStringLiteral("-b"),
             QStringLiteral("add,fullscreen")});
        openAt(frame);
        const auto pixel = [this](int x, int y) {
            return QGuiApplication::primaryScreen()->grabWindow(0).toImage().pixelColor(pixelAt(x, y));
        };
        QVERIFY(!m_surface->isTranslucent());
        for (const QPoint corner : {QPoint(22, 22), QPoint(237, 157)})
            QTRY_COMPARE(pixel(corner.x(), corner.y()), QColor(Qt::white));
        for (const QPoint beyond : {QPoint(18, 18), QPoint(241, 161)})
            QTRY_COMPARE(pixel(beyond.x(), beyond.y()), QColor(Qt::red));
        QVERIFY(clickReachesWindow(30, 30));
        {
            OtherClient compositor;
            compositor.claimToComposite();
            QTRY_VERIFY(m_surface->isTranslucent());
            QTRY_COMPARE(pixel(10, 10), QColor(Qt::white));
            QVERIFY(clickReachesWindow(30, 30));
            QVERIFY(!clickReachesWindow(10, 10));
        }
        QTRY_VERIFY(!m_surface->isTranslucent());
        m_surface->orderFront();
        QTRY_COMPARE(pixel(10, 10), QColor(Qt::red));
    }
};

QTEST_MAIN(TestX11FloatingSurface)
#include "tst_x11_floating_surface.moc"

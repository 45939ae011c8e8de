#include <QApplication>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>
#include <QWidget>

#include "Platform/Backend.h"
#include "Platform/Home.h"
#include "platform/ForeignApplication.h"
#include "platform/PrivateDesktop.h"

using namespace nubble;

namespace {

// Counts the presses that reach this program's windows; each comes after the monitor has heard of it.
class OwnPresses : public QObject {
public:
    OwnPresses() { qApp->installEventFilter(this); }
    int count = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::MouseButtonPress;
        return false;
    }
};

} // namespace

class TestX11MouseMonitor : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tellsOfPressesInOtherWindowsOnly()
    {
        Backend backend = makeBackend(Home(QStringLiteral("/nonexistent")));
        const QSignalSpy presses(backend.mouseMonitor.get(), &MouseMonitor::pressedElsewhere);
        ForeignApplication others;
        (void)others.open({600, 0, 300, 300}, Qt::red);

        QWidget panel;
        const auto surface = backend.makePanelSurface(panel);
        surface->place({0, 0, 200, 200});
        surface->setActiveRects({QRectF(0, 0, 100, 100)});
        QPainterPath all;
        all.addRect(0, 0, 200, 200);
        surface->setOutline(all);
        surface->orderFront();
        QWidget managed; // the window manager puts it into a frame
        managed.setGeometry(100, 400, 200, 200);
        managed.show();
        QVERIFY(QTest::qWaitForWindowExposed(&panel) && QTest::qWaitForWindowActive(&managed));
        QMenu menu;
        menu.addAction(QStringLiteral("An action with a long name"));
        menu.popup({600, 500});
        QVERIFY(QTest::qWaitForWindowExposed(&menu));

        OwnPresses ownPresses;
        const auto isTold = [&](const QPoint &pixel, int button = 1) {
            const auto before = presses.count();
            userClicks(pixel, button);
            return QTest::qWaitFor([&] { return presses.count() > before; }) && presses.count() == before + 1;
        };
        const auto isOwn = [&](const QPoint &pixel) {
            const auto before = presses.count();
            ownPresses.count = 0;
            userClicks(pixel);
            return QTest::qWaitFor([&] { return ownPresses.count > 0; }) && presses.count() == before;
        };
        QVERIFY(isOwn(menu.geometry().center()));
        QTRY_VERIFY(!menu.isVisible());
        QVERIFY(isOwn({50, 50}));
        QVERIFY(isTold({150, 50})); // through the panel's hole
        QVERIFY(isOwn(managed.geometry().center()));
        QVERIFY(isTold({1000, 700}, 3)); // the bare desktop

        const QPoint elsewhere(700, 100);
        userClicks(elsewhere, 2);
        userClicks(elsewhere, 4);   // the wheel
        QVERIFY(isTold(elsewhere)); // and of nothing before
    }
};

PRIVATE_DESKTOP_MAIN(TestX11MouseMonitor)
#include "tst_x11_mouse_monitor.moc"

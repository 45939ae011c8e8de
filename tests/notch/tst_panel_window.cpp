#include <QHelpEvent>
#include <QMenu>

#include "notch/PanelUnderTest.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace nubble;

class TestPanelWindow : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theMouseIsTakenByTheBodyAndTheOpenCardsAreaOnly()
    {
        PanelWorld world;
        PanelUnderTest panel(world);
        for (const NotchEdge edge : allEdges) {
            world.placement.moveToEdge(edge, world.mainScreen.frame());
            const PanelGeometry expected = world.geometry();
            QCOMPARE(panel.view().geometry(), expected.frame);
            QCOMPARE(panel.surface->activeRects, QList{expected.body});
            panel.clickRing();
            QCOMPARE(panel.surface->activeRects, (QList{expected.body, expected.cardArea}));
            auto *close = panel.control(u"Close"_s);
            QVERIFY(close != nullptr);
            const QPointF cross = close->mapTo(&panel.view(), QPointF(close->rect().center()));
            QVERIFY(expected.cardArea.contains(cross) && panel.surface->outline.contains(cross));
            panel.clickRing();
            QVERIFY(!panel.surface->outline.contains(cross));
            QCOMPARE(panel.surface->activeRects, QList{expected.body});
        }
    }

    void placementAndScreenChangesPlaceItAgain()
    {
        PanelWorld world("placement.offset=1e300\n"); // clamped only when it is placed
        PanelUnderTest panel(world);
        QVERIFY(world.mainScreen.frame()->contains(panel.window.bodyOnScreen()->body.adjusted(1, 1, -1, -1)));
        const int before = panel.surface->placements;
        world.placement.centerOnEdge();
        Q_EMIT world.mainScreen.changed();
        QCOMPARE(panel.surface->placements, before + 2);
        const PanelGeometry expected = world.geometry();
        QCOMPARE(panel.window.bodyOnScreen()->body, expected.body.translated(expected.frame.topLeft()));
        QCOMPARE(panel.window.bodyOnScreen()->edge, NotchEdge::Right);
    }

    void theKeyboardIsTakenOnRequestOnlyAndGivenBackWhenTheCardCloses()
    {
        PanelWorld world;
        world.addSession(11, u"one"_s, u"idle"_s, 0ms);
        PanelUnderTest panel(world);
        panel.clickRing();
        QVERIFY(!panel.surface->hasKeyboard);
        panel.clickRing();

        panel.window.openForKeyboard(PanelMode::sessions());
        QVERIFY(panel.surface->hasKeyboard);
        QTRY_VERIFY(QApplication::focusWidget() != nullptr);
        QVERIFY(QApplication::focusWidget() != panel.ring());
        panel.window.openForKeyboard(PanelMode::sessions()); // does not close it
        QCOMPARE(world.state.mode(), PanelMode::sessions());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QCOMPARE(world.state.mode(), PanelMode::collapsed());
        QVERIFY(!panel.surface->hasKeyboard);

        panel.clickRing();
        auto *close = panel.control(u"Close"_s);
        const QPoint title = close->mapTo(&panel.view(), QPoint(-60, close->height() / 2));
        QTest::mouseClick(panel.view().childAt(title), Qt::LeftButton); // on the card itself
        QVERIFY(panel.surface->hasKeyboard);
    }

    void theSurfaceIsToldItsEdgeAndOffsetAndPlacedAgainAfterItWasClosed()
    {
        PanelWorld world("placement.offset=-120\n");
        PanelUnderTest panel(world);
        for (const auto &[edge, side] :
             {std::pair(NotchEdge::Right, Qt::RightEdge),
              {NotchEdge::Left, Qt::LeftEdge},
              {NotchEdge::Top, Qt::TopEdge},
              {NotchEdge::Bottom, Qt::BottomEdge}}) {
            world.placement.moveToEdge(edge, world.mainScreen.frame());
            const QPoint start =
                panel.surface->last.frame.topLeft() - world.mainScreen.frame()->topLeft().toPoint();
            QCOMPARE(panel.surface->last.edge, side);
            QCOMPARE(panel.surface->last.offset, isVertical(edge) ? start.y() : start.x());
        }
        const int before = panel.surface->placements;
        Q_EMIT panel.surface->closed();
        QCOMPARE(panel.surface->placements, before + 1);
    }

    void dragsToolTipsAndMenusAreTheSurfaces()
    {
        PanelWorld world;
        PanelUnderTest panel(world);
        panel.surface->mouseOffset = {0, 90}; // where the surface says that the mouse is, counts
        const QPoint middle = panel.ring()->rect().center();
        const double pressed = panel.ring()->mapToGlobal(middle).y();
        PanelUnderTest::drag(panel.ring(), middle, {0, 50});
        QCOMPARE(world.placement.offset(), pressed + 140 - world.mainScreen.frame()->center().y());
        QCOMPARE(panel.surface->log, QStringList({u"begin"_s, u"end"_s}));

        panel.clickRing();
        auto *close = panel.control(u"Close"_s);
        QHelpEvent help(QEvent::ToolTip, {2, 2}, close->mapToGlobal(QPoint(2, 2)));
        QCoreApplication::sendEvent(close, &help);
        QMenu menu;
        panel.window.openMenu(menu, {});
        QCOMPARE(panel.surface->log.sliced(2), QStringList({u"Close"_s, u"menu"_s}));
    }
};

QTEST_MAIN(TestPanelWindow)
#include "tst_panel_window.moc"

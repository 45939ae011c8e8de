#include <QSignalSpy>

#include "Panel/PanelGeometry.h"
#include "notch/PanelUnderTest.h"

using namespace Qt::StringLiterals;
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
            const PanelGeometry expected = geometry(world);
            QCOMPARE(panel.view().geometry(), expected.frame);
            QCOMPARE(panel.surface->activeRects, QList{expected.body});
            panel.clickRing();
            QCOMPARE(panel.surface->activeRects, (QList{expected.body, expected.cardArea}));
            panel.clickRing();
            QCOMPARE(panel.surface->activeRects, QList{expected.body});
        }
    }

    void anOpenCardMovesAlongWithThePanel()
    {
        PanelWorld world;
        PanelUnderTest panel(world);
        panel.clickRing();
        for (const NotchEdge edge : allEdges) {
            world.placement.moveToEdge(edge, world.mainScreen.frame());
            const PanelGeometry expected = geometry(world);
            QCOMPARE(panel.surface->activeRects, (QList{expected.body, expected.cardArea}));
            auto *close = panel.control(u"Close"_s);
            QVERIFY(close != nullptr);
            QVERIFY(expected.cardArea.contains(close->mapTo(&panel.view(), close->rect().center())));
            QVERIFY(panel.surface->outline.contains(
                close->mapTo(&panel.view(), QPointF(close->rect().center()))));
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
        const PanelGeometry expected = geometry(world);
        QCOMPARE(panel.window.bodyOnScreen()->body, expected.body.translated(expected.frame.topLeft()));
        QCOMPARE(panel.window.bodyOnScreen()->edge, NotchEdge::Right);
    }

    void aHiddenPanelIsOrderedOutUntilItIsShown()
    {
        PanelWorld world("placement.visible=false\n");
        PanelUnderTest panel(world);
        QVERIFY(!panel.view().isVisible());
        world.placement.toggleVisible();
        QVERIFY(panel.view().isVisible());
        world.placement.toggleVisible();
        QVERIFY(!panel.view().isVisible());
    }

    void theKeyboardIsTakenOnRequestOnlyAndGivenBackWhenTheCardCloses()
    {
        PanelWorld world;
        world.addSession(11, u"one"_s, u"idle"_s, 0);
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

    void theWindowsShapeFollowsWhatIsShown()
    {
        PanelWorld world;
        PanelUnderTest panel(world);
        panel.surface->setTranslucent(false);
        const QRectF body = geometry(world).body;
        const QRectF collapsed = panel.surface->outline.boundingRect();
        QVERIFY(body.adjusted(-1, -1, 1, 1).contains(collapsed) && collapsed.width() > body.width() - 1);
        panel.clickRing();
        const QRectF opened = panel.surface->outline.boundingRect();
        QVERIFY(opened.left() < body.left() - 200);
        QVERIFY(panel.view().rect().toRectF().contains(opened.adjusted(1, 1, -1, -1)));
        panel.clickRing();
        QCOMPARE(panel.surface->outline.boundingRect(), collapsed);
    }

private:
    static PanelGeometry geometry(const PanelWorld &world)
    {
        const QRectF screen = *world.mainScreen.frame();
        return panelGeometry(
            world.layout, world.placement.edge(), world.placement.clamp(world.placement.offset(), screen),
            screen);
    }
};

QTEST_MAIN(TestPanelWindow)
#include "tst_panel_window.moc"

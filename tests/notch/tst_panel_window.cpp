#include "Placement/PanelGeometry.h"
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
            const PanelGeometry expected = geometry(world);
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
        const PanelGeometry expected = geometry(world);
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

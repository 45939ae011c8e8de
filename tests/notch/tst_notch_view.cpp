#include <QSignalSpy>

#include "notch/PanelUnderTest.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace nubble;

class TestNotchView : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aClickOnTheRingOpensAndClosesTheSessionsCard()
    {
        PanelWorld world;
        PanelUnderTest panel(world);
        world.addSession(11, u"new"_s, u"idle"_s, 0ms);
        panel.clickRing();
        QCOMPARE(world.state.mode(), PanelMode::sessions());
        QCOMPARE(panel.rowNames(), QStringList{u"new, idle, just now"_s}); // read afresh
        panel.clickRing();
        QCOMPARE(world.state.mode(), PanelMode::collapsed());
        QVERIFY(panel.control(u"Close"_s) == nullptr);
        panel.clickRing();
        panel.click(u"Close"_s);
        QCOMPARE(world.state.mode(), PanelMode::collapsed());
    }

    void pointingAtTheRingPreviewsTheUsage()
    {
        PanelWorld world;
        PanelUnderTest panel(world);
        QEnterEvent enter({5, 5}, {5, 5}, {5, 5});
        QEvent leave(QEvent::Leave);
        QCoreApplication::sendEvent(panel.ring(), &enter);
        QCOMPARE(world.state.mode(), PanelMode::usage());
        QVERIFY(panel.control(u"Refresh now"_s) != nullptr);
        panel.clickRing();
        QCOMPARE(world.state.mode(), PanelMode::sessions());
        panel.clickRing();
        QCoreApplication::sendEvent(panel.ring(), &enter);
        QCoreApplication::sendEvent(panel.ring(), &leave);
        QCOMPARE(world.state.mode(), PanelMode::usage());
        QTRY_COMPARE(world.state.mode(), PanelMode::collapsed());
    }

    void aDragMovesThePanelAndClicksNothing()
    {
        for (const auto &[by, drags] :
             {std::pair(QPoint(0, 0), false), {{-2, 3}, false}, {{0, 4}, true}, {{-700, 30}, true}}) {
            PanelWorld world;
            PanelUnderTest panel(world);
            const QPoint middle = panel.ring()->rect().center();
            const QPoint end = panel.ring()->mapToGlobal(middle) + by;
            PanelUnderTest::drag(panel.ring(), middle, by);
            QCOMPARE(world.state.mode(), drags ? PanelMode::collapsed() : PanelMode::sessions());
            QCOMPARE(
                world.placement.offset(), drags ? end.y() - world.mainScreen.frame()->center().y() : 0.0);
            QCOMPARE(world.placement.edge(), end.x() < 400 ? NotchEdge::Left : NotchEdge::Right);
            QVERIFY(!world.placement.isDragging());
            panel.clickRing(); // works as ever afterwards
            QCOMPARE(world.state.mode(), drags ? PanelMode::sessions() : PanelMode::collapsed());

            const QPoint bare = panel.surface->activeRects.first().center().toPoint() + QPoint(0, 40);
            QVERIFY(panel.view().childAt(bare) == nullptr);
            const double before = world.placement.offset();
            PanelUnderTest::drag(&panel.view(), bare, {0, 70});
            QVERIFY(world.placement.offset() > before + 70);
        }
    }

    void actionButtonsPostTheirNotificationAndCollapse()
    {
        PanelWorld world("addon.ask=true\naddon.search=true\naddon.notes=true\n");
        PanelUnderTest panel(world);
        const QSignalSpy search(&world.notifications, &NotificationCenter::openChatSearch);
        const QSignalSpy ask(&world.notifications, &NotificationCenter::askClaude);
        panel.clickRing();
        panel.click(u"Search chats  Ctrl+Alt+Space"_s);
        QCOMPARE(world.state.mode(), PanelMode::collapsed());
        QVERIFY(search.count() == 1 && ask.count() == 0);
        panel.click(u"Ask Claude about your screen  Ctrl+Alt+A"_s);
        QVERIFY(search.count() == 1 && ask.count() == 1);
    }

    void aButtonFollowsItsActionsLook()
    {
        PanelWorld world("addon.notes=true\n");
        PanelUnderTest panel(world);
        const QImage before = panel.view().grab().toImage();
        panel.actions.front()->setLook({u"record.circle.fill"_s, u"Meeting notes — Recording"_s});
        QVERIFY(panel.control(u"Meeting notes — Recording"_s) != nullptr);
        QVERIFY(panel.view().grab().toImage() != before);
        panel.click(u"Meeting notes — Recording"_s);
        QCOMPARE(world.state.mode(), PanelMode::collapsed()); // a mode without a card is no mode to be in
    }

    void actionsStandInTheBodyInTheirOrder()
    {
        PanelWorld world("addon.notes=true\naddon.search=true\naddon.ask=true\n");
        PanelUnderTest panel(world);
        for (const NotchEdge edge : allEdges) {
            world.placement.moveToEdge(edge, world.mainScreen.frame());
            const QRect body = panel.surface->activeRects.first().toAlignedRect();
            int last = 0;
            for (const auto &name : {u"Claude"_s, u"Ask"_s, u"Search"_s, u"Meeting"_s}) {
                auto *button = panel.control(name);
                QVERIFY2(button, qPrintable(name));
                const QPoint center = button->mapTo(&panel.view(), button->rect().center());
                QVERIFY2(body.contains(center), qPrintable(name));
                QVERIFY(button->focusPolicy() & Qt::TabFocus);
                const int along = isVertical(edge) ? center.y() : center.x();
                QVERIFY2(along > last, qPrintable(name));
                last = along;
            }
        }
    }
};

QTEST_MAIN(TestNotchView)
#include "tst_notch_view.moc"

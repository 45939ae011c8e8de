#include <QGraphicsEffect>
#include <QHelpEvent>
#include <QMenu>
#include <QSignalSpy>

#include "notch/PanelUnderTest.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace nubble;

class TestPanel : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aClickOnTheRingOpensAndClosesTheSessionsCard()
    {
        PanelWorld world;
        PanelUnderTest panel(world);
        world.addSession(11, u"new"_s, u"idle"_s, 0ms);
        for (const bool reduced : {true, false}) {
            world.preferences.setReducedMotion(reduced);
            panel.clickRing();
            QCOMPARE(world.state.mode(), PanelMode::sessions());
            QCOMPARE(panel.view().findChild<QGraphicsEffect *>() == nullptr, reduced); // it fades in
            QCOMPARE(panel.rowNames(), QStringList{u"new, idle, just now"_s});         // read afresh
            panel.clickRing();
            QCOMPARE(world.state.mode(), PanelMode::collapsed());
            QVERIFY(panel.control(u"Close"_s) == nullptr);
        }
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
        PanelMode soon = PanelMode::collapsed();
        QTimer::singleShot(75ms, this, [&] { soon = world.state.mode(); });
        QTRY_COMPARE(world.state.mode(), PanelMode::collapsed());
        QCOMPARE(soon, PanelMode::usage()); // the pointer has the time to get from the ring to the card
    }

    void aPreviewStaysUntilRingAndCardAreLeftAndOtherCardsWherePressesElsewhereAreSeen()
    {
        for (const auto &[steps, mode] :
             {std::pair(u"ring away card wait"_s, PanelMode::usage()),
              {u"ring away card wait away ring wait"_s, PanelMode::usage()},
              {u"ring away card wait away wait"_s, PanelMode::collapsed()},
              {u"ring click away ring wait away wait"_s, PanelMode::sessions()},
              {u"unseen ring click away card wait"_s, PanelMode::sessions()},
              {u"unseen ring click away wait"_s, PanelMode::collapsed()}}) {
            PanelState state;
            HoverPreview hover(state);
            for (const QString &step : steps.split(u' ')) {
                if (step == u"unseen")
                    hover.closeEveryCardWhenLeft();
                else if (step == u"click")
                    state.setMode(PanelMode::sessions());
                else if (step == u"wait")
                    waitForCollapseChecks(steps.startsWith(u"unseen"));
                if (step == u"ring" || step == u"away")
                    hover.setRingHovered(step == u"ring");
                if (step == u"card" || step == u"away")
                    hover.setCardHovered(step == u"card");
            }
            QVERIFY2(state.mode() == mode, qPrintable(steps));
        }
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

    void actionButtonsDoWhatTheyAreForAndCollapse()
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

        const QImage before = panel.view().grab().toImage();
        panel.actions.back()->setLook({u"record.circle.fill"_s, u"Meeting notes — Recording"_s});
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
                const auto *button = panel.control(name);
                QVERIFY2(button && button->focusPolicy() & Qt::TabFocus, qPrintable(name));
                const QPoint center = button->mapTo(&panel.view(), button->rect().center());
                const int along = isVertical(edge) ? center.y() : center.x();
                QVERIFY2(body.contains(center) && along > last, qPrintable(name));
                last = along;
            }
        }
    }

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

    void inACornerTheCardKeepsClearOfTheScreensEndsAndPointsAtTheRing()
    {
        PanelWorld world("placement.offset=1e300\n"); // clamped only when it is placed
        for (int pid = 1; pid <= 5; ++pid)
            world.addSession(pid, u"one"_s, u"idle"_s, 0ms);
        PanelUnderTest panel(world);
        panel.clickRing();
        for (const NotchEdge edge : allEdges) {
            world.placement.moveToEdge(edge, world.mainScreen.frame());
            const PanelGeometry expected = world.geometry();
            const QRectF card = panel.surface->outline.toSubpathPolygons().last().boundingRect();
            const double clear = isVertical(edge) ? 7 : 0; // a level card is as wide as its area
            QVERIFY(expected.screen.marginsRemoved({clear, clear, clear, clear}).contains(card));
            const double across[]{card.right() - 2, card.left() + 2, card.top() + 2, card.bottom() - 2};
            const double tip = across[static_cast<int>(edge)];
            const QPointF ring = expected.ringCenter;
            QVERIFY(panel.surface->outline.contains(
                isVertical(edge) ? QPointF(tip, ring.y()) : QPointF(ring.x(), tip)));
        }
    }

    void theSurfaceIsToldItsPlaceAndAgainAfterEveryChangeAndWhenItWasClosed()
    {
        PanelWorld world("placement.offset=-120\n");
        PanelUnderTest panel(world);
        for (const auto &[edge, side] :
             {std::pair(NotchEdge::Left, Qt::LeftEdge),
              {NotchEdge::Top, Qt::TopEdge},
              {NotchEdge::Bottom, Qt::BottomEdge},
              {NotchEdge::Right, Qt::RightEdge}}) {
            world.placement.moveToEdge(edge, world.mainScreen.frame());
            const SurfacePlace &last = panel.surface->last;
            const QPoint start = last.frame.topLeft() - world.mainScreen.frame()->topLeft().toPoint();
            QCOMPARE(last.edge, side);
            QCOMPARE(last.offset, isVertical(edge) ? start.y() : start.x());
        }
        const int before = panel.surface->placements;
        world.placement.centerOnEdge();
        Q_EMIT world.mainScreen.changed();
        Q_EMIT panel.surface->closed();
        QCOMPARE(panel.surface->placements, before + 3);
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

private:
    // Until every check scheduled so far has been made: checks of a later hover are made after them.
    static void waitForCollapseChecks(bool ofEveryCard)
    {
        PanelState witness;
        HoverPreview later(witness);
        if (ofEveryCard) {
            later.closeEveryCardWhenLeft();
            witness.setMode(PanelMode::sessions());
        }
        later.setRingHovered(true);
        later.setRingHovered(false);
        QTRY_COMPARE(witness.mode(), PanelMode::collapsed());
    }
};

QTEST_MAIN(TestPanel)
#include "tst_panel.moc"

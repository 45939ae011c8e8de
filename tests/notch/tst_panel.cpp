#include <QGraphicsEffect>
#include <QHelpEvent>
#include <QMenu>
#include <QSignalSpy>

#include "Notch/ClaudeCell.h"
#include "Placement/PanelShapes.h"
#include "Widgets/TooltipShell.h"
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
        PanelMode soon = PanelMode::usage();
        const auto lookSoon = [&] { QTimer::singleShot(75ms, this, [&] { soon = world.state.mode(); }); };
        QCoreApplication::sendEvent(panel.ring(), &enter);
        lookSoon();
        QTRY_COMPARE(world.state.mode(), PanelMode::usage());
        QCOMPARE(soon, PanelMode::collapsed()); // it may only pass
        QVERIFY(panel.control(u"Refresh now"_s) != nullptr);
        panel.clickRing();
        QCOMPARE(world.state.mode(), PanelMode::sessions());
        panel.clickRing();
        QCoreApplication::sendEvent(panel.ring(), &enter);
        QTRY_COMPARE(world.state.mode(), PanelMode::usage());
        QCoreApplication::sendEvent(panel.ring(), &leave);
        lookSoon();
        QTRY_COMPARE(world.state.mode(), PanelMode::collapsed());
        QCOMPARE(soon, PanelMode::usage()); // the pointer has the time to get from the ring to the card
    }

    void aPreviewStaysUntilRingAndCardAreLeftAndOtherCardsWherePressesElsewhereAreSeen()
    {
        for (const auto &[steps, mode] :
             {std::pair(u"ring wait away card wait"_s, PanelMode::usage()),
              {u"ring wait away card wait away ring wait"_s, PanelMode::usage()},
              {u"ring wait away card wait away"_s, PanelMode::collapsed()},
              {u"way ring wait away wait wait card wait"_s, PanelMode::usage()},
              {u"way ring wait away"_s, PanelMode::collapsed()},       // it does not stay for ever
              {u"ring away wait card wait"_s, PanelMode::collapsed()}, // it has only passed
              {u"ring cancel wait"_s, PanelMode::collapsed()},
              {u"ring click away ring wait away wait"_s, PanelMode::sessions()},
              {u"unseen ring click away card wait"_s, PanelMode::sessions()},
              {u"unseen ring click away card wait away"_s, PanelMode::collapsed()}}) {
            PanelState state;
            const QSignalSpy changes(&state, &PanelState::modeChanged);
            HoverPreview hover(state, [isOnTheWay = steps.startsWith(u"way")] { return isOnTheWay; });
            for (const QString &step : steps.split(u' ')) {
                if (step == u"unseen")
                    hover.closeEveryCardWhenLeft();
                else if (step == u"click")
                    state.setMode(PanelMode::sessions());
                else if (step == u"wait")
                    QTest::qWait(200); // until the pointer has been looked for
                else if (step == u"cancel")
                    hover.cancel();
                if (step == u"ring" || step == u"away")
                    hover.setRingHovered(step == u"ring");
                if (step == u"card" || step == u"away")
                    hover.setCardHovered(step == u"card");
            }
            QTRY_VERIFY2(state.mode() == mode, qPrintable(steps));
            QVERIFY(!steps.startsWith(u"ring away") || changes.isEmpty());
        }
    }

    void aDragMovesThePanelToWhereTheSurfaceSeesTheMouseAndClicksNothing()
    {
        for (const auto &[by, drags] :
             {std::pair(QPoint(0, 0), false), {{-2, 3}, false}, {{0, 4}, true}, {{-700, 30}, true}}) {
            PanelWorld world;
            PanelUnderTest panel(world);
            panel.surface->mouseOffset = {0, 90};
            const QPoint middle = panel.ring()->rect().center();
            const QPointF end = panel.ring()->mapToGlobal(middle) + by + panel.surface->mouseOffset;
            PanelUnderTest::drag(panel.ring(), middle, by);
            QCOMPARE(world.state.mode(), drags ? PanelMode::collapsed() : PanelMode::sessions());
            QCOMPARE(
                world.placement.offset(), drags ? end.y() - world.mainScreen.frame()->center().y() : 0.0);
            QCOMPARE(world.placement.edge(), end.x() < 400 ? NotchEdge::Left : NotchEdge::Right);
            QVERIFY(!world.placement.isDragging());
            QCOMPARE(panel.surface->log, drags ? QStringList({u"begin"_s, u"end"_s}) : QStringList());
            panel.clickRing(); // works as ever afterwards
            QCOMPARE(world.state.mode(), drags ? PanelMode::sessions() : PanelMode::collapsed());
        }
    }

    void aDragStartsOnTheBodyOnlyAndLeavesNothingBehindWhenItsReleaseIsMissed()
    {
        PanelWorld world;
        for (int pid = 1; pid <= 3; ++pid)
            world.addSession(pid, u"one"_s, u"idle"_s, 0ms);
        PanelUnderTest panel(world);
        panel.clickRing();
        QTRY_VERIFY(!panel.rows().isEmpty());
        PanelUnderTest::drag(panel.rows().constFirst(), {20, 10}, {-60, 50});
        QCOMPARE(world.state.mode(), PanelMode::sessions());
        QVERIFY(world.placement.offset() == 0 && panel.surface->log.isEmpty());

        const QPoint middle = panel.ring()->rect().center();
        for (const auto &miss :
             {std::function([&] { world.placement.toggleVisible(); }), std::function([&] {
                  QEvent ungrab(QEvent::UngrabMouse);
                  QCoreApplication::sendEvent(panel.ring(), &ungrab);
              }),
              std::function([&] { // the button is up when the pointer comes back
                  QEnterEvent enter(middle, middle, middle);
                  QCoreApplication::sendEvent(panel.ring(), &enter);
              })}) {
            panel.surface->log.clear();
            QTest::mousePress(panel.ring(), Qt::LeftButton, {}, middle);
            QTest::mouseMove(panel.ring(), middle + QPoint(0, 20));
            QCOMPARE(panel.ring()->cursor().shape(), Qt::ClosedHandCursor);
            miss();
            QVERIFY(!world.placement.isDragging());
            QCOMPARE(panel.view().cursor().shape(), Qt::ArrowCursor);
            QCOMPARE(panel.surface->log, QStringList({u"begin"_s, u"end"_s}));
            world.placement.setVisible(true);
            world.state.collapse();
            panel.clickRing();
            QCOMPARE(world.state.mode(), PanelMode::sessions());
            QCOMPARE(panel.surface->log.size(), 2);
        }
    }

    void actionButtonsStandInTheBodyInTheirOrderAndDoWhatTheyAreFor()
    {
        PanelWorld world("addon.ask=true\naddon.search=true\naddon.notes=true\n");
        PanelUnderTest panel(world);
        const QSignalSpy search(&world.notifications, &NotificationCenter::openChatSearch);
        const QSignalSpy ask(&world.notifications, &NotificationCenter::askClaude);
        for (const NotchEdge edge : allEdges) {
            world.placement.moveToEdge(edge, world.mainScreen.frame());
            int last = 0;
            for (const auto &name : {u"Claude"_s, u"Ask"_s, u"Search"_s, u"Meeting"_s}) {
                const auto *button = panel.control(name);
                QVERIFY2(button && button->focusPolicy() & Qt::TabFocus, qPrintable(name));
                const QPoint center = button->mapTo(&panel.view(), button->rect().center());
                const int along = isVertical(edge) ? center.y() : center.x();
                QVERIFY2(world.geometry().body.contains(center) && along > last, qPrintable(name));
                last = along;
            }
        }
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

    void itLiesWithItsCardAtEachEdgeAndTakesTheMouseThereOnly()
    {
        PanelWorld world("placement.offset=1e300\n"); // clamped only when it is placed: in a corner
        for (int pid = 1; pid <= 5; ++pid)
            world.addSession(pid, u"one"_s, u"idle"_s, 0ms);
        PanelUnderTest panel(world);
        panel.clickRing();
        const QPainterPath &outline = panel.surface->outline;
        constexpr Qt::Edge qtEdges[]{Qt::RightEdge, Qt::LeftEdge, Qt::TopEdge, Qt::BottomEdge};
        QPointF cross;
        for (const NotchEdge edge : allEdges) {
            world.placement.moveToEdge(edge, world.mainScreen.frame());
            const PanelGeometry expected = world.geometry();
            QCOMPARE(panel.view().geometry(), expected.frame);
            const SurfacePlace &last = panel.surface->last;
            const QPoint start = last.frame.topLeft() - world.mainScreen.frame()->topLeft().toPoint();
            QCOMPARE(last.offset, isVertical(edge) ? start.y() : start.x());
            QCOMPARE(last.edge, qtEdges[static_cast<int>(edge)]);
            const auto *close = panel.control(u"Close"_s);
            cross = close->mapTo(&panel.view(), QPointF(close->rect().center()));
            QVERIFY(outline.contains(cross));
            QRectF card; // which grows with its five rows
            QTRY_VERIFY((card = outline.toSubpathPolygons().last().boundingRect()).height() > 250);
            const QMarginsF shadow(12, 12, 12, 12);
            QVERIFY(expected.screen.contains(card.marginsAdded(shadow)));
            QVERIFY(QRectF(panel.view().rect()).contains(card.marginsAdded(shadow)));
            QCOMPARE(outline.toSubpathPolygons().first().boundingRect(), expected.body);
            QVERIFY(!card.intersects(expected.body));
            const double sides[]{card.right() - 2, card.left() + 2, card.top() + 2, card.bottom() - 2};
            QPointF tip = panel.window.view().ring().ringCenter(); // in its cell's middle: there is no number
            (isVertical(edge) ? tip.rx() : tip.ry()) = sides[static_cast<int>(edge)];
            QVERIFY(outline.contains(tip)); // the tail points at the ring
            const QRectF &screen = expected.screen;
            const double outermost[]{
                screen.right() - 0.5, screen.left() + 0.5, screen.top() + 0.5, screen.bottom() - 0.5};
            (isVertical(edge) ? tip.rx() : tip.ry()) = outermost[static_cast<int>(edge)];
            QVERIFY(QRectF(panel.ring()->geometry()).contains(tip));
            QCOMPARE(close->size(), QSize(28, 28));
            const auto *shell = panel.view().findChild<TooltipShell *>();
            const QPointF rim =
                shell->pos() + shell->cardRect().topLeft() + QPoint(shell->cardRect().width(), 0);
            const QPointF circle = close->mapTo(&panel.view(), QPointF(14 + 10, 14 - 10)); // its outermost
            QCOMPARE(circle - rim, QPointF(-12, 12));
        }
        panel.clickRing();
        QVERIFY(!outline.contains(cross));
        const int before = panel.surface->placements;
        world.placement.centerOnEdge();
        Q_EMIT world.mainScreen.changed();
        Q_EMIT panel.surface->closed();
        QCOMPARE(panel.surface->placements, before + 3);
        const PanelGeometry expected = world.geometry();
        QCOMPARE(outline.boundingRect(), expected.body);
        QCOMPARE(panel.window.bodyOnScreen()->body, expected.body.translated(expected.frame.topLeft()));
    }

    void whereClicksDoNotPassTheWindowIsAsLargeAsWhatItShows()
    {
        PanelWorld world("placement.offset=1e300\n");
        world.addSession(1, u"one"_s, u"idle"_s, 0ms);
        PanelUnderTest panel(world);
        world.preferences.setReducedMotion(false);
        panel.surface->passesClicks = false;
        const QRect &window = panel.surface->last.frame;
        for (const NotchEdge edge : allEdges) {
            world.placement.moveToEdge(edge, world.mainScreen.frame());
            const PanelGeometry whole = world.geometry();
            const QRect body = whole.body.translated(whole.frame.topLeft()).toAlignedRect() & whole.frame;
            QTRY_COMPARE(window, body);
            QCOMPARE(panel.window.bodyOnScreen()->body, whole.body.translated(whole.frame.topLeft()));
            panel.clickRing();
            const QRectF card = panel.surface->outline.toSubpathPolygons().last().boundingRect();
            QVERIFY(QRectF(0, 0, window.width(), window.height()).contains(card));
            QVERIFY(panel.view().findChild<QGraphicsEffect *>()); // it still fades in
            QVERIFY(window.contains(body) && whole.frame.contains(window));
            QVERIFY(body.translated(-window.topLeft()).contains(panel.ring()->geometry()));
            panel.clickRing();
            QVERIFY(window != body); // until the card has faded
            QTRY_COMPARE(window, body);
        }
    }

    void aCardsShadowTakesNoClicksAndLeavesTheBodysCellsTheirs()
    {
        PanelWorld world;
        PanelUnderTest panel(world);
        panel.clickRing();
        for (const NotchEdge edge : allEdges) {
            world.placement.moveToEdge(edge, world.mainScreen.frame());
            const QRectF body = world.geometry().body;
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // of the edge before
            const auto *shell = panel.view().findChild<TooltipShell *>();
            const QRectF card = shell->cardRect().translated(shell->pos());
            const QRectF shadow = card.marginsAdded(cardShadowRoom) & world.geometry().screen;
            QVERIFY(QRectF(panel.view().rect()).contains(shadow));
            const QRect ring = panel.ring()->geometry();
            for (const QPoint corner :
                 {ring.topLeft(), ring.topRight(), ring.bottomLeft(), ring.bottomRight()})
                QCOMPARE(panel.view().childAt(corner), panel.ring());
            const QPainterPath &outline = panel.surface->outline;
            QPainterPath shown;
            for (const QRectF &each : {body, card})
                shown.addRect(each.adjusted(-0.01, -0.01, 0.01, 0.01));
            const QRectF tail = outline.subtracted(shown).boundingRect(); // it alone stands out
            QVERIFY((isVertical(edge) ? tail.height() : tail.width()) < 26.1);
            QVERIFY(!tail.intersects(body.adjusted(-2.9, -2.9, 2.9, 2.9)));
            QVERIFY(tail.intersects(body.adjusted(-3.1, -3.1, 3.1, 3.1)));
        }
    }

    void theWheelWithControlMakesItLargerOverTheBodyOnly()
    {
        PanelWorld world;
        PanelUnderTest panel(world);
        QVERIFY(panel.window.openForKeyboard(PanelMode::sessions()));
        using enum Qt::KeyboardModifier;
        for (const auto &[isOnBody, keys, angle, scale] :
             {std::tuple(true, ControlModifier, 120, 1.1),
              {true, NoModifier, 120, 1.1},
              {false, ControlModifier, 120, 1.1},
              {true, ControlModifier, 90, 1.1},
              {true, ControlModifier, 90, 1.2},
              {true, ControlModifier, -480, 0.9},
              {true, ControlModifier, 240, 1.0}}) {
            const auto *shell = panel.view().findChild<TooltipShell *>();
            const QPoint at = isOnBody ? world.geometry().ringCenter.toPoint() : shell->geometry().center();
            QWheelEvent wheel(
                at, panel.view().mapToGlobal(at), {}, {0, angle}, {}, keys, Qt::NoScrollPhase, false);
            QCoreApplication::sendEvent(&panel.view(), &wheel); // nothing above it takes the wheel
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // of the card before
            QCOMPARE(world.placement.scale(), scale);
            const PanelGeometry geometry = world.geometry();
            QCOMPARE(
                panel.ring()->geometry(), geometry.placed(world.layout.ringArea(geometry.edge)).toRect());
            const auto isShown = [&](double along, double across) { // on the right edge
                return panel.surface->outline.contains(
                    geometry.body.topRight() + QPointF(-across, along) * geometry.unit);
            };
            QVERIFY(!isShown(12, 10) && isShown(15, 10)); // the shoulder
            const auto *card = panel.view().findChild<TooltipShell *>();
            QCOMPARE(card->cardRect().width(), qRound(246 * scale));
            QVERIFY(card->isAncestorOf(panel.view().focusWidget()));
        }
    }

    void itBeginsWhereABarAboveAllWindowsEnds()
    {
        PanelWorld world;
        PanelUnderTest panel(world);
        panel.surface->bars = {1, 2, 4, 8}; // from the left on
        Q_EMIT panel.surface->barsChanged();
        const QRectF screen = *world.mainScreen.frame();
        constexpr QPoint beside[]{{-4, 0}, {1, 0}, {0, 2}, {0, -8}};
        for (const NotchEdge edge : allEdges) {
            world.placement.moveToEdge(edge, screen);
            const QRect expected = world.geometry().frame.translated(beside[static_cast<int>(edge)]);
            QCOMPARE(panel.surface->last.frame, expected);
        }
    }

    void theSurfaceTakesTheKeyboardOnRequestOnlyAndShowsToolTipsAndMenus()
    {
        PanelWorld world;
        PanelUnderTest panel(world);
        QVERIFY(panel.window.openForKeyboard(PanelMode::sessions()));
        QVERIFY(panel.surface->hasKeyboard);
        QTRY_VERIFY(QApplication::focusWidget() != nullptr);
        QVERIFY(QApplication::focusWidget() != panel.ring());
        QVERIFY(panel.window.openForKeyboard(PanelMode::sessions())); // does not close it
        QCOMPARE(world.state.mode(), PanelMode::sessions());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QCOMPARE(world.state.mode(), PanelMode::collapsed());
        QVERIFY(!panel.surface->hasKeyboard);
        panel.surface->givesKeyboard = false;
        QVERIFY(!panel.window.openForKeyboard(PanelMode::sessions()));
        panel.surface->givesKeyboard = true;
        panel.clickRing();

        panel.clickRing();
        auto *close = panel.control(u"Close"_s);
        const QPoint title = close->mapTo(&panel.view(), QPoint(-60, close->height() / 2));
        QTest::mouseClick(panel.view().childAt(title), Qt::LeftButton); // on the card itself
        QVERIFY(panel.surface->hasKeyboard);

        QHelpEvent help(QEvent::ToolTip, {2, 2}, close->mapToGlobal(QPoint(2, 2)));
        QCoreApplication::sendEvent(close, &help);
        QMenu menu;
        panel.window.openMenu(menu, {});
        QCOMPARE(panel.surface->log, QStringList({u"Close"_s, u"menu"_s}));

        menu.addAction(u"Entry"_s);
        menu.setContentsMargins(30, 20, 10, 40);
        for (const NotchEdge edge : allEdges) { // beside the body, but for its shadow
            world.placement.moveToEdge(edge, world.mainScreen.frame());
            const QRect body = world.geometry().body.toAlignedRect();
            panel.window.openMenu(menu, body.center());
            const QRect card(
                panel.surface->menu + QPoint(30, 20), menu.sizeHint().shrunkBy(menu.contentsMargins()));
            QVERIFY(!card.intersects(body.adjusted(-11, -11, 11, 11)));
            QVERIFY(card.intersects(body.adjusted(-13, -13, 13, 13)));
        }
        panel.window.openMenu(menu, {1, 2});
        QCOMPARE(panel.surface->menu, QPoint(1 - 30, 2 - 20));
    }
};

QTEST_MAIN(TestPanel)
#include "tst_panel.moc"

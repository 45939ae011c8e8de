#include "notch/Drawing.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace nubble;

class TestMotion : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theRingTurnsOnlyWhileSomethingWorksAndIsSeen()
    {
        PanelWorld world;
        world.preferences.setReducedMotion(false);
        world.addSession(1, u"one"_s, u"busy"_s, 0ms);
        PanelUnderTest panel(world);
        QVERIFY(QTest::qWaitForWindowExposed(&panel.view()));
        expectMotion(true);

        world.preferences.setReducedMotion(true);
        settle(panel);
        expectMotion(false);
        world.preferences.setReducedMotion(false);
        expectMotion(true);

        world.placement.setVisible(false);
        QCoreApplication::processEvents();
        expectMotion(false);
        world.placement.setVisible(true);
        expectMotion(true);

        for (const auto veil : {PanelSurface::Veil::Blank, PanelSurface::Veil::Lock})
            panel.surface->setVeil(veil, true);
        QCoreApplication::processEvents();
        panel.surface->setVeil(PanelSurface::Veil::Blank, false);
        expectMotion(false);
        panel.surface->setVeil(PanelSurface::Veil::Lock, false);
        expectMotion(true);

        world.addSession(1, u"one"_s, u"idle"_s, 0ms);
        world.readSessions();
        settle(panel);
        expectMotion(false);
    }

    void aCardComesAndGoesAsAPictureThatShowsEveryChange()
    {
        PanelWorld world;
        world.preferences.setReducedMotion(false);
        for (int pid = 1; pid <= 20; ++pid)
            world.addSession(pid, u"session %1"_s.arg(pid), u"idle"_s, pid * 100s);
        PanelUnderTest panel(world);
        settle(panel);
        for (const bool comes : {true, false}) {
            const PaintCounter counter;
            panel.clickRing();
            const QPointer motion = panel.view().findChild<QVariantAnimation *>(u"transition"_s);
            QVERIFY(motion);
            QCOMPARE(panel.control(u"session 1,"_s) != nullptr, comes); // at once
            motion->pause();
            for (int moment = 20; moment < 100; moment += 20) {
                const auto before = counter.paintsOf(u"Nubble"_s);
                motion->setCurrentTime(moment);
                QTRY_VERIFY(counter.paintsOf(u"Nubble"_s) > before);
            }
            if (comes) {
                world.addSession(1, u"renamed"_s, u"idle"_s, 100s);
                world.monitor.refresh();
                const auto before = counter.paintsOf(u"renamed"_s);
                QTRY_VERIFY(counter.paintsOf(u"renamed"_s) > before);
            }
            motion->resume();
            QTRY_VERIFY(!motion);
            settle(panel);
            QVERIFY(counter.paintsOf(u"session 3"_s) <= (comes ? 4 : 2)); // of ten frames
        }
    }

    void theTurningRingLooksAsIfItWereDrawnWhole()
    {
        PanelWorld world;
        world.preferences.setReducedMotion(false);
        world.addSession(1, u"one"_s, u"busy"_s, 0ms);
        PanelUnderTest panel(world);
        QVERIFY(QTest::qWaitForWindowExposed(&panel.view()));
        for (const auto &[status, larger] : {std::pair("idle", 3), {"waiting", 0}, {"waiting", -3}}) {
            world.addSession(2, u"two"_s, QString::fromLatin1(status), 0ms);
            world.monitor.refresh();
            world.placement.enlarge(larger, 1);
            const PaintCounter counter;
            QTRY_VERIFY(counter.paintsOf(u"Claude sessions"_s) >= 45); // more than a turn
            const QImage seen = panel.view().screen()->grabWindow(panel.view().winId()).toImage();
            const QImage whole = panel.view().grab().toImage();
            QCOMPARE(seen.size(), whole.size());
            const QRect ring = panel.ring()->geometry();
            for (int y = ring.top(); y <= ring.bottom(); ++y)
                for (int x = ring.left(); x <= ring.right(); ++x)
                    QVERIFY(isNear(seen.pixel(x, y), whole.pixel(x, y)));
        }
    }

    void whatBeginsToWaitIsPointedOutForAMomentIfThingsMayMove()
    {
        for (const bool still : {true, false}) {
            PanelWorld world;
            world.preferences.setReducedMotion(still);
            PanelUnderTest panel(world);
            showUsage(world, panel, 0);
            settle(panel);
            const auto isLarge = [&](int moment) {
                return ringDuring(world, panel, 600, moment).badge(25.6) == Palette::badge;
            };
            world.addSession(1, u"one"_s, u"waiting"_s, 0ms);
            world.readSessions();
            for (const int beat : {150, 450})
                QCOMPARE(isLarge(beat), !still);
            settle(panel);
            QVERIFY(!isLarge(150));
            world.readSessions(); // it goes on waiting
            expectMotion(false);
            world.addSession(2, u"another"_s, u"waiting"_s, 0ms);
            world.readSessions();
            QCOMPARE(isLarge(150), !still);
            world.preferences.setReducedMotion(true);
            QVERIFY(!isLarge(150));
        }
    }

    void marksAreDrawnAndNumbersGlideIfThingsMayMove()
    {
        for (const bool still : {true, false}) {
            PanelWorld world;
            world.preferences.setReducedMotion(still);
            PanelUnderTest panel(world);
            showUsage(world, panel, 10);
            settle(panel);
            const auto look = [&](const QString &status) {
                world.addSession(1, u"one"_s, status, 0ms);
                world.readSessions();
            };
            const auto halfway = [&](double turn, double radius, int duration) {
                return ringDuring(world, panel, duration, duration / 2).at(turn, radius);
            };
            look(u"busy"_s);
            look(u"idle"_s);
            QCOMPARE(halfway(0.735, 4.6, 220), Palette::ample); // where the mark starts
            look(u"busy"_s);
            look(u"idle"_s);
            QCOMPARE(halfway(0.155, 5.6, 220) == Palette::ample, still); // and where it ends
            settle(panel);
            QCOMPARE(halfway(0.155, 5.6, 220), Palette::ample);
            world.clock.advance(2min);
            world.readSessions();
            showUsage(world, panel, 48);
            QCOMPARE(halfway(0.47, 11.6, 200) == Palette::ample, still);
            QCOMPARE(ringDuring(world, panel, 200, 195).at(0.47, 11.6), Palette::ample);
            settle(panel);
            QCOMPARE(halfway(0.47, 11.6, 200), Palette::ample);
            expectMotion(false);
        }
    }

    void toAnotherEdgeItFadesOutAndInWhereThatCanBeSeen()
    {
        PanelWorld world;
        PanelUnderTest panel(world);
        QVERIFY(QTest::qWaitForWindowExposed(&panel.view()));
        world.preferences.setReducedMotion(false);
        const auto moveTo = [&](NotchEdge edge) {
            world.placement.moveToEdge(edge, world.mainScreen.frame());
        };
        const auto isAt = [&](NotchEdge edge) {
            return panel.surface->last.edge == qtEdge(edge) && panel.surface->opacity == 1
                && panel.window.bodyOnScreen()->edge == edge;
        };
        const double before = world.geometry().body.x();
        QSet<Qt::Edge> faded;
        panel.surface->outlined = [&] {
            if (panel.surface->opacity == 1)
                return;
            const bool leaves = panel.surface->last.edge == Qt::RightEdge;
            const double way =
                panel.surface->outline.boundingRect().x() - (leaves ? before : world.geometry().body.x());
            QVERIFY(std::abs(way - (leaves ? 8 : -8) * (1 - panel.surface->opacity)) < 1e-6);
            faded.insert(panel.surface->last.edge);
        };
        moveTo(NotchEdge::Left);
        QVERIFY(!isAt(NotchEdge::Left));
        QTRY_VERIFY(isAt(NotchEdge::Left));
        QCOMPARE(faded, QSet({Qt::RightEdge, Qt::LeftEdge}));
        panel.surface->outlined = [] {};
        settle(panel);
        QCOMPARE(panel.surface->outline.boundingRect(), world.geometry().body);
        expectMotion(false);

        moveTo(NotchEdge::Top);
        QVERIFY(!isAt(NotchEdge::Top));
        world.placement.setVisible(false);
        QVERIFY(isAt(NotchEdge::Top));
        world.placement.setVisible(true);
        panel.surface->translucent = false;
        moveTo(NotchEdge::Bottom);
        QVERIFY(isAt(NotchEdge::Bottom));
        panel.surface->translucent = true;
        panel.surface->passesClicks = false;
        moveTo(NotchEdge::Right);
        QVERIFY(isAt(NotchEdge::Right));
    }
};

QTEST_MAIN(TestMotion)
#include "tst_motion.moc"

#include <QVariantAnimation>

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
            const auto isMoving = [&] {
                const auto animations = panel.view().findChildren<QVariantAnimation *>(u"transition"_s);
                return !animations.isEmpty();
            };
            QVERIFY(isMoving());
            QCOMPARE(panel.control(u"session 1,"_s) != nullptr, comes); // at once
            QTRY_VERIFY(counter.paintsOf(u"Nubble"_s) >= 3);
            QCOMPARE(isMoving(), true);
            if (comes) {
                world.addSession(1, u"renamed"_s, u"idle"_s, 100s);
                world.monitor.refresh();
                const auto before = counter.paintsOf(u"renamed"_s);
                QTRY_VERIFY(counter.paintsOf(u"renamed"_s) > before);
            }
            QTRY_VERIFY(!isMoving());
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
        for (const auto *status : {"idle", "waiting"}) {
            world.addSession(2, u"two"_s, QString::fromLatin1(status), 0ms);
            world.monitor.refresh();
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
            const PaintCounter counter;
            world.addSession(1, u"one"_s, u"waiting"_s, 0ms);
            world.readSessions();
            const auto isLarge = [&] { return RingPicture(world, panel).badge(25.6) == Palette::badge; };
            if (!still)
                QTRY_VERIFY(isLarge());
            settle(panel);
            QVERIFY(!isLarge());
            QCOMPARE(counter.paintsOf(u"Claude sessions"_s) > 4, !still);
            expectMotion(false);
            world.readSessions(); // it goes on waiting
            expectMotion(false);
            if (!still) {
                world.addSession(2, u"another"_s, u"waiting"_s, 0ms);
                world.readSessions();
                QTRY_VERIFY(isLarge());
                world.preferences.setReducedMotion(true);
                QVERIFY(!isLarge());
            }
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
            // The colours there halfway through what moves, which then comes to its end.
            const auto halfway = [&](double turn, double radius, int duration) {
                for (auto *motion : panel.ring()->findChildren<QVariantAnimation *>())
                    if (motion->state() == QAbstractAnimation::Running && motion->duration() == duration) {
                        motion->pause();
                        motion->setCurrentTime(duration / 2);
                        const QColor color = RingPicture(world, panel).at(turn, radius);
                        motion->resume();
                        return color;
                    }
                return RingPicture(world, panel).at(turn, radius);
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
        moveTo(NotchEdge::Left);
        QVERIFY(!isAt(NotchEdge::Left));
        QTRY_VERIFY(panel.surface->opacity < 1);
        const bool leaves = panel.surface->last.edge == Qt::RightEdge;
        const double way =
            panel.surface->outline.boundingRect().x() - (leaves ? before : world.geometry().body.x());
        QVERIFY(std::abs(way - (leaves ? 8 : -8) * (1 - panel.surface->opacity)) < 1e-6);
        QTRY_VERIFY(isAt(NotchEdge::Left));
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

#include <QSignalSpy>
#include <QVariantAnimation>

#include "Sessions/ProjectsCardContent.h"
#include "Widgets/Typography.h"
#include "notch/Drawing.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace nubble;

class TestDrawing : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theRingsArcIsTheSessionWindowsPartClockwiseFromTheTop()
    {
        PanelWorld world;
        PanelUnderTest panel(world);
        for (const auto &[percent, color] :
             {std::pair(25, Palette::ample), {55, Palette::watch}, {70, Palette::critical}}) {
            showUsage(world, panel, percent);
            const RingPicture picture(world, panel);
            const double used = percent / 100.0;
            for (const double turn : {0.02, used / 2, used - 0.02})
                QCOMPARE(picture.at(turn), color);
            for (const double turn : {used + 0.07, (1 + used) / 2, 0.93})
                QVERIFY(picture.at(turn).saturation() == 0 && picture.at(turn).value() < 80); // the track
        }
        for (const int percent : {90, 91}) { // when little is left the arc is thicker, and the number red
            showUsage(world, panel, percent);
            const RingPicture picture(world, panel);
            QCOMPARE(picture.at(0.3, 9.9) == Palette::critical, percent > 90);
            QCOMPARE(picture.hasTextAt(13 + 3.5 + 5.5, 0.5), percent > 90);
        }
        const auto pictureAfter = [&panel](QEvent::Type type) {
            QFocusEvent focus(type);
            QCoreApplication::sendEvent(panel.ring(), &focus);
            return pictureOf(*panel.ring(), 1);
        };
        QVERIFY(pictureAfter(QEvent::FocusOut) != pictureAfter(QEvent::FocusIn));
        constexpr double distance = 13 + 3.5 + 5.5; // of the number
        for (const NotchEdge edge : allEdges) {
            world.placement.moveToEdge(edge, world.mainScreen.frame());
            const RingPicture picture(world, panel);
            QCOMPARE(picture.hasTextAt(distance), edge != NotchEdge::Bottom);
            QCOMPARE(picture.hasTextAt(-distance), edge == NotchEdge::Bottom);
        }
        world.placement.moveToEdge(NotchEdge::Right, world.mainScreen.frame());
        world.clock.advance(
            SystemClock().now() + 31min - world.clock.now()); // the files' time is the system's
        world.planUsage.refresh(true);
        QTRY_VERIFY(panel.ring()->accessibleName().endsWith(u" when last known"_s));
        QVERIFY(RingPicture(world, panel).at(0.3).value() < 0.65 * QColor(Palette::critical).value());
    }

    void theRingTellsWhatTheSessionsDo()
    {
        PanelWorld world;
        PanelUnderTest panel(world);
        showUsage(world, panel, 0);
        const auto picture = [&](const QString &status, const QString &said) {
            world.addSession(11, u"one"_s, status, 0s);
            world.readSessions();
            if (!panel.ring()->accessibleName().startsWith(u"Claude sessions: "_s + said))
                qFatal("the ring says %s", qPrintable(panel.ring()->accessibleName()));
            return RingPicture(world, panel);
        };
        QVERIFY(picture(u"idle"_s, u"idle"_s).badge() != Palette::badge);
        const RingPicture working = picture(u"busy"_s, u"working"_s); // the arc stands still
        QCOMPARE(working.at(0.12), Palette::bronze);
        QVERIFY(working.at(0.6) != Palette::bronze);
        const RingPicture completed = picture(u"idle"_s, u"just finished"_s);
        for (const double turn : {0.1, 0.35, 0.6, 0.85})
            QCOMPARE(completed.at(turn), Palette::ample);
        world.clock.advance(2min);
        world.readSessions();
        QVERIFY(panel.ring()->accessibleName().contains(u": idle"));
        showUsage(world, panel, 15);
        const RingPicture waiting =
            picture(u"waiting"_s, u"a session waits for you, 15 % of the plan used"_s);
        for (const double distance : {14.8, 19.5, 24.2})
            QCOMPARE(waiting.badge(distance), Palette::badge);
        QCOMPARE(waiting.badge(25.6), Palette::body);
        for (const double turn : {0.101, 0.149}) // its upmost and rightmost parts
            QCOMPARE(waiting.at(turn, 23.1), Palette::badge);
        for (const double turn : {0.03, 0.08, 0.125}) // all of a small arc is seen beside it
            for (const double radius : {11.0, 11.6, 12.2})
                QCOMPARE(waiting.at(turn, radius), Palette::ample);
    }

    void unchangedSessionsPaintNothingAndAChangedOnePaintsItsRowOnly()
    {
        for (const bool open : {false, true}) {
            PanelWorld world;
            for (int pid = 1; pid <= 20; ++pid)
                world.addSession(pid, u"session %1"_s.arg(pid), u"idle"_s, pid * 100s);
            PanelUnderTest panel(world);
            if (open)
                panel.clickRing();
            settle(panel);
            const PaintCounter counter;
            for (int poll = 0; poll < 5; ++poll) {
                world.addSession(3, u"session 3"_s, u"idle"_s, 5min); // rewritten as it was
                world.readSessions();
                settle(panel);
            }
            Q_EMIT world.mainScreen.changed();
            world.clock.advance(1s); // no minute has passed for any of them
            // The elapsed times are looked at.
            if (auto *card = panel.view().findChild<ProjectsCardContent *>())
                QVERIFY(QSignalSpy(card->findChild<QTimer *>(), &QTimer::timeout).wait());
            settle(panel);
            QCOMPARE(counter.painted, QStringList());
            world.addSession(2, u"renamed"_s, u"idle"_s, 200s);
            world.readSessions();
            settle(panel);
            QCOMPARE(counter.paintsOf(u"renamed"_s) > 0, open);
            QCOMPARE(counter.paintsOf(u"(Claude sessions|session)"_s), 0);
        }
    }

    void aChangeOfTheUsePaintsRingAndBarAndMovesNothingWhereMotionIsReduced()
    {
        PanelWorld world;
        PanelUnderTest panel(world);
        world.state.setMode(PanelMode::usage());
        const auto pointsAtRing = [&](double below) { // with the tail's tip, in the middle or below it
            const QPolygonF card = panel.surface->outline.toSubpathPolygons().last();
            const auto tip = std::ranges::max_element(card, {}, &QPointF::x);
            return std::abs(tip->y() - world.geometry().ringCenter.y() - below) < 0.6;
        };
        QVERIFY(pointsAtRing((Layout::percentGap + Typography::percentLineHeight()) / 2));
        showUsage(world, panel, 10);
        settle(panel);
        QVERIFY(pointsAtRing(0));
        const PaintCounter counter;
        showUsage(world, panel, 60);
        settle(panel);
        QVERIFY(counter.paintsOf(u"Claude sessions"_s) > 0 && counter.paintsOf(u"Current session"_s) > 0);
        expectMotion(false);
    }

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

    void sharpEdgesAndTheRingLieOnTheDevicesPixels()
    {
        PanelWorld world;
        PanelUnderTest panel(world);
        showUsage(world, panel, 0);
        for (const NotchEdge edge : allEdges)
            for (const double scale : {1.0, 1.5, 2.0}) {
                world.placement.moveToEdge(edge, world.mainScreen.frame());
                QImage picture((QSizeF(panel.view().size()) * scale).toSize(), QImage::Format_RGB32);
                picture.setDevicePixelRatio(scale);
                picture.fill(Qt::white);
                panel.view().render(&picture, {}, {}, QWidget::DrawChildren);
                const QRectF body = world.geometry().body;
                const QPointF ring = world.geometry().ringCenter;
                const QPointF side[]{
                    {body.left(), ring.y()},
                    {body.right(), ring.y()},
                    {ring.x(), body.bottom()},
                    {ring.x(), body.top()}};
                const QPoint across = isVertical(edge) ? QPoint(1, 0) : QPoint(0, 1);
                int changes = 0;
                for (int i = -2; i <= 2; ++i) {
                    const auto at = [&](int pixel) {
                        const QPointF place = side[static_cast<int>(edge)] * scale;
                        return picture.pixel(place.toPoint() + pixel * across);
                    };
                    QVERIFY(at(i) == qRgb(0, 0, 0) || at(i) == qRgb(255, 255, 255));
                    changes += at(i) != at(i - 1);
                }
                QCOMPARE(changes, 1);
                const QPointF corner = (ring - QPointF(13, 13)) * scale;
                const QImage drawn = picture.copy({corner.toPoint(), QSize(26, 26) * scale});
                const QImage mirrored = drawn.mirrored(true, true);
                for (int y = 0; y < drawn.height(); ++y)
                    for (int x = 0; x < drawn.width(); ++x)
                        QVERIFY(isNear(drawn.pixel(x, y), mirrored.pixel(x, y)));
            }
    }

    void theRingIsLitBelowThePointerAndWhilePressed()
    {
        PanelWorld world;
        world.placement.setLocked(true);
        PanelUnderTest panel(world);
        showUsage(world, panel, 0);
        settle(panel);
        const auto light = [&] { return RingPicture(world, panel).badge(13.9).red(); };
        const auto pointer = [&](QEvent::Type type) {
            QEnterEvent enter({}, {}, {});
            QEvent leave(type);
            QCoreApplication::sendEvent(panel.ring(), type == QEvent::Enter ? &enter : &leave);
        };
        QCOMPARE(light(), 0);
        pointer(QEvent::Enter);
        QTRY_COMPARE(light(), 26);
        const QPoint middle = panel.ring()->rect().center();
        QTest::mousePress(panel.ring(), Qt::LeftButton, {}, middle);
        QTRY_COMPARE(light(), 42);
        QTest::mouseMove(panel.ring(), middle + QPoint(0, 5)); // it is locked, and no longer pressed
        QCOMPARE(panel.ring()->cursor().shape(), Qt::ArrowCursor);
        QTRY_COMPARE(light(), 26);
        QTest::mouseRelease(panel.ring(), Qt::LeftButton, {}, middle);
        pointer(QEvent::Leave);
        QTRY_COMPARE(light(), 0);
        settle(panel);
        expectMotion(false);
    }

    void rowsOfWhatWaitsAreTinted()
    {
        PanelWorld world;
        world.addSession(1, u"one"_s, u"waiting"_s, 0ms);
        world.addSession(2, u"two"_s, u"idle"_s, 0ms);
        PanelUnderTest panel(world);
        panel.clickRing();
        for (ProjectRow *row : panel.rows()) {
            const QColor color = pictureOf(*row, 1).pixelColor(5, row->height() / 2);
            const bool waits = row->accessibleName().startsWith(u"one");
            QVERIFY(waits ? std::abs(color.red() - 28) <= 1 && color.blue() < 6 : color == Qt::black);
        }
    }

private:
    static bool isNear(QRgb a, QRgb b) // but for the soft edges of curves that begin elsewhere
    {
        const auto differ = [](int x, int y) { return std::abs(x - y) > 24; };
        return !differ(qRed(a), qRed(b)) && !differ(qGreen(a), qGreen(b)) && !differ(qBlue(a), qBlue(b));
    }

    // A timer that fires nearly as often as the frames do tells when several would have been painted.
    static void expectMotion(bool turning)
    {
        const PaintCounter counter;
        int ticks = 0;
        QTimer frames;
        frames.callOnTimeout([&ticks] { ++ticks; });
        frames.start(40);
        if (turning)
            QTRY_VERIFY(counter.paintsOf(u"Claude sessions"_s) >= 5);
        QTRY_VERIFY(ticks >= 10);
        if (!turning)
            QVERIFY2(
                counter.painted.isEmpty() && counter.frames == 0,
                qPrintable(
                    u"%1 frames, painted: %2"_s.arg(counter.frames).arg(counter.painted.join(u", "_s))));
    }
};

QTEST_MAIN(TestDrawing)
#include "tst_drawing.moc"

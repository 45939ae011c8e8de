#include <QSignalSpy>

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
        const RingPicture old(world, panel);
        QVERIFY(old.at(0.3).value() < 0.65 * QColor(Palette::critical).value() && !old.hasTextAt(distance));
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
        world.addSession(12, u"two"_s, u"busy"_s, 0s);
        for (const RingPicture &glyph : {waiting, picture(u"waiting"_s, u"a session waits for you"_s)})
            QCOMPARE(glyph.at(0.25, 3.7), Palette::badge);
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
};

QTEST_MAIN(TestDrawing)
#include "tst_drawing.moc"

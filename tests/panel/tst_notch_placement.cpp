#include <QSignalSpy>
#include <QTest>

#include "Panel/Layout.h"
#include "Panel/NotchPlacement.h"
#include "Shell/Defaults.h"
#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;
using namespace nubble;

namespace {

const QRectF wide(100, 50, 1440, 900);
const QRectF square(0, 0, 800, 800);

QString shown(const NotchPlacement &placement)
{
    return rawValue(placement.edge()) + u' ' + QString::number(placement.offset())
        + (placement.isLocked() ? u" locked"_s : QString())
        + (placement.isVisible() ? QString() : u" hidden"_s);
}

} // namespace

class TestNotchPlacement : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void storedSettingsAreReadAndWrongOnesCountAsAbsent_data()
    {
        QTest::addColumn<QByteArray>("stored");
        QTest::addColumn<QString>("placement");
        const auto row = [](const char *name, const char *stored, const char16_t *placement) {
            QTest::newRow(name) << QByteArray(stored) << QString::fromUtf16(placement);
        };
        row("none", "", u"right 0");
        row("all", "edge=top\noffset=-12.5\nlocked=true\nvisible=false", u"top -12.5 locked hidden");
        row("no such edge", "edge=Top", u"right 0");
        row("edge is a list", "edge=top, left", u"right 0");
        row("offset is no number", "offset=abc", u"right 0");
        row("offset is not finite", "offset=inf", u"right 0");
        row("flags in other words", "locked=1\nvisible=0", u"right 0");
        row("one is wrong", "edge=left\noffset=\nlocked=TRUE\nvisible=false", u"left 0 hidden");
    }

    void storedSettingsAreReadAndWrongOnesCountAsAbsent()
    {
        QFETCH(QByteArray, stored);
        QFETCH(const QString, placement);
        const TemporaryHome home;
        const QByteArray file = "[General]\nplacement." + stored.replace("\n", "\nplacement.") + '\n';
        const QString path = home.write(u"preferences.conf"_s, stored.isEmpty() ? QByteArray() : file);
        Defaults defaults(path);
        const Layout layout(11, false, 0);
        QCOMPARE(shown(NotchPlacement(defaults, layout)), placement);
        defaults.synchronize();
        QFile unchanged(path);
        QVERIFY(unchanged.open(QIODevice::ReadOnly));
        QCOMPARE(unchanged.readAll(), stored.isEmpty() ? QByteArray() : file);
    }

    void everyChangeIsPublishedOnceAndOutlivesTheProgram()
    {
        const TemporaryHome home;
        const Layout layout(11, false, 0);
        QString last;
        {
            Defaults defaults(home.path(u"preferences.conf"_s));
            NotchPlacement placement(defaults, layout);
            const QSignalSpy changed(&placement, &NotchPlacement::changed);
            placement.centerOnEdge(); // already there
            placement.setVisible(true);
            placement.setDragging(true);
            QCOMPARE(changed.count(), 0);
            placement.moveTo({600, 60}, wide);
            QCOMPARE(changed.count(), 1);
            placement.moveTo({600, 70}, wide); // nearer to no other edge
            QCOMPARE(changed.count(), 1);
            placement.toggleLocked();
            placement.toggleVisible();
            QCOMPARE(changed.count(), 3);
            last = shown(placement);
        }
        QCOMPARE(last, u"top -220 locked hidden"_s);
        Defaults defaults(home.path(u"preferences.conf"_s));
        const NotchPlacement again(defaults, layout);
        QCOMPARE(shown(again), last);
        QVERIFY(!again.isDragging());
    }

    void aDragGoesToTheNearestEdge_data()
    {
        QTest::addColumn<QRectF>("screen");
        QTest::addColumn<QPointF>("point");
        QTest::addColumn<QString>("placement");
        const auto row = [](const char *name, const QRectF &screen, double x, double y,
                            const char16_t *placement) {
            QTest::newRow(name) << screen << QPointF(x, y) << QString::fromUtf16(placement);
        };
        row("near the right", wide, 1530, 400, u"right -100");
        row("near the left", wide, 110, 600, u"left 100");
        row("near the top", wide, 900, 60, u"top 80");
        row("near the bottom", wide, 700, 940, u"bottom -120");
        row("beyond the screen", wide, 2000, 510, u"right 10");
        row("left and top alike", square, 100, 100, u"left -300");
        row("left and bottom alike", square, 150, 650, u"left 250");
        row("right and top alike", square, 650, 150, u"right -250");
        row("right and bottom alike", square, 650, 650, u"right 250");
        row("all alike", square, 400, 400, u"left 0");
        row("bottom and top alike", wide, 800, 500, u"bottom -20");
    }

    void aDragGoesToTheNearestEdge()
    {
        QFETCH(const QRectF, screen);
        QFETCH(const QPointF, point);
        QFETCH(const QString, placement);
        withPlacement([&](NotchPlacement &dragged) {
            dragged.moveTo(point, screen);
            QCOMPARE(shown(dragged), placement);
        });
    }

    void aLockedPanelIsNotDraggedButMovesWhenTold()
    {
        withPlacement([](NotchPlacement &placement) {
            placement.toggleLocked();
            placement.moveTo({110, 600}, wide);
            QCOMPARE(shown(placement), u"right 0 locked"_s);
            placement.moveToEdge(NotchEdge::Top, wide);
            QCOMPARE(shown(placement), u"top 0 locked"_s);
        });
    }

    void theOffsetKeepsThePanelOnTheScreen()
    {
        // Without companion and actions the body reaches 154/3 beyond the ring on horizontal edges.
        withPlacement([](NotchPlacement &placement) {
            placement.moveToEdge(NotchEdge::Top, std::nullopt);
            QCOMPARE(placement.clamp(10000, wide), 720 - 154.0 / 3);
            QCOMPARE(placement.clamp(-10000, wide), -(720 - 154.0 / 3));
            QCOMPARE(placement.clamp(-300, wide), -300);
            for (const double offset : {-1e300, -1.0, 0.0, 5.0, 1e300})
                QCOMPARE(placement.clamp(offset, {0, 0, 90, 90}), 0);
            placement.moveTo({101, 51}, wide); // a corner
            QCOMPARE(placement.edge(), NotchEdge::Left);
            QCOMPARE(placement.offset(), placement.clamp(-10000, wide));
        });
    }

    void anotherEdgeKeepsTheOffsetAsFarAsItFits()
    {
        withPlacement([](NotchPlacement &placement) {
            placement.moveTo({800, 51}, wide);
            placement.moveTo({1400, 51}, wide);
            QCOMPARE(shown(placement), u"top 580"_s);
            placement.moveToEdge(NotchEdge::Bottom, wide);
            QCOMPARE(shown(placement), u"bottom 580"_s);
            placement.moveToEdge(NotchEdge::Left, std::nullopt); // no screen to fit
            QCOMPARE(shown(placement), u"left 580"_s);
            placement.moveToEdge(NotchEdge::Right, wide);
            QCOMPARE(placement.offset(), placement.clamp(10000, wide));
            QVERIFY(placement.offset() < 450);
            placement.centerOnEdge();
            QCOMPARE(shown(placement), u"right 0"_s);
        });
    }

private:
    template <typename Act> static void withPlacement(const Act &act)
    {
        const TemporaryHome home;
        Defaults defaults(home.path(u"preferences.conf"_s));
        const Layout layout(11, false, 0);
        NotchPlacement placement(defaults, layout);
        act(placement);
    }
};

QTEST_GUILESS_MAIN(TestNotchPlacement)
#include "tst_notch_placement.moc"

#include <QSignalSpy>
#include <QTest>

#include "Placement/Layout.h"
#include "Placement/NotchPlacement.h"
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
    void storedSettingsAreReadAndWrongOnesCountAsAbsent()
    {
        const TemporaryHome home;
        const Layout layout(11, false, 0);
        for (const auto &[stored, placement] :
             {std::pair(QByteArray(), u"right 0"_s),
              {"edge=top\noffset=-12.5\nlocked=true\nvisible=false", u"top -12.5 locked hidden"_s},
              {"edge=Top\noffset=inf\nlocked=1\nvisible=0", u"right 0"_s},
              {"edge=left\noffset=\nlocked=TRUE\nvisible=false", u"left 0 hidden"_s}}) {
            const QByteArray keys = "\nplacement." + QByteArray(stored).replace("\n", "\nplacement.") + '\n';
            Defaults defaults(home.write(u"preferences.conf"_s, "[General]" + keys));
            QCOMPARE(shown(NotchPlacement(defaults, layout)), placement);
        }
    }

    void everyChangeIsPublishedOnce()
    {
        withPlacement([](NotchPlacement &placement) {
            const QSignalSpy changed(&placement, &NotchPlacement::changed);
            placement.centerOnEdge(); // already there
            placement.setVisible(true);
            placement.setDragging(true);
            QCOMPARE(changed.count(), 0);
            placement.moveTo({600, 60}, wide);
            placement.moveTo({600, 70}, wide); // nearer to no other edge
            QCOMPARE(changed.count(), 1);
            placement.toggleLocked();
            placement.toggleVisible();
            QCOMPARE(changed.count(), 3);
            QCOMPARE(shown(placement), u"top -220 locked hidden"_s);
        });
    }

    void aDragGoesToTheNearestEdge()
    {
        struct Row {
            QRectF screen;
            QPointF point;
            QString placement;
        };
        for (const auto &row : {
                 Row{wide, {1530, 400}, u"right -100"_s},
                 Row{wide, {110, 600}, u"left 100"_s},
                 Row{wide, {900, 60}, u"top 80"_s},
                 Row{wide, {700, 940}, u"bottom -120"_s},
                 Row{wide, {2000, 510}, u"right 10"_s},   // beyond the screen
                 Row{square, {100, 100}, u"left -300"_s}, // as near to two of them, or to all
                 Row{square, {650, 150}, u"right -250"_s},
                 Row{square, {400, 400}, u"left 0"_s},
             }) {
            withPlacement([&](NotchPlacement &dragged) {
                dragged.moveTo(row.point, row.screen);
                QCOMPARE(shown(dragged), row.placement);
            });
        }
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
            placement.toggleLocked();
            placement.moveTo({110, 600}, wide); // a locked panel is not dragged
            QCOMPARE(shown(placement), u"right 0 locked"_s);
            placement.moveToEdge(NotchEdge::Top, wide); // but moves when told
            QCOMPARE(shown(placement), u"top 0 locked"_s);
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

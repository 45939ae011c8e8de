#include <QSignalSpy>
#include <QTest>

#include <cmath>

#include "Placement/Layout.h"
#include "Placement/NotchPlacement.h"
#include "Placement/PanelGeometry.h"
#include "Placement/PanelShapes.h"
#include "Placement/WindowPlacement.h"
#include "Shell/Defaults.h"
#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;
using namespace nubble;

namespace {

const QRectF wide(100, 50, 1440, 900);
const QRectF square(0, 0, 800, 800);
constexpr double hair = 2e-6;

// A placement in a home of its own, where such settings are stored.
struct Stored {
    explicit Stored(const QByteArray &settings = {})
        : defaults(home.write(u"preferences.conf"_s, "[General]\n" + settings))
    {
    }

    [[nodiscard]] QString shown() const
    {
        const QString now = textOf(placement);
        return textOf(NotchPlacement(defaults, layout)) == now ? now : u"not stored: "_s + now;
    }

    TemporaryHome home;
    mutable Defaults defaults;
    Layout layout{11, false, 0};
    NotchPlacement placement{defaults, layout};

private:
    static QString textOf(const NotchPlacement &placement)
    {
        return rawValue(placement.edge()) + u' ' + QString::number(placement.offset())
            + (placement.isLocked() ? u" locked"_s : QString())
            + (placement.isVisible() ? QString() : u" hidden"_s)
            + (placement.scale() == 1 ? QString() : u" x%1"_s.arg(placement.scale()));
    }
};

bool holds(const QRectF &outer, const QRectF &inner)
{
    return outer.adjusted(-hair, -hair, hair, hair).contains(inner);
}

bool equals(const QRectF &a, const QRectF &b)
{
    return holds(a, b) && holds(b, a);
}

double along(NotchEdge edge, const QPointF &point)
{
    return isVertical(edge) ? point.y() : point.x();
}

double sideOf(NotchEdge edge, const QRectF &rect)
{
    const double sides[]{rect.right(), rect.left(), rect.top(), rect.bottom()};
    return sides[static_cast<int>(edge)];
}

} // namespace

class TestPlacement : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aToolTipStandsBesideItsControlWithinTheScreen()
    {
        const QRect screen(0, 0, 1280, 800);
        const QSize size(320, 100);
        for (const auto &[control, edge, topLeft] :
             {std::tuple(QRect(1000, 300, 200, 40), Qt::RightEdge, QPoint(680, 270)),
              {QRect(80, 300, 200, 40), Qt::LeftEdge, QPoint(280, 270)},
              {QRect(500, 60, 200, 40), Qt::TopEdge, QPoint(440, 100)},
              {QRect(500, 700, 200, 40), Qt::BottomEdge, QPoint(440, 600)},
              {QRect(1180, 0, 100, 20), Qt::RightEdge, QPoint(860, 0)},  // not beyond the corner
              {QRect(1240, 740, 40, 20), Qt::TopEdge, QPoint(960, 640)}, // no room below
              {QRect(100, 0, 300, 790), Qt::RightEdge, QPoint(400, 345)},
              {QRect(0, 10, 1280, 600), Qt::RightEdge, QPoint(480, 610)}}) {
            const QRect frame = placeToolTip(control, size, screen, edge);
            QCOMPARE(frame, QRect(topLeft, size));
            QVERIFY(screen.contains(frame) && !frame.intersects(control));
        }
        QVERIFY(screen.contains(placeToolTip(screen, size, screen, Qt::TopEdge)));
    }

    void storedSettingsAreReadAndWrongOnesCountAsAbsent()
    {
        for (const auto &[settings, shown] :
             {std::pair(QByteArray(), u"right 0"_s),
              {"edge=top\noffset=-12.5\nlocked=true\nvisible=false", u"top -12.5 locked hidden"_s},
              {"edge=Top\noffset=inf\nlocked=1\nvisible=0", u"right 0"_s},
              {"edge=left\noffset=\nlocked=TRUE\nvisible=false", u"left 0 hidden"_s}})
            QCOMPARE(
                Stored("placement." + QByteArray(settings).replace("\n", "\nplacement.")).shown(), shown);
    }

    void theScaleGoesByTenthsAndNoFurtherThanThereIs()
    {
        for (const auto &[written, shown] :
             {std::pair("1.26", u"right 0 x1.3"_s),
              {"9", u"right 0 x2"_s},
              {"-1", u"right 0 x0.8"_s},
              {"wide", u"right 0"_s}})
            QCOMPARE(Stored("panel.scale=" + QByteArray(written)).shown(), shown);
        Stored stored;
        for (const auto &[steps, shown] :
             {std::pair(3, u"right 0 x1.3"_s),
              {-3, u"right 0"_s},
              {-9, u"right 0 x0.8"_s},
              {99, u"right 0 x2"_s}}) {
            stored.placement.enlarge(steps, stored.placement.scale());
            QCOMPARE(stored.shown(), shown);
        }
        QCOMPARE(
            stored.placement.clamp(1e9, square), 400 - 2 * (400 - Stored().placement.clamp(1e9, square)));
        stored.placement.enlarge(-1, 1.27); // where a small screen does not show it at 2
        QCOMPARE(stored.shown(), u"right 0 x1.2"_s);
    }

    void everyChangeIsPublishedOnceAndStored()
    {
        Stored stored;
        NotchPlacement &placement = stored.placement;
        const QSignalSpy changed(&placement, &NotchPlacement::changed);
        placement.centerOnEdge(); // already there
        placement.setVisible(true);
        placement.setDragging(true);
        QCOMPARE(changed.count(), 0);
        placement.moveTo({600, 60}, wide);
        placement.moveTo({600, 70}, wide); // nearer to no other edge
        QCOMPARE(changed.count(), 1);
        placement.setLocked(true);
        placement.toggleVisible();
        QCOMPARE(changed.count(), 3);
        QCOMPARE(stored.shown(), u"top -220 locked hidden"_s);
    }

    void aDragGoesToTheNearestEdge()
    {
        using Row = std::tuple<QRectF, QPointF, QString>;
        for (const auto &[screen, point, shown] : {
                 Row(wide, {1530, 400}, u"right -100"_s),
                 Row(wide, {110, 600}, u"left 100"_s),
                 Row(wide, {900, 60}, u"top 80"_s),
                 Row(wide, {700, 940}, u"bottom -120"_s),
                 Row(wide, {2000, 510}, u"right 10"_s),   // beyond the screen
                 Row(square, {100, 100}, u"left -300"_s), // as near to two of them, or to all
                 Row(square, {650, 150}, u"right -250"_s),
                 Row(square, {400, 400}, u"left 0"_s),
             }) {
            Stored stored;
            stored.placement.moveTo(point, screen);
            QCOMPARE(stored.shown(), shown);
        }
    }

    void theOffsetKeepsThePanelOnTheScreen()
    {
        // Without companion and actions the body reaches 154/3 beyond the ring on horizontal edges.
        Stored stored;
        NotchPlacement &placement = stored.placement;
        placement.moveToEdge(NotchEdge::Top, std::nullopt);
        QCOMPARE(placement.clamp(10000, wide), 720 - 154.0 / 3);
        QCOMPARE(placement.clamp(-10000, wide), -(720 - 154.0 / 3));
        QCOMPARE(placement.clamp(-300, wide), -300);
        for (const double offset : {-1e300, -1.0, 0.0, 5.0, 1e300})
            QCOMPARE(placement.clamp(offset, {0, 0, 90, 90}), 0);
        placement.moveTo({101, 51}, wide); // a corner
        QCOMPARE(placement.edge(), NotchEdge::Left);
        QCOMPARE(placement.offset(), placement.clamp(-10000, wide));
    }

    void anotherEdgeKeepsTheOffsetAsFarAsItFits()
    {
        Stored stored;
        NotchPlacement &placement = stored.placement;
        placement.moveTo({800, 51}, wide);
        placement.moveTo({1400, 51}, wide);
        QCOMPARE(stored.shown(), u"top 580"_s);
        placement.moveToEdge(NotchEdge::Left, std::nullopt); // no screen to fit
        QCOMPARE(stored.shown(), u"left 580"_s);
        placement.moveToEdge(NotchEdge::Bottom, wide);
        QCOMPARE(stored.shown(), u"bottom 580"_s);
        placement.moveToEdge(NotchEdge::Right, wide);
        QCOMPARE(placement.offset(), placement.clamp(10000, wide));
        QVERIFY(placement.offset() < 450);
        placement.centerOnEdge();
        placement.setLocked(true);
        placement.moveTo({110, 600}, wide); // a locked panel is not dragged
        QCOMPARE(stored.shown(), u"right 0 locked"_s);
        placement.moveToEdge(NotchEdge::Top, wide); // but moves when told
        QCOMPARE(stored.shown(), u"top 0 locked"_s);
    }

    void everyMeasureIsTheExactOne()
    {
        // For a line height of 11, worked out by hand from the base sizes.
        using enum NotchEdge;
        using Row = std::tuple<Layout, NotchEdge, QSizeF, QRectF, QPointF, double>;
        const Layout bare(11, false, 0), full(11, true, 3);
        const QSizeF upright(329.743590, 460), fullUpright(329.743590, 565.511111),
            level(246.153846, 560.567521), fullLevel(317.709402, 560.567521);
        for (const auto &[layout, edge, window, body, actions, limit] : {
                 Row(bare, Right, upright, {288.410256, 178.666667, 41.333333, 115.333333}, {}, 656),
                 Row(bare, Top, level, {71.743590, 0, 98.355556, 58.311111}, {}, 668.666667),
                 Row(full, Right, fullUpright, {288.410256, 231.422222, 41.333333, 243.644444},
                     {309.076923, 399.666667}, 527.688889),
                 Row(full, Left, fullUpright, {0, 231.422222, 41.333333, 243.644444}, {20.666667, 399.666667},
                     527.688889),
                 Row(full, Top, fullLevel, {107.521368, 0, 209.688889, 58.311111}, {250.299145, 20.666667},
                     561.644444),
                 Row(full, Bottom, fullLevel, {107.521368, 502.256410, 209.688889, 58.311111},
                     {250.299145, 539.900855}, 561.644444),
             }) {
            QVERIFY(equals({{}, layout.windowSize(edge)}, {{}, window}));
            QVERIFY(equals(layout.bodyRect(edge), body));
            QVERIFY(
                actions.isNull() || (layout.actionsCenterInWindow(edge) - actions).manhattanLength() < hair);
            QVERIFY(std::abs(layout.offsetLimit(edge, 1440) - limit) < hair);
            QCOMPARE(layout.offsetLimit(edge, 50), 0);
        }
    }

    void onEveryScreenThePanelIsFlushAndTheCardInSight()
    {
        const QRectF second(1920, -200, 1440, 900), fractional(0, 0, 1280.5, 720.5), tiny(0, 0, 320, 240);
        for (const NotchEdge edge : allEdges)
            for (const QRectF &screen : {second, fractional, tiny})
                for (const double offset : {-1e9, -100.4, 0.0, 33.5, 1e9})
                    for (const double unit : {1.0, 0.8, 1.3, 2.0})
                        expectFlushAndInSight(edge, offset, screen, unit);
    }

    void aWindowOpensBesideTheBodyAndStaysInSight()
    {
        const QRectF visible(0, 30, 1000, 770); // below a bar
        const QSize size(420, 540);
        using enum NotchEdge;
        const std::vector<std::tuple<std::optional<WindowAnchor>, QSize, QPoint>> rows{
            {WindowAnchor{{960, 300, 40, 200}, Right}, size, {960 - 12 - 420, 130}},
            {WindowAnchor{{0, 300, 40, 200}, Left}, size, {52, 130}},
            {WindowAnchor{{400, 0, 200, 40}, Top}, size, {290, 52}},
            {WindowAnchor{{400, 760, 200, 40}, Bottom}, size, {290, 760 - 12 - 540}},
            {WindowAnchor{{960, 0, 40, 200}, Right}, size, {528, 38}},
            {WindowAnchor{{960, 600, 40, 200}, Right}, size, {528, 800 - 8 - 540}},
            {WindowAnchor{{0, 0, 200, 40}, Top}, size, {8, 52}},
            {WindowAnchor{{800, 0, 200, 40}, Top}, size, {1000 - 8 - 420, 52}},
            {std::nullopt, size, {290, 145}},
        };
        for (const auto &[anchor, itsSize, place] : rows)
            QCOMPARE(placeBeside(anchor, itsSize, visible), QRect(place, itsSize));
        const QRectF screen(1920, 100, 1280, 800);
        const QRectF belowBar = screen.adjusted(0, 30, 0, 0);
        const QSize wide(680, 460);
        QCOMPARE(placeInUpperPart({}, wide, screen, belowBar), QRect(QPoint(2220, 150), wide));
        QCOMPARE(
            placeInUpperPart({}, size, screen, belowBar), QRect(QPoint(2350, 138), size)); // not over the bar

        const QRectF small(0, 0, 640, 400); // the body is not covered there either
        for (const auto &[anchor, place] : {
                 std::pair(WindowAnchor{{599, 130, 41, 190}, Right}, QRect(8, 8, 579, 384)),
                 {{{0, 130, 41, 190}, Left}, {53, 8, 579, 384}},
                 {{{230, 0, 190, 41}, Top}, {8, 53, 624, 339}},
                 {{{230, 359, 190, 41}, Bottom}, {8, 8, 624, 339}},
             }) {
            QCOMPARE(placeInUpperPart(anchor, wide, small, small), place);
            QCOMPARE(placeBeside(anchor, {1200, 900}, small), place);
        }
    }

    void theBodyAndCardAreDrawnWithinTheirPlaces()
    {
        const QRectF rect(300, 200, 150, 130);
        const QRectF withTail[]{
            rect.adjusted(0, 0, 14, 0), rect.adjusted(-14, 0, 0, 0), rect.adjusted(0, -14, 0, 0),
            rect.adjusted(0, 0, 0, 14)};
        const QPointF inTail[]{{460, 250}, {290, 250}, {350, 190}, {350, 340}};
        for (const NotchEdge edge : allEdges) {
            QVERIFY(equals(rect, bodyOutline(edge, rect).boundingRect()));
            const QPainterPath card = cardOutline(edge, rect, 14, 50);
            QVERIFY(equals(withTail[static_cast<int>(edge)], card.boundingRect()));
            QVERIFY(card.contains(inTail[static_cast<int>(edge)]));
            for (const double along : {-1e6, 0.0, 1e6}) // the tail keeps clear of the corners
                QVERIFY(holds(
                    rect.adjusted(-14, -14, 14, 14), cardOutline(edge, rect, 14, along).boundingRect()));
        }
        const QPainterPath card = cardOutline(NotchEdge::Top, rect, 14, 50); // whose tip is round
        QVERIFY(card.contains(QPointF(348.2, 187.5)) && card.contains(QPointF(351.8, 187.5)));
        const QPainterPath body = bodyOutline(NotchEdge::Top, rect); // its shoulders are a quarter circle
        QVERIFY(!body.contains(QPointF(312, 210)) && body.contains(QPointF(315, 210)));
    }

    void cellsAreTouchedFromTheScreensEdgeToTheBodysEndAndHalfwayToTheirNeighbours()
    {
        for (const NotchEdge edge : allEdges)
            for (const auto &[companion, actions] : {std::pair(false, 0), {true, 0}, {false, 3}, {true, 4}}) {
                const Layout layout(11, companion, actions);
                QList<QRectF> areas{layout.ringArea(edge)};
                QList<QPointF> centers{layout.ringCenter(edge)};
                if (companion) {
                    areas.append(layout.quenwickArea(edge));
                    centers.append(layout.quenwickCenterInWindow(edge));
                }
                for (int i = 0; i < actions; ++i)
                    areas.append(layout.actionArea(edge, i));
                const QRectF body = layout.bodyRect(edge);
                for (qsizetype i = 0; i < areas.size(); ++i) {
                    const QRectF &area = areas.at(i);
                    QVERIFY(holds(body, area));
                    const double depth = isVertical(edge) ? area.width() : area.height();
                    QVERIFY(std::abs(depth - layout.bodyDepth(edge)) < hair);
                    QVERIFY(i == 0 || along(edge, area.topLeft() - areas.at(i - 1).bottomRight()) > -hair);
                    if (i < centers.size())
                        QVERIFY(area.contains(QRectF(centers.at(i) - QPointF(13, 13), QSizeF(26, 26))));
                    else
                        QVERIFY(std::abs(Layout::along(edge, area.size()) - 23.5) < 0.1);
                }
                const double behind = along(edge, areas.first().bottomRight() - centers.first());
                QVERIFY(behind > 20.2); // what waits is shown there
                const double before = along(edge, centers.first() - areas.first().topLeft());
                QVERIFY(std::abs(before - 27) < hair);
                if (actions > 0) { // the buttons stand in the middle of theirs
                    const QRectF all = areas.at(areas.size() - actions) | areas.last();
                    const QPointF middle = layout.actionsCenterInWindow(edge);
                    QVERIFY(std::abs(along(edge, all.center() - middle)) < hair);
                }
            }
    }

private:
    static void expectFlushAndInSight(NotchEdge edge, double offset, const QRectF &screen, double wanted)
    {
        const Layout layout(11, false, 3);
        const double limit = layout.offsetLimit(edge, Layout::along(edge, screen.size()) / wanted) * wanted;
        const double clamped = std::clamp(offset, -limit, limit);
        const PanelGeometry geometry = panelGeometry(layout, edge, clamped, screen, wanted);
        const double unit = geometry.unit;
        const QRectF body = geometry.body & geometry.screen;
        QVERIFY(std::abs(Layout::along(edge, body.size() - geometry.body.size())) <= 0.5 + hair);

        QVERIFY(holds(
            geometry.frame,
            QRectF(geometry.origin + geometry.frame.topLeft(), layout.windowSize(edge) * unit)));
        QVERIFY(holds(QRectF(QPointF(), geometry.frame.size()), geometry.body));
        QVERIFY(std::abs(geometry.body.width() - layout.bodyRect(edge).width() * unit) < hair);
        QVERIFY(std::abs(sideOf(edge, geometry.body) - sideOf(edge, geometry.screen)) < hair);
        QVERIFY(std::abs(sideOf(edge, geometry.frame.toRectF()) - sideOf(edge, screen)) < 1);

        const QPointF ring = geometry.ringCenter + geometry.frame.topLeft();
        QVERIFY(limit == 0 || std::abs(along(edge, ring - screen.center()) - clamped) <= 0.5 + hair);
        QCOMPARE(along(edge, geometry.origin), std::round(along(edge, geometry.origin)));

        const int most = qFloor(geometry.roomForCard());
        QVERIFY(most >= std::floor(276 * unit)); // of what does not scroll
        const QRectF tallest = geometry.cardRect({qRound(246 * unit), most});
        const double above = tallest.top() - geometry.screen.top();
        const double below = geometry.screen.bottom() - tallest.bottom();
        QVERIFY(std::min(above, below) > 160.0 / 13 * unit - 1.5);

        // A card of any height lies beside the body, with its shadow on the screen and in the window.
        for (const double height : {60.0, 250.0, 460.0}) {
            const QRectF card = geometry.cardRect((QSizeF(246, height) * unit).toSize());
            QVERIFY(!card.intersects(geometry.body));
            const double across = std::abs(sideOf(edge, geometry.screen) - sideOf(edge, card));
            QVERIFY(std::abs(across - (124.0 / 3 + 448.0 / 39 + 160.0 / 13 + 80.0 / 13) * unit) <= 1);
            QVERIFY(holds(
                QRectF(QPointF(), geometry.frame.size()),
                card.marginsAdded(geometry.cardShadow()) & geometry.screen));
            const double padding = std::round(160.0 / 13 * unit);
            const QRectF padded = card.marginsAdded({padding, padding, padding, padding});
            const double start = along(edge, padded.topLeft() - geometry.screen.topLeft());
            const double room = Layout::along(edge, screen.size()) - Layout::along(edge, padded.size());
            QVERIFY(room < 0 ? std::abs(start) <= 0.5 : start >= -0.5 && start <= room + 0.5);
        }
    }
};

QTEST_GUILESS_MAIN(TestPlacement)
#include "tst_placement.moc"

#include <QTest>

#include <cmath>

#include "Panel/Layout.h"
#include "panel/Edges.h"

using namespace Qt::StringLiterals;
using namespace nubble;

namespace {

constexpr double lineHeight = 11;
constexpr double r = lineHeight + 1439.0 / 45; // the ring with its percentage, across

// The panel's measures, worked out from the base sizes alone. Along: parallel to the edge; across: away from
// it.
struct Expected {
    Expected(NotchEdge edge, bool companion, int n)
    {
        const bool vertical = isVertical(edge);
        depth = vertical ? 124.0 / 3 : r + 46.0 / 3;
        pitch = !companion ? 0 : vertical ? r + 88.0 / 9 : 322.0 / 9;
        buttons = n == 0 ? 0 : n * 56.0 / 3 + (n - 1) * 44.0 / 9;
        actions = n == 0 ? 0 : buttons + 88.0 / 9;
        length = (vertical ? r + 551.0 / 9 + 167.0 / 15 : 4426.0 / 45) + pitch + actions;
        reach = std::max(length - 154.0 / 3, 154.0 / 3);
        along = std::max((vertical ? 460 : 3200.0 / 13) + 2 * pitch, 2 * reach);
        across = (vertical ? 11248.0 / 39 : 19588.0 / 39) + depth;
        actionsFromRing = pitch + (vertical ? r / 2 : 13) + 88.0 / 9 + buttons / 2;
    }

    double depth, pitch, buttons, actions, length, reach, along, across, actionsFromRing;
};

// To coordinates of a window of that size, from "along" and "across the window, from the screen's edge".
QPointF inWindow(NotchEdge edge, const QSizeF &window, double along, double across)
{
    switch (edge) {
    case NotchEdge::Right:
        return {window.width() - across, along};
    case NotchEdge::Left:
        return {across, along};
    case NotchEdge::Top:
        return {along, across};
    case NotchEdge::Bottom:
        break;
    }
    return {along, window.height() - across};
}

bool isNear(double a, double b)
{
    return std::abs(a - b) < 1e-9;
}

bool isNear(const QPointF &a, const QPointF &b)
{
    return isNear(a.x(), b.x()) && isNear(a.y(), b.y());
}

bool isNear(const QRectF &a, const QRectF &b)
{
    return isNear(a.topLeft(), b.topLeft()) && isNear(a.bottomRight(), b.bottomRight());
}

} // namespace

#define COMPARE_LENGTHS(actual, expected)                                                                    \
    do {                                                                                                     \
        if (!isNear(actual, expected))                                                                       \
            QCOMPARE(actual, expected);                                                                      \
    } while (false)

class TestLayout : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void edgesAreStoredByName()
    {
        QStringList names;
        for (const NotchEdge edge : allEdges) {
            names.append(rawValue(edge) + u'/' + title(edge));
            QCOMPARE(edgeFrom(rawValue(edge)), edge);
        }
        QCOMPARE(names.join(u' '), u"right/Right left/Left top/Top bottom/Bottom"_s);
        QCOMPARE(edgeFrom(u"Right"_s), std::nullopt);
        QCOMPARE(edgeFrom(QString()), std::nullopt);
    }

    void everyMeasureIsTheExactOne_data()
    {
        QTest::addColumn<NotchEdge>("edge");
        QTest::addColumn<bool>("companion");
        QTest::addColumn<int>("actions");
        for (const NotchEdge edge : allEdges)
            for (const bool companion : {false, true})
                for (const int actions : {0, 1, 3})
                    QTest::addRow(
                        "%s %s %d", qPrintable(rawValue(edge)), companion ? "companion" : "alone", actions)
                        << edge << companion << actions;
    }

    void everyMeasureIsTheExactOne()
    {
        QFETCH(const NotchEdge, edge);
        QFETCH(const bool, companion);
        QFETCH(const int, actions);
        const Layout layout(lineHeight, companion, actions);
        const Expected e(edge, companion, actions);
        const QSizeF window = isVertical(edge) ? QSizeF(e.across, e.along) : QSizeF(e.along, e.across);
        const auto point = [&](double along, double across) { return inWindow(edge, window, along, across); };
        const auto rect = [&](double along, double length, double across, double depth) {
            return QRectF(point(along, across), point(along + length, across + depth)).normalized();
        };

        COMPARE_LENGTHS(layout.ringCenterAcross(), 62.0 / 3);
        COMPARE_LENGTHS(layout.bodyDepth(edge), e.depth);
        COMPARE_LENGTHS(layout.bodyLength(edge), e.length);
        COMPARE_LENGTHS(layout.quenwickPitch(edge), e.pitch);
        COMPARE_LENGTHS(layout.actionsLength(), e.actions);
        COMPARE_LENGTHS(layout.windowSize(edge).width(), window.width());
        COMPARE_LENGTHS(layout.windowSize(edge).height(), window.height());
        const double middle = e.along / 2;
        COMPARE_LENGTHS(layout.ringCenter(edge), point(middle, 62.0 / 3));
        COMPARE_LENGTHS(layout.bodyRect(edge), rect(middle - 154.0 / 3, e.length, 0, e.depth));
        COMPARE_LENGTHS(layout.cardArea(edge), rect(0, e.along, e.depth, e.across - e.depth));
        COMPARE_LENGTHS(layout.quenwickCenterInWindow(edge), point(middle + e.pitch, 62.0 / 3));
        if (actions > 0)
            COMPARE_LENGTHS(layout.actionsCenterInWindow(edge), point(middle + e.actionsFromRing, 62.0 / 3));
        COMPARE_LENGTHS(layout.offsetLimit(edge, 1440), 720 - e.reach);
        QCOMPARE(layout.offsetLimit(edge, 2 * e.reach), 0);
        QCOMPARE(layout.offsetLimit(edge, 50), 0);
    }

    void theWindowTouchesItsEdgeWithTheRingAtTheOffset_data() { addEdgeRows(); }
    void theWindowTouchesItsEdgeWithTheRingAtTheOffset()
    {
        QFETCH(const NotchEdge, edge);
        const QRectF screen(1920, -200, 1440, 900);
        const Layout layout(lineHeight, true, 3);
        for (const double offset : {0.0, 100.25, -33.0}) {
            const QRectF frame = layout.windowFrame(edge, offset, screen);
            const QPointF ring = isVertical(edge)
                ? QPointF(edge == NotchEdge::Right ? 3360 - 62.0 / 3 : 1920 + 62.0 / 3, 250 + offset)
                : QPointF(2640 + offset, edge == NotchEdge::Top ? -200 + 62.0 / 3 : 700 - 62.0 / 3);
            COMPARE_LENGTHS(frame.topLeft() + layout.ringCenter(edge), ring);
            const double sides[]{
                frame.right() - screen.right(), frame.left() - screen.left(), frame.top() - screen.top(),
                frame.bottom() - screen.bottom()};
            COMPARE_LENGTHS(sides[static_cast<int>(edge)], 0.0);
            COMPARE_LENGTHS(frame.width(), layout.windowSize(edge).width());
            COMPARE_LENGTHS(frame.height(), layout.windowSize(edge).height());
        }
    }
};

QTEST_GUILESS_MAIN(TestLayout)
#include "tst_layout.moc"

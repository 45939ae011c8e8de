#include <QTest>

#include <cmath>

#include "Panel/Layout.h"
#include "Panel/PanelGeometry.h"
#include "Panel/PanelShapes.h"
#include "panel/Edges.h"

using namespace Qt::StringLiterals;
using namespace nubble;

namespace {

constexpr double hair = 1e-6;

bool holds(const QRectF &outer, const QRectF &inner)
{
    return outer.adjusted(-hair, -hair, hair, hair).contains(inner);
}

double sideOf(NotchEdge edge, const QRectF &rect)
{
    const double sides[]{rect.right(), rect.left(), rect.top(), rect.bottom()};
    return sides[static_cast<int>(edge)];
}

} // namespace

class TestPanelGeometry : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void onEveryScreenThePanelIsFlushAndTheCardInSight_data()
    {
        QTest::addColumn<NotchEdge>("edge");
        QTest::addColumn<double>("offset");
        QTest::addColumn<QRectF>("screen");
        const QRectF second(1920, -200, 1440, 900), fractional(0, 0, 1280.5, 720.5), tiny(0, 0, 320, 240);
        for (const NotchEdge edge : allEdges)
            for (const QRectF &screen : {second, fractional, tiny})
                for (const double offset : {-1e9, -100.4, 0.0, 33.5, 1e9})
                    QTest::addRow("%s %g on %g", qPrintable(rawValue(edge)), offset, screen.width())
                        << edge << offset << screen;
    }

    void onEveryScreenThePanelIsFlushAndTheCardInSight()
    {
        QFETCH(const NotchEdge, edge);
        QFETCH(const double, offset);
        QFETCH(const QRectF, screen);
        const Layout layout(11, false, 3);
        const double limit = layout.offsetLimit(edge, Layout::along(edge, screen.size()));
        const double clamped = std::clamp(offset, -limit, limit);
        const PanelGeometry geometry = panelGeometry(layout, edge, clamped, screen);

        QCOMPARE(geometry.edge, edge);
        QVERIFY(holds(
            geometry.frame, QRectF(geometry.origin + geometry.frame.topLeft(), layout.windowSize(edge))));
        QVERIFY(holds(QRectF(QPointF(), geometry.frame.size()), geometry.body));
        QVERIFY(holds(QRectF(QPointF(), geometry.frame.size()), geometry.cardArea));
        QVERIFY(std::abs(sideOf(edge, geometry.body) - sideOf(edge, geometry.screen)) < hair);
        QVERIFY(std::abs(sideOf(edge, geometry.frame.toRectF()) - sideOf(edge, screen)) < 1);

        const QPointF ring = geometry.ringCenter + geometry.frame.topLeft();
        const double along =
            isVertical(edge) ? ring.y() - screen.center().y() : ring.x() - screen.center().x();
        QVERIFY(std::abs(along - clamped) <= 0.5 + hair);
        const double start = isVertical(edge) ? geometry.origin.y() : geometry.origin.x();
        QCOMPARE(start, std::round(start));

        // The card's area lies beside the body and stays on the screen along the edge, as far as it fits.
        QVERIFY(!geometry.cardArea.intersects(geometry.body.adjusted(hair, hair, -hair, -hair)));
        const QRectF area = geometry.cardArea;
        const double first =
            isVertical(edge) ? area.top() - geometry.screen.top() : area.left() - geometry.screen.left();
        const double room = Layout::along(edge, screen.size()) - Layout::along(edge, area.size());
        QVERIFY(room < 0 ? std::abs(first) < hair : first > -hair && first < room + hair);
    }

    void theBodyAndCardAreDrawnWithinTheirPlaces_data() { addEdgeRows(); }
    void theBodyAndCardAreDrawnWithinTheirPlaces()
    {
        QFETCH(const NotchEdge, edge);
        const QRectF rect(300, 200, 150, 130);
        const QRectF body = bodyOutline(edge, rect).boundingRect();
        QVERIFY(holds(rect, body) && holds(body, rect));

        const QRectF withTail[]{
            rect.adjusted(0, 0, 14, 0), rect.adjusted(-14, 0, 0, 0), rect.adjusted(0, -14, 0, 0),
            rect.adjusted(0, 0, 0, 14)};
        const QPointF inTail[]{{460, 250}, {290, 250}, {350, 190}, {350, 340}};
        const QPainterPath card = cardOutline(edge, rect, 14, 50);
        const QRectF bounds = card.boundingRect();
        QVERIFY(
            holds(withTail[static_cast<int>(edge)], bounds)
            && holds(bounds, withTail[static_cast<int>(edge)]));
        QVERIFY(card.contains(inTail[static_cast<int>(edge)]));
        QVERIFY(card.contains(rect.center()));
        for (const double along : {-1e6, 0.0, 1e6}) // the tail keeps clear of the corners
            QVERIFY(
                holds(rect.adjusted(-14, -14, 14, 14), cardOutline(edge, rect, 14, along).boundingRect()));
    }
};

QTEST_GUILESS_MAIN(TestPanelGeometry)
#include "tst_panel_geometry.moc"

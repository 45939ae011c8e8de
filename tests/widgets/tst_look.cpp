#include <QImage>
#include <QTest>

#include "Placement/PanelShapes.h"
#include "Widgets/CardFrame.h"

using namespace nubble;

class TestLook : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aShadowFallsBelowItsCardAndFadesOutWithoutAStepOrACut()
    {
        for (const double scale : {1.0, 1.5, 2.0}) {
            const QSize size = QSize(246, 120).grownBy(cardShadowRoom);
            const QRectF card = QRectF(QPointF(), size).marginsRemoved(cardShadowRoom);
            const CardFrame frame = CardFrame::rounded(card);
            const QImage drawn = frame.drawn(size, scale, true).toImage();
            const auto at = [&](double x, double y) {
                return qAlpha(drawn.pixel((QPointF(x, y) * scale - QPointF(0.5, 0.5)).toPoint()));
            };
            const QPointF middle = card.center();
            for (int x = 0; x < drawn.width(); ++x)
                for (const int y : {0, drawn.height() - 1})
                    QVERIFY(qAlpha(drawn.pixel(x, y)) == 0);
            for (int y = 0; y < drawn.height(); ++y)
                for (const int x : {0, drawn.width() - 1})
                    QVERIFY(qAlpha(drawn.pixel(x, y)) == 0);
            QVERIFY(at(middle.x(), card.bottom() + 8) > 1.5 * at(middle.x(), card.top() - 8));
            QVERIFY(at(card.left() - 1, middle.y()) > 36 && at(card.left() - 12, middle.y()) > 5);
            for (double y = card.bottom() + 5; y < size.height() - 1; ++y) {
                const int step = at(middle.x(), y) - at(middle.x(), y + 1);
                QVERIFY(step >= 0 && step <= 6);
            }
            QCOMPARE(at(middle.x(), middle.y()), 240); // nothing of it below the card
        }
    }

    void withoutTranslucencyNothingIsHalfTransparent()
    {
        const CardFrame frame = CardFrame::rounded({28, 20, 200, 100});
        const QImage drawn = frame.drawn({256, 156}, 1.5, false).toImage();
        for (int y = 0; y < drawn.height(); ++y)
            for (int x = 0; x < drawn.width(); ++x)
                QVERIFY(qAlpha(drawn.pixel(x, y)) == 255);
    }
};

QTEST_MAIN(TestLook)
#include "tst_look.moc"

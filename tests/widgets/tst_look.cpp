#include <QImage>
#include <QLabel>
#include <QScrollBar>
#include <QTest>

#include "Placement/PanelShapes.h"
#include "Widgets/CappedScroll.h"
#include "Widgets/CardFrame.h"
#include "Widgets/Palette.h"
#include "Widgets/Typography.h"
#include "support/Contrast.h"

using namespace nubble;

namespace {

QColor over(const QColor &below, const QColor &above)
{
    const float part = above.alphaF();
    const auto mixed = [part](float lower, float upper) { return lower * (1 - part) + upper * part; };
    return QColor::fromRgbF(
        mixed(below.redF(), above.redF()), mixed(below.greenF(), above.greenF()),
        mixed(below.blueF(), above.blueF()));
}

} // namespace

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

    void whatMattersStandsOutFromWhatItLiesOn()
    {
        for (const QColor desktop : {QColor(Qt::black), QColor(Qt::white)}) {
            const QColor card = over(desktop, Palette::card);
            const QColor hovered = over(card, Palette::hover);
            const QColor waiting = over(over(card, Palette::waitingRow), Palette::hover);
            const std::tuple<const char *, QColor, QColor, double> rows[]{
                {"ring track", Palette::body, Palette::ringTrack, 2.4},
                {"bar track", card, Palette::barTrack, 2},
                {"control on the body", Palette::body, Palette::control, 1.2},
                {"control on a card", card, Palette::control, 1.3},
                {"chosen among controls", over(card, Palette::control), over(card, Palette::chosen), 1.35},
                {"thumb", card, Palette::thumb, 2},
                {"working, hovered", hovered, Palette::bronze, 5},
                {"waiting, hovered", waiting, Palette::badge, 5},
                {"text, hovered", hovered, Palette::textSecondary, 4.5},
                {"number when little is left", Palette::body, Palette::problem, 7},
            };
            for (const auto &[name, below, above, least] : rows)
                QVERIFY2(contrast(below, over(below, above)) >= least, name);
        }
    }

    void titlesAreHeavierThanTextInEveryFamily()
    {
        for (const auto &[family, wanted, present] :
             {std::tuple("Inter", QFont::Medium, QFont::Medium),
              {"Inter", QFont::DemiBold, QFont::DemiBold},
              {"DejaVu Sans", QFont::Medium, QFont::Bold},
              {"DejaVu Sans", QFont::DemiBold, QFont::Bold},
              {"No Such Family", QFont::Medium, QFont::Medium}})
            QCOMPARE(Typography::presentWeight(QLatin1String(family), wanted), present);
    }

    void aLineIsCutOffBehindAWordAndFits()
    {
        const QFont font = Typography::rowTitle();
        const QString text = QStringLiteral("a bb ccc dddd eeeee");
        const auto widthOf = [&font](const QString &line) {
            return QFontMetricsF(font).horizontalAdvance(line);
        };
        for (double width = 20; width < widthOf(text); ++width) {
            const QString cut = Typography::elidedLine(font, text, width);
            QVERIFY2(cut.endsWith(u'…') && !cut.contains(QStringLiteral(" …")), qPrintable(cut));
            QVERIFY(widthOf(cut) <= width);
        }
        QCOMPARE(Typography::elidedLine(font, text, widthOf(text)), text);
    }

    void whatScrollsFadesIntoTheCardWhereMoreOfItIsHidden()
    {
        QPixmap white(60, 300);
        white.fill(Qt::white);
        auto *content = new QLabel;
        content->setPixmap(white);
        QWidget card;
        CappedScroll scroll(content, 100, &card);
        scroll.setAttribute(Qt::WA_TranslucentBackground);
        scroll.resize(scroll.sizeHint());
        card.show();
        const auto at = [&scroll](int y) {
            QImage picture(scroll.size(), QImage::Format_ARGB32_Premultiplied);
            picture.fill(Palette::card);
            scroll.render(&picture, {}, {}, QWidget::DrawChildren);
            return picture.pixelColor(20, y);
        };
        const int end = scroll.verticalScrollBar()->maximum();
        QVERIFY(end > 100);
        for (const int value : {0, end / 2, end}) {
            scroll.verticalScrollBar()->setValue(value);
            const auto isFaded = [&](int y) { return at(y).red() < 60 && std::abs(at(y).alpha() - 240) < 6; };
            QCOMPARE(isFaded(0), value > 0);
            QCOMPARE(isFaded(scroll.height() - 1), value < end);
            for (const int y : {16, 50, scroll.height() - 17})
                QCOMPARE(at(y), QColor(Qt::white));
            QVERIFY(scroll.childAt(20, 2) == content); // and takes no clicks
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

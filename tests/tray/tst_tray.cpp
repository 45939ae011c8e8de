#include <QImage>
#include <QPainter>
#include <QTest>

#include "Tray/Mark.h"
#include "support/Contrast.h"

using namespace Qt::StringLiterals;
using namespace nubble;

namespace {

// The colour at a point of the unit square whose origin is its lower left corner.
QColor at(const QImage &image, const QPointF &point)
{
    const QPointF pixel = QPointF(point.x(), 1 - point.y()) * image.width();
    return image.pixelColor(static_cast<int>(pixel.x()), static_cast<int>(pixel.y()));
}

} // namespace

class TestTray : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theMarkIsOneColourWithHolesForItsEyesAtEverySize()
    {
        for (const int size : {16, 22, 24, 32, 48, 128}) {
            const QImage image = Mark::icon(Qt::black, false).pixmap(QSize(size, size), 1.0).toImage();
            QCOMPARE(image.size(), QSize(size, size));
            for (const QPointF &body : {QPointF(0.5, 0.7), QPointF(0.3, 0.2)}) // where circles overlap, too
                QCOMPARE(at(image, body), QColor(0, 0, 0, 115));
            for (const QPointF &eyeOrCorner : {QPointF(0.4, 0.56), {0.68, 0.4}, {0.02, 0.98}, {0.95, 0.05}})
                QCOMPARE(at(image, eyeOrCorner).alpha(), 0);
        }
    }

    void withoutAColourItStandsOutFromLightAndDarkGround()
    {
        const QStringList grounds{u"#ffffff"_s, u"#f0f0f0"_s, u"#2e3436"_s, u"#000000"_s};
        for (const bool isVisible : {true, false}) {
            const QIcon icon = Mark::icon(std::nullopt, isVisible);
            for (const QString &ground : grounds) {
                for (const int size : {16, 22, 24, 32}) {
                    QImage image(size, size, QImage::Format_RGB32);
                    image.fill(QColor(ground));
                    QPainter(&image).drawPixmap(0, 0, icon.pixmap(QSize(size, size), 1.0));
                    int seen = 0;
                    for (int i = 0; i < size * size; ++i)
                        seen += contrast(image.pixelColor(i % size, i / size), QColor(ground)) >= 3;
                    QVERIFY2(seen > size * size / 8, qPrintable(ground));
                }
            }
        }
    }
};

QTEST_MAIN(TestTray)
#include "tst_tray.moc"

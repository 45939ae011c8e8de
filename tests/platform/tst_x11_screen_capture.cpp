#include <QApplication>
#include <QImage>

#include "Platform/X11/X11ScreenCapture.h"
#include "platform/ForeignApplication.h"

using namespace Qt::StringLiterals;
using namespace nubble;

class TestX11ScreenCapture : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void thePictureIsWhatTheScreenShowsPixelByPixel()
    {
        X11ScreenCapture capture(X11Connection::ofThisProgram());
        QVERIFY(capture.canCapture());
        ForeignApplication others;
        others.open({100, 50, 300, 200}, Qt::red);
        others.open({200, 100, 50, 50}, QColor(1, 2, 254), ForeignApplication::Unmanaged);
        for (const QPoint &pointer : {QPoint(0, 0), QPoint(1279, 799), QPoint(225, 125)}) {
            userPointsAt(pointer);
            const QImage picture = capture.grab();
            QCOMPARE(picture.size(), QSize(1280, 800));
            QCOMPARE(picture.pixelColor(101, 51), QColor(Qt::red));
            QCOMPARE(picture.pixelColor(398, 248), QColor(Qt::red));
            QCOMPARE(picture.pixelColor(225, 125), QColor(1, 2, 254));
            QVERIFY(picture.pixelColor(402, 252) != QColor(Qt::red));
        }
    }

    void itIsTheDisplayUnderThePointer()
    {
        X11ScreenCapture capture(X11Connection::ofThisProgram());
        ForeignApplication others;
        others.open({690, 10, 50, 50}, Qt::red, ForeignApplication::Unmanaged);
        const auto place = [](const QString &name, const QString &where, const QString &output) {
            QProcess::execute(u"xrandr"_s, {u"--setmonitor"_s, name, where, output});
        };
        place(u"left"_s, u"640/170x800/210+0+0"_s, u"screen"_s);
        place(u"right"_s, u"640/170x500/130+640+0"_s, u"none"_s);
        QTRY_COMPARE(QGuiApplication::screens().size(), 2);
        for (const auto &[pointer, size, hasWindow] :
             {std::tuple(QPoint(640, 0), QSize(640, 500), true),
              {QPoint(639, 799), QSize(640, 800), false},
              {QPoint(1279, 799), QSize(640, 800), false}}) { // the last lies on none of them
            userPointsAt(pointer);
            const QImage picture = capture.grab();
            QCOMPARE(picture.size(), size);
            QCOMPARE(picture.pixelColor(60, 20) == QColor(Qt::red), hasWindow);
        }
    }
};

QTEST_MAIN(TestX11ScreenCapture)
#include "tst_x11_screen_capture.moc"

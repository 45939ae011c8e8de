#include <QBuffer>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include "preview/PictureComparison.h"

using namespace Qt::StringLiterals;
using namespace nubble;

namespace {

const QDir stored(QStringLiteral(NUBBLE_STORED_PICTURES));

// Whatever the surroundings, which `changed` are laid over.
QString draw(const QString &folder, const QMap<QString, QString> &changed = {})
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (auto each = changed.begin(); each != changed.end(); ++each)
        environment.insert(each.key(), each.value());
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral(NUBBLE_PROGRAM), {u"--render-quenwick"_s, folder});
    const bool ended = process.waitForFinished(100'000);
    const QString output = QString::fromLocal8Bit(process.readAll());
    return ended && process.exitCode() == 0 ? QString() : u"failed: "_s + output;
}

QByteArray bytesOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList pictures(const QDir &folder)
{
    return folder.entryList({u"*.png"_s}, QDir::Files, QDir::Name);
}

// Those that are stored: each at scale 1.
QStringList storedOnes(const QStringList &names)
{
    return names.filter(QRegularExpression(u"^(?!cards)[^@]*$"_s));
}

QImage storedPicture(const QString &name)
{
    return QImage(stored.filePath(name));
}

} // namespace

class PreviewTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_drawn.setPath(m_temporary.filePath(u"drawn"_s));
        QCOMPARE(draw(m_drawn.path()), QString());
    }

    void isTheSameWhateverTheSurroundings()
    {
        const QDir again(m_temporary.filePath(u"again"_s));
        const QString nowhere = m_temporary.filePath(u"nowhere"_s);
        const QString problem = draw(
            again.path(),
            {{u"HOME"_s, nowhere},
             {u"XDG_CONFIG_HOME"_s, nowhere},
             {u"LC_ALL"_s, u"ar_EG.UTF-8"_s},
             {u"TZ"_s, u"Asia/Tokyo"_s},
             {u"QT_SCALE_FACTOR"_s, u"3"_s},
             {u"QT_QPA_PLATFORM"_s, u"xcb"_s},
             {u"FONTCONFIG_FILE"_s, nowhere},
             {u"DBUS_SESSION_BUS_ADDRESS"_s, u"unix:path=/nowhere"_s}});
        QCOMPARE(problem, QString());
        QCOMPARE(pictures(again), pictures(m_drawn));
        for (const QString &name : pictures(again))
            QVERIFY2(bytesOf(again.filePath(name)) == bytesOf(m_drawn.filePath(name)), qPrintable(name));
        QVERIFY(!QFile::exists(nowhere));
    }

    void saysWhatItCannotDo()
    {
        QVERIFY(draw(u"/proc/self/cards"_s).contains("cannot make the folder /proc/self/cards"_L1));
    }

    void looksAsStored_data()
    {
        QTest::addColumn<QString>("name");
        QStringList names = storedOnes(pictures(m_drawn)) + pictures(stored);
        names.removeDuplicates();
        QVERIFY(names.size() > 30);
        for (const QString &name : std::as_const(names))
            QTest::newRow(qPrintable(name)) << name;
    }

    void looksAsStored()
    {
        QFETCH(const QString, name);
        const QImage before = storedPicture(name);
        const QImage now(m_drawn.filePath(name));
        const QImage twice(m_drawn.filePath(QString(name).replace(u".png"_s, u"@2x.png"_s)));
        QCOMPARE(twice.size(), now.size() * 2);
        const PictureComparison comparison(before, now);
        if (!now.isNull() && before.text(u"Fonts"_s) != now.text(u"Fonts"_s) && !before.isNull())
            QSKIP("the stored picture was drawn with other releases of the fonts");
        if (comparison.isSame())
            return;
        QDir().mkpath(QStringLiteral(NUBBLE_DIFFERENCES));
        const QString difference = QStringLiteral(NUBBLE_DIFFERENCES "/") + name;
        comparison.shown().save(difference);
        QFAIL(qPrintable(
            name + u" is not as stored (see "_s + difference
            + u"). When it is right as it is now: ./test --accept-pictures"));
    }

    void noticesWhatThePersonWouldNotice()
    {
        const QImage now(m_drawn.filePath(u"usage-ample.png"_s));
        QVERIFY(!now.isNull());
        const auto check = [&now](const char *what, bool isNoticed, const auto &change) {
            QImage changed = now;
            QPainter painter(&changed);
            change(painter, now);
            painter.end();
            QVERIFY2(PictureComparison(now, changed).isSame() != isNoticed, what);
        };
        check("nothing", false, [](QPainter &, const QImage &) {});
        check("a shade all over", false, [](QPainter &painter, const QImage &image) {
            painter.fillRect(image.rect(), QColor(255, 255, 255, 2));
        });
        check("a single pixel", false, [](QPainter &painter, const QImage &) {
            painter.fillRect(60, 60, 1, 1, QColor(80, 80, 80));
        });
        check("all of it two pixels lower", true, [](QPainter &painter, const QImage &image) {
            painter.drawImage(0, 2, image);
        });
        check("a line of text one pixel to the right", true, [](QPainter &painter, const QImage &image) {
            painter.drawImage(41, 40, image, 40, 40, 120, 14);
        });
        check("a thin faint line two pixels lower", true, [](QPainter &painter, const QImage &) {
            painter.fillRect(60, 100, 100, 1, QColor(255, 255, 255, 20));
            painter.fillRect(60, 102, 100, 1, QColor(19, 19, 21));
        });
        check("a dot", true, [](QPainter &painter, const QImage &) {
            painter.fillRect(60, 60, 3, 3, QColor(200, 60, 60));
        });
        check("a green that is somewhat bluer", true, [](QPainter &painter, const QImage &image) {
            for (int y = 0; y < image.height(); ++y)
                for (int x = 0; x < image.width(); ++x)
                    if (qGreen(image.pixel(x, y)) > 200 && qRed(image.pixel(x, y)) < 40)
                        painter.fillRect(x, y, 1, 1, QColor(0, 255, 160));
        });
    }

private:
    QTemporaryDir m_temporary;
    QDir m_drawn;
};

QTEST_MAIN(PreviewTest)
#include "tst_preview.moc"

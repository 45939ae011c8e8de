#include <QTest>

#include "Shell/Defaults.h"
#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;
using namespace nubble;

namespace {

QString shown(const std::optional<bool> &value)
{
    return value ? (*value ? u"true"_s : u"false"_s) : u"none"_s;
}

QString shown(const std::optional<double> &value)
{
    return value ? QString::number(*value) : u"none"_s;
}

} // namespace

class TestDefaults : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void valuesEditedByHandCountOnlyWhenTheyAreOfTheRightKind_data()
    {
        QTest::addColumn<QByteArray>("written");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("number");
        QTest::addColumn<QString>("boolean");
        const auto row = [](const char *written, const char16_t *text, const char16_t *number,
                            const char16_t *boolean) {
            QTest::newRow(*written ? written : "empty")
                << QByteArray(written) << QString::fromUtf16(text) << QString::fromUtf16(number)
                << QString::fromUtf16(boolean);
        };
        row("true", u"true", u"none", u"true");
        row("false", u"false", u"none", u"false");
        row("True", u"True", u"none", u"none");
        row("yes", u"yes", u"none", u"none");
        row("1", u"1", u"1", u"none");
        row("0", u"0", u"0", u"none");
        row("-12.5", u"-12.5", u"-12.5", u"none");
        row("1e300", u"1e300", u"1e+300", u"none");
        row("1e999", u"1e999", u"none", u"none");
        row("nan", u"nan", u"none", u"none");
        row("-inf", u"-inf", u"none", u"none");
        row("12px", u"12px", u"none", u"none");
        row("12, 5", u"none", u"none", u"none");
        row("", u"", u"none", u"none");
        row("\"quoted, text\"", u"quoted, text", u"none", u"none");
        row("@ByteArray(true)", u"none", u"none", u"none");
        row("@Point(1 2)", u"none", u"none", u"none");
        row("@Variant(\\0\\0)", u"none", u"none", u"none");
    }

    void valuesEditedByHandCountOnlyWhenTheyAreOfTheRightKind()
    {
        QFETCH(const QByteArray, written);
        QFETCH(const QString, text);
        QFETCH(const QString, number);
        QFETCH(const QString, boolean);
        const TemporaryHome home;
        const Defaults defaults(home.write(u"preferences.conf"_s, "[General]\na.key=" + written + '\n'));
        QVERIFY(defaults.contains(u"a.key"_s));
        QCOMPARE(defaults.string(u"a.key"_s).value_or(u"none"_s), text);
        QCOMPARE(shown(defaults.number(u"a.key"_s)), number);
        QCOMPARE(shown(defaults.boolean(u"a.key"_s)), boolean);
    }

    void whatIsSetIsReadBackAlikeInThisRunAndTheNext()
    {
        const TemporaryHome home;
        const QString file = Defaults::fileOf(u"com.example.test"_s, home.path(u"new/folder"_s));
        {
            Defaults defaults(file);
            defaults.set(u"some.flag"_s, true);
            defaults.set(u"some.length"_s, 1000.0 / 119.0);
            defaults.set(u"some.text"_s, u"a, b = \"ü\"\n~"_s);
            expectWhatWasSet(defaults);
            defaults.synchronize();
            QVERIFY(QFile::exists(home.path(u"new/folder/com.example.test.conf"_s)));
        }
        expectWhatWasSet(Defaults(file));
    }

    void aFileThatIsNoneIsAsGoodAsEmpty()
    {
        const TemporaryHome home;
        QVERIFY(!Defaults(home.path(u"absent.conf"_s)).contains(u"a"_s));
        const Defaults garbage(home.write(u"garbage.conf"_s, QByteArray("\0\xff[[[=\n==\n%%%zz=\x80", 18)));
        QCOMPARE(shown(garbage.boolean(u"a"_s)), u"none"_s);
        QDir().mkpath(home.path(u"folder.conf"_s));
        Defaults folder(home.path(u"folder.conf"_s));
        folder.set(u"a"_s, true);
        folder.synchronize();
        QCOMPARE(shown(folder.boolean(u"a"_s)), u"true"_s);
    }

private:
    static void expectWhatWasSet(const Defaults &defaults)
    {
        QCOMPARE(defaults.boolean(u"some.flag"_s), true);
        QCOMPARE(defaults.number(u"some.length"_s), 1000.0 / 119.0);
        QCOMPARE(defaults.string(u"some.text"_s), u"a, b = \"ü\"\n~"_s);
    }
};

QTEST_GUILESS_MAIN(TestDefaults)
#include "tst_defaults.moc"

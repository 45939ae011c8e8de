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
    void valuesEditedByHandCountOnlyWhenTheyAreOfTheRightKind()
    {
        using Row = std::array<const char *, 4>; // as text, as a number, as a flag
        for (const auto &[written, text, number, boolean] : {
                 Row{"true", "true", "none", "true"},
                 Row{"false", "false", "none", "false"},
                 Row{"1", "1", "1", "none"},
                 Row{"-12.5", "-12.5", "-12.5", "none"},
                 Row{"1e999", "1e999", "none", "none"},
                 Row{"-inf", "-inf", "none", "none"},
                 Row{"12px", "12px", "none", "none"},
                 Row{"12, 5", "none", "none", "none"},
                 Row{"", "", "none", "none"},
                 Row{"\"quoted, text\"", "quoted, text", "none", "none"},
             }) {
            const TemporaryHome home;
            const Defaults defaults(
                home.write(u"preferences.conf"_s, QByteArray("[General]\na.key=") + written + '\n'));
            QVERIFY(defaults.contains(u"a.key"_s));
            QCOMPARE(defaults.string(u"a.key"_s).value_or(u"none"_s), QString::fromUtf8(text));
            QCOMPARE(shown(defaults.number(u"a.key"_s)), QString::fromUtf8(number));
            QCOMPARE(shown(defaults.boolean(u"a.key"_s)), QString::fromUtf8(boolean));
        }
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

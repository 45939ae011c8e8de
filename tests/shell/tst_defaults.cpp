#include <QTest>

#include "Shell/Defaults.h"
#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;
using namespace nubble;

namespace {

template <typename T> QString shown(const std::optional<T> &value)
{
    return value ? QVariant(*value).toString() : u"none"_s;
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
        const QString text = u"a, b = \"ü\"\n~"_s;
        Defaults first(file);
        first.set(u"some.flag"_s, true);
        first.set(u"some.length"_s, 1000.0 / 119.0);
        first.set(u"some.text"_s, text);
        first.synchronize();
        QVERIFY(QFile::exists(home.path(u"new/folder/com.example.test.conf"_s)));
        const Defaults next(file);
        for (const Defaults *defaults : {&std::as_const(first), &next}) {
            QCOMPARE(defaults->boolean(u"some.flag"_s), true);
            QCOMPARE(defaults->number(u"some.length"_s), 1000.0 / 119.0);
            QCOMPARE(defaults->string(u"some.text"_s), text);
        }
    }
};

QTEST_GUILESS_MAIN(TestDefaults)
#include "tst_defaults.moc"

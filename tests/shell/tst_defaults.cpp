#include <QTest>

#include "Shell/Defaults.h"
#include "Shell/Migration.h"
#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;
using namespace nubble;

class TestDefaults : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_home.emplace(); }

    void valuesEditedByHandCountOnlyWhenTheyAreOfTheRightKind()
    {
        using Row = std::array<const char *, 4>; // as text, as a number, as a flag
        for (const auto &[written, text, number, boolean] :
             {Row{"true", "true", "none", "true"}, Row{"false", "false", "none", "false"},
              Row{"1", "1", "1", "none"}, Row{"-12.5", "-12.5", "-12.5", "none"},
              Row{"1e999", "1e999", "none", "none"}, Row{"-inf", "-inf", "none", "none"},
              Row{"12px", "12px", "none", "none"}, Row{"12, 5", "none", "none", "none"},
              Row{"", "", "none", "none"}, Row{"\"quoted, text\"", "quoted, text", "none", "none"}}) {
            const Defaults defaults(m_home->write(u"a.conf"_s, QByteArray("[General]\na.key=") + written));
            const auto shown = [](const auto &value) {
                return value ? QVariant(*value).toString().toUtf8() : "none";
            };
            QVERIFY(defaults.contains(u"a.key"_s));
            QCOMPARE(shown(defaults.string(u"a.key"_s)), text);
            QCOMPARE(shown(defaults.number(u"a.key"_s)), number);
            QCOMPARE(shown(defaults.boolean(u"a.key"_s)), boolean);
            init();
        }
    }

    void whatIsSetIsReadBackAlikeInThisRunAndTheNext()
    {
        const QString file = Defaults::fileOf(u"com.example.test"_s, m_home->path(u"new/folder"_s));
        const QString text = u"a, b = \"ü\"\n~"_s;
        Defaults first(file);
        first.set(u"some.flag"_s, true);
        first.set(u"some.length"_s, 1000.0 / 119.0);
        first.set(u"some.text"_s, text);
        first.synchronize();
        QVERIFY(QFile::exists(m_home->path(u"new/folder/com.example.test.conf"_s)));
        const Defaults next(file);
        for (const Defaults *defaults : {&std::as_const(first), &next}) {
            QCOMPARE(defaults->boolean(u"some.flag"_s), true);
            QCOMPARE(defaults->number(u"some.length"_s), 1000.0 / 119.0);
            QCOMPARE(defaults->string(u"some.text"_s), text);
        }
    }

    void withoutAnOldPlacementNothingIsMigratedUntilThereIsOne()
    {
        QCOMPARE(afterMigration(), QString());
        const auto migrated = u"migrated.brindleCove=true placement.edge=top placement.offset=12.5"_s;
        old("placement.offset=12.5\nplacement.locked=true\n");
        QCOMPARE(afterMigration(), QString());
        old("placement.edge=top\nplacement.offset=12.5\n");
        QCOMPARE(afterMigration(), migrated);
        old("placement.edge=bottom\nplacement.offset=99\n"); // and only once
        QCOMPARE(afterMigration(), migrated);
    }

    void whatTheUserHasSetMeanwhileStaysButAddonsThatCanWorkAreSwitchedOn()
    {
        old("placement.edge=sideways\nplacement.offset=abc\nplacement.locked=true\nplacement.visible=false\n"
            "meetingNotes.link=\"https://docs.example/d/1?a=1,2&b=c\"\nmeetingNotes.script=/old.mjs\n");
        QDir().mkpath(m_home->path(u".config/Quenwick"_s));
        Defaults(file()).set(u"addon.quenwick"_s, false);
        Defaults(file()).set(u"placement.visible"_s, true);
        QCOMPARE(
            afterMigration(),
            u"addon.quenwick=true meetingNotes.link=https://docs.example/d/1?a=1,2&b=c "
            "migrated.brindleCove=true placement.edge=sideways placement.locked=true placement.offset=abc "
            "placement.visible=true"_s);
    }

private:
    QString file() const { return m_home->path(u".config/com.brevandel.nubble.conf"_s); }
    void old(const QByteArray &lines) const
    {
        m_home->write(u".config/com.brindlecove.app.conf"_s, "[General]\n" + lines);
    }
    // What the new preferences hold then, but for add-ons whose tools this machine may have.
    QString afterMigration() const
    {
        Defaults defaults(file());
        Migration::fromBrindleCove(defaults, m_home->home());
        defaults.synchronize();
        const QSettings settings(file(), QSettings::IniFormat);
        QStringList lines;
        for (const QString &key : settings.allKeys())
            if (!key.startsWith(u"addon."_s) || key == u"addon.quenwick")
                lines.append(key + u'=' + settings.value(key).toString());
        return lines.join(u' ');
    }

    std::optional<TemporaryHome> m_home;
};

QTEST_GUILESS_MAIN(TestDefaults)
#include "tst_defaults.moc"

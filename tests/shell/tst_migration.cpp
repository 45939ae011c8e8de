#include <QTest>

#include "Shell/Defaults.h"
#include "Shell/Migration.h"
#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;
using namespace nubble;

class TestMigration : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_home.emplace(); }

    void withoutAnOldPlacementNothingHappensUntilThereIsOne()
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
    [[nodiscard]] QString file() const
    {
        return Defaults::fileOf(u"com.brevandel.nubble"_s, m_home->home().configFolder());
    }

    void old(const QByteArray &lines) const
    {
        m_home->write(u".config/com.brindlecove.app.conf"_s, "[General]\n" + lines);
    }

    // What the new preferences hold then, but for add-ons whose tools this machine may have.
    [[nodiscard]] QString afterMigration() const
    {
        {
            Defaults defaults(file());
            Migration::fromBrindleCove(defaults, m_home->home());
        }
        const QSettings settings(file(), QSettings::IniFormat);
        QStringList lines;
        for (const QString &key : settings.allKeys())
            if (!key.startsWith(u"addon."_s) || key == u"addon.quenwick")
                lines.append(key + u'=' + settings.value(key).toString());
        return lines.join(u' ');
    }

    std::optional<TemporaryHome> m_home;
};

QTEST_GUILESS_MAIN(TestMigration)
#include "tst_migration.moc"

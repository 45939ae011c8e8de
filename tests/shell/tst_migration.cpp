#include <QTest>

#include "Shell/Defaults.h"
#include "Shell/Migration.h"
#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;
using namespace nubble;

class TestMigration : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qputenv("PATH", ""); }
    void init() { m_home.emplace(); }

    void withoutAnOldPlacementNothingHappensUntilThereIsOne()
    {
        QCOMPARE(afterMigration(), QString());
        old("placement.offset=12.5\nplacement.locked=true\n");
        m_home->writeScript(u".local/bin/claude"_s, "#!/bin/sh\n");
        QCOMPARE(afterMigration(), QString());
        old("placement.edge=top\nplacement.offset=12.5\n");
        QCOMPARE(
            afterMigration(),
            u"addon.ask=true migrated.brindleCove=true placement.edge=top placement.offset=12.5"_s);
        old("placement.edge=bottom\nplacement.offset=99\n"); // and only once
        QCOMPARE(
            afterMigration(),
            u"addon.ask=true migrated.brindleCove=true placement.edge=top placement.offset=12.5"_s);
    }

    void everyOldKeyIsCopiedAsItStandsAndNoOther()
    {
        old("placement.edge=sideways\nplacement.offset=abc\nplacement.locked=true\nplacement.visible=false\n"
            "meetingNotes.link=\"https://docs.example/d/1?a=1,2&b=c\"\nmeetingNotes.script=/"
            "old.mjs\naddon.ask=true\n");
        QCOMPARE(
            afterMigration(),
            u"meetingNotes.link=https://docs.example/d/1?a=1,2&b=c migrated.brindleCove=true "
            "placement.edge=sideways placement.locked=true placement.offset=abc placement.visible=false"_s);
    }

    void whatTheUserHasSetMeanwhileStays()
    {
        old("placement.edge=top\nplacement.offset=12.5\nplacement.visible=false\n");
        {
            Defaults defaults(file());
            defaults.set(u"placement.edge"_s, u"left"_s);
            defaults.set(u"placement.visible"_s, true);
        }
        QCOMPARE(
            afterMigration(),
            u"migrated.brindleCove=true placement.edge=left placement.offset=12.5 placement.visible=true"_s);
    }

    void addonsThatCanWorkAreSwitchedOnEvenIfTheyWereOff()
    {
        old("placement.edge=top\n");
        for (const auto &tool : {u"claude"_s, u"node"_s, u"yarnbin"_s}) // but no recorder script
            m_home->writeScript(u".local/bin/"_s + tool, "#!/bin/sh\n");
        QDir().mkpath(m_home->path(u".config/Quenwick"_s));
        Defaults(file()).set(u"addon.search"_s, false);
        QCOMPARE(
            afterMigration(),
            u"addon.ask=true addon.quenwick=true addon.search=true migrated.brindleCove=true placement.edge=top"_s);
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

    // What the new preferences hold then, but for add-ons whose tools this machine has for all users.
    [[nodiscard]] QString afterMigration() const
    {
        {
            Defaults defaults(file());
            Migration::fromBrindleCove(defaults, m_home->home());
        }
        const QSettings settings(file(), QSettings::IniFormat);
        QStringList lines;
        for (const QString &key : settings.allKeys())
            if (!key.startsWith(u"addon."_s) || isOfThisTest(key))
                lines.append(key + u'=' + settings.value(key).toString());
        return lines.join(u' ');
    }

    [[nodiscard]] bool isOfThisTest(const QString &addonKey) const
    {
        const QHash<QString, QString> needs{
            {u"addon.ask"_s, u".local/bin/claude"_s}, {u"addon.search"_s, u".local/bin/yarnbin"_s}};
        return !needs.contains(addonKey) || QFile::exists(m_home->path(needs.value(addonKey)));
    }

    std::optional<TemporaryHome> m_home;
};

QTEST_GUILESS_MAIN(TestMigration)
#include "tst_migration.moc"

#include <QTest>

#include "Shell/Addon.h"
#include "Shell/Defaults.h"
#include "Shell/Tools.h"
#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;
using namespace nubble;

class TestAddons : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qputenv("PATH", ""); }

    void theyAreListedAndStoredUnderTheirNames()
    {
        QStringList names;
        for (const Addon addon : allAddons) {
            names.append(defaultsKey(addon));
            QCOMPARE(addonFrom(rawValue(addon)), addon);
        }
        QCOMPARE(
            names, QStringList({u"addon.quenwick"_s, u"addon.ask"_s, u"addon.search"_s, u"addon.notes"_s}));
        QCOMPARE(addonFrom(u"Ask"_s), std::nullopt);
        QCOMPARE(addonFrom(QString()), std::nullopt);
    }

    void theActiveOnesAreFrozenWhenTheProgramStarts()
    {
        const TemporaryHome home;
        Defaults defaults(home.path(u"preferences.conf"_s));
        const ActiveAddons none(defaults);
        QVERIFY(none.actions().isEmpty());
        for (const Addon addon : allAddons)
            QVERIFY(!none.contains(addon));

        defaults.set(u"addon.notes"_s, true);
        defaults.set(u"addon.quenwick"_s, true);
        defaults.set(u"addon.search"_s, false);
        const ActiveAddons some(defaults);
        defaults.set(u"addon.ask"_s, true);
        defaults.set(u"addon.notes"_s, false);
        QVERIFY(none.actions().isEmpty());
        QCOMPARE(some.actions(), QList<Addon>{Addon::Notes});
        QVERIFY(some.contains(Addon::Quenwick));
        QVERIFY(!some.contains(Addon::Ask));
    }

    void actionsKeepTheirOrderAndLeaveTheCompanionOut()
    {
        const TemporaryHome home;
        Defaults defaults(home.path(u"preferences.conf"_s));
        for (const Addon addon : allAddons)
            defaults.set(defaultsKey(addon), true);
        QCOMPARE(ActiveAddons(defaults).actions(), (QList{Addon::Ask, Addon::Search, Addon::Notes}));
    }

    void eachSaysWhatItLacksAndNothingOnceItIsThere()
    {
        const TemporaryHome folder;
        const Home home = folder.home();
        const Defaults defaults(folder.path(u"preferences.conf"_s));
        const auto lacks = [&](Addon addon) { return missing(addon, home, defaults).value_or(QString()); };

        QCOMPARE(lacks(Addon::Quenwick), u"Needs the Quenwick app, opened at least once."_s);
        folder.write(u".config/Quenwick/review.db"_s, "");
        QCOMPARE(lacks(Addon::Quenwick), QString());

        const std::array tools{
            std::tuple{Addon::Ask, u"claude"_s, u"Needs Claude Code (the `claude` command)."_s},
            std::tuple{Addon::Search, u"yarnbin"_s, u"Needs yarnbin (the `yarnbin` command)."_s},
            std::tuple{Addon::Notes, u"node"_s, u"Needs Node.js."_s},
        };
        const QString script = folder.path(u".quib-live/quib-live.mjs"_s);
        for (const auto &[addon, tool, sentence] : tools) {
            if (!Tools::find(tool, home)) // a developer's machine may have it in a folder for all users
                QCOMPARE(lacks(addon), sentence);
            folder.writeScript(u".local/bin/"_s + tool, "#!/bin/sh\n");
            QCOMPARE(
                lacks(addon),
                addon == Addon::Notes ? u"Needs the recorder script at "_s + script + u'.' : QString());
        }
        folder.write(u".quib-live/quib-live.mjs"_s, "");
        QCOMPARE(lacks(Addon::Notes), QString());
    }

    void theRecorderScriptCanBeSetByHand_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QString>("script");
        QTest::newRow("absent") << QByteArray() << u"HOME/.quib-live/quib-live.mjs"_s;
        QTest::newRow("empty") << QByteArray("meetingNotes.script=") << u"HOME/.quib-live/quib-live.mjs"_s;
        QTest::newRow("a list") << QByteArray("meetingNotes.script=a, b")
                                << u"HOME/.quib-live/quib-live.mjs"_s;
        QTest::newRow("below home") << QByteArray("meetingNotes.script=~/a b.mjs") << u"HOME/a b.mjs"_s;
        QTest::newRow("another's home") << QByteArray("meetingNotes.script=~ann/a.mjs") << u"~ann/a.mjs"_s;
        QTest::newRow("absolute") << QByteArray("meetingNotes.script=/a/b.mjs") << u"/a/b.mjs"_s;
    }

    void theRecorderScriptCanBeSetByHand()
    {
        QFETCH(const QByteArray, line);
        QFETCH(QString, script);
        const TemporaryHome folder;
        const Defaults defaults(folder.write(u"preferences.conf"_s, "[General]\n" + line + '\n'));
        QCOMPARE(recorderScript(folder.home(), defaults), script.replace(u"HOME"_s, folder.home().path()));
    }
};

QTEST_GUILESS_MAIN(TestAddons)
#include "tst_addons.moc"

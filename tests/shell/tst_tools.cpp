#include <QTest>

#include "Shell/Addon.h"
#include "Shell/Defaults.h"
#include "Shell/Tools.h"
#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;
using namespace nubble;

class TestTools : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // Each row puts tools into folders of a home ("-" before a folder: not executable, "/" behind it: a
    // folder of that name) and says from which of them, in a PATH of such folders, it is taken.
    void theFirstExecutableFileIsFound()
    {
        for (const auto &[tools, path, found] :
             {std::tuple(u"c"_s, u"a:b"_s, u""_s),
              {u".local/bin .claude/local a"_s, u"a"_s, u".local/bin"_s},
              {u".claude/local a"_s, u"a"_s, u".claude/local"_s},
              {u"a b c"_s, u"c:a:b"_s, u"c"_s},
              {u"b"_s, u"::b:"_s, u"b"_s},
              {u"-.local/bin -a b"_s, u"a:b"_s, u"b"_s},
              {u"a/ b"_s, u"a:b"_s, u"b"_s}}) {
            const TemporaryHome home;
            for (const QString &each : tools.split(u' ')) {
                const QString tool = each.sliced(each.startsWith(u'-')) + u"/nubble-test-tool";
                if (each.endsWith(u'/'))
                    QDir().mkpath(home.path(tool));
                else if (each.startsWith(u'-'))
                    home.write(tool, "#!/bin/sh\n");
                else
                    home.writeScript(tool, "#!/bin/sh\n");
            }
            QStringList folders;
            for (const QString &folder : path.split(u':'))
                folders.append(folder.isEmpty() ? folder : home.path(folder));
            QCOMPARE(
                Tools::find(u"nubble-test-tool"_s, home.home(), folders.join(u':')).value_or(QString()),
                found.isEmpty() ? QString() : home.path(found + u"/nubble-test-tool"));
        }
    }

    void childProcessesGetAPathOfFixedFoldersAndTheInheritedOnes()
    {
        const Home home(u"/home/ann"_s);
        const QString fixed =
            u"/home/ann/.local/bin:/opt/homebrew/bin:/usr/local/bin:/usr/bin:/bin:/usr/sbin:/sbin:"_s;
        QCOMPARE(Tools::searchPath(home, u"/a:/b"_s), fixed + u"/a:/b"_s);
        QCOMPARE(Tools::searchPath(home, std::nullopt), fixed);
    }

    void theRecorderScriptCanBeSetByHand()
    {
        const TemporaryHome folder;
        const QString home = folder.home().path();
        for (const auto &[line, script] :
             {std::pair(QByteArray(), QString(home + u"/.quib-live/quib-live.mjs")),
              {"meetingNotes.script=", home + u"/.quib-live/quib-live.mjs"},
              {"meetingNotes.script=~/a b.mjs", home + u"/a b.mjs"},
              {"meetingNotes.script=~ann/a.mjs", u"~ann/a.mjs"_s},
              {"meetingNotes.script=/a/b.mjs", u"/a/b.mjs"_s}}) {
            const Defaults defaults(folder.write(u"preferences.conf"_s, "[General]\n" + line + '\n'));
            QCOMPARE(recorderScript(folder.home(), defaults), script);
        }
    }

    void anAddonSaysWhatItLacksAndOfItsKeys()
    {
        const TemporaryHome folder;
        const Home home = folder.home();
        const Defaults defaults(folder.path(u"preferences.conf"_s));
        const auto lack = [&](Addon addon) { return missing(addon, home, defaults).value_or(QString()); };
        const QString script = home.file(u".quib-live/quib-live.mjs"_s);
        for (const auto &[addon, tool, sentence, then] :
             {std::tuple(Addon::Ask, u"claude"_s, u"Needs Claude Code (the `claude` command)."_s, QString()),
              {Addon::Search, u"yarnbin"_s, u"Needs yarnbin (the `yarnbin` command)."_s, QString()},
              {Addon::Notes, u"node"_s, u"Needs Node.js."_s,
               QString(u"Needs the recorder script at "_s + script + u'.')}}) {
            QCOMPARE(lack(addon), Tools::find(tool, home) ? then : sentence); // this machine may have it
            folder.writeScript(u".local/bin/"_s + tool, "#!/bin/sh\n");
            QCOMPARE(lack(addon), then);
        }
        QVERIFY(description(Addon::Ask).startsWith(u"Ctrl+Alt+A "));
        QVERIFY(description(Addon::Search).startsWith(u"Ctrl+Alt+Space "));
        folder.write(u".quib-live/quib-live.mjs"_s, {});
        QCOMPARE(lack(Addon::Notes), QString());
        QCOMPARE(lack(Addon::Quenwick), u"Needs the Quenwick app, opened at least once."_s);
        QVERIFY(QDir().mkpath(quenwickFolder(home)));
        QCOMPARE(lack(Addon::Quenwick), QString());
    }
};

QTEST_GUILESS_MAIN(TestTools)
#include "tst_tools.moc"

#include <QSettings>
#include <QTest>

#include <sys/stat.h>

#include "Shell/Addon.h"
#include "Shell/Defaults.h"
#include "Shell/DesktopEntry.h"
#include "Shell/Distribution.h"
#include "Shell/Migration.h"
#include "Shell/Tools.h"
#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;
using namespace nubble;

class TestDefaultsAndTools : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_home.emplace(); }

    void valuesEditedByHandCountOnlyWhenTheyAreOfTheRightKind()
    {
        using Row = std::array<const char *, 4>; // as text, as a number, as a flag
        for (const auto &[value, text, number, boolean] :
             {Row{"true", "true", "none", "true"}, Row{"false", "false", "none", "false"},
              Row{"1", "1", "1", "none"}, Row{"-12.5", "-12.5", "-12.5", "none"},
              Row{"1e999", "1e999", "none", "none"}, Row{"-inf", "-inf", "none", "none"},
              Row{"12px", "12px", "none", "none"}, Row{"12, 5", "none", "none", "none"},
              Row{"", "", "none", "none"}, Row{"\"quoted, text\"", "quoted, text", "none", "none"}}) {
            init();
            const Defaults defaults(written(QByteArray("a.key=") + value));
            const auto shown = [](const auto &is) { return is ? QVariant(*is).toString().toUtf8() : "none"; };
            QVERIFY(defaults.contains(u"a.key"_s));
            QCOMPARE(shown(defaults.string(u"a.key"_s)), text);
            QCOMPARE(shown(defaults.number(u"a.key"_s)), number);
            QCOMPARE(shown(defaults.boolean(u"a.key"_s)), boolean);
        }
    }

    void packagesAreInstalledByTheDistributionsOwnCommand()
    {
        using Row = std::pair<const char *, const char *>;
        for (const auto &[osRelease, command] :
             {Row{"NAME=\"Debian\"\nID=debian\n", "sudo apt install zstd"},
              Row{"ID_LIKE='ubuntu debian'\nID=linuxmint", "sudo apt install zstd"},
              Row{"ID=\"rocky\"\r\nID_LIKE=\"rhel centos fedora\"\r\n", "sudo dnf install zstd"},
              Row{"#ID=debian\nID=x\n ID=arch", "sudo pacman -S zstd"},
              Row{"ID=opensuse-leap\nID_LIKE=\"suse opensuse\"\nID_LIKES=debian", "sudo zypper install zstd"},
              Row{"", ""}, Row{"ID=\"\nID_LIKE=debians\nVARIANT_ID=fedora\nID", ""}})
            QCOMPARE(
                Distribution::installCommand(osRelease, u"zstd"_s).value_or(QString()).toUtf8(), command);
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

    void filesAreThoseOfQSettings()
    {
        const QString texts[]{
            u""_s,
            u" both ends "_s,
            u"a;b,c=d\"e\\"_s,
            u"@home"_s,
            u"@Size(1 2)"_s,
            u"line\r\n\t\a\x1b"_s,
            u"\x1b"
            "Fix \x01ü \x02🌳e"_s,
            u"zażółć\u00a0\x7f"_s,
            u"\ufeff,"_s,
            u"~/[x] %41 #"_s};
        for (const QString &text : texts) {
            init();
            const QString key = u"a key.ä€+_-9"_s;
            QSettings theirs(m_home->path(u"theirs.conf"_s), QSettings::IniFormat);
            theirs.setValue(key, text);
            theirs.sync();
            QCOMPARE(Defaults(theirs.fileName()).string(key), text);
            Defaults(m_home->path(u"ours.conf"_s)).set(key, text);
            QCOMPARE(m_home->read(u"ours.conf"_s), m_home->read(u"theirs.conf"_s));
        }
    }

    void onlyWhatWasSetIsChangedInTheFileAsItIsByThen()
    {
        using Row = std::pair<QByteArray, QByteArray>;
        for (const auto &[before, after] :
             {Row{"", "[General]\na.key=new\n"}, Row{"a.key=old", "a.key=new"},
              Row{"; mine\r\n[general]\r\na.key = \"o;ld\" ; why\r\n",
                  "; mine\r\n[general]\r\na.key = new ; why\r\n"},
              Row{"[General]\na.key=1\na.key=2\nA.key=3", "[General]\na.key=1\na.key=new\nA.key=3"},
              Row{"[General]\nb=1, 2\n\n;a.key=\n[x]\na.key=old\n",
                  "[General]\nb=1, 2\na.key=new\n\n;a.key=\n[x]\na.key=old\n"},
              Row{"[x]\nb=@Point(1 2)\nrub\xffish",
                  "[x]\nb=@Point(1 2)\nrub\xffish\n[General]\na.key=new\n"}}) {
            init();
            Defaults defaults(file());
            defaults.set(u"a.key"_s, u"new"_s);
            m_home->write(u".config/com.brevandel.nubble.conf"_s, before);
            defaults.synchronize();
            QCOMPARE(m_home->read(u".config/com.brevandel.nubble.conf"_s), after);
        }
    }

    // A link from the start is followed. One that is put there later is left alone, as is all that is no such
    // file.
    void whatIsPutInThePlaceOfTheFileIsNeitherWrittenThroughNorReplaced()
    {
        const QByteArray path = QFile::encodeName(file());
        const QByteArray kept("[General]\na.key=kept\n");
        const QString target = m_home->write(u"dotfiles/conf"_s, kept);
        m_home->write(u".config/x"_s, {});
        QVERIFY(QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner | QFile::WriteGroup));
        const std::function<void()> places[]{
            [&] { QVERIFY(QFile::link(target, file())); },
            [&] { QCOMPARE(::mkfifo(path.constData(), 0600), 0); },
            [&] { QVERIFY(QDir().mkdir(file())); },
            [&] { written("b=@Variant(\\0)"); },
            [&] { written(QByteArray(1'000'000, 'x')); },
            [&] { QVERIFY(QFile::setPermissions(written("c=d"), QFile::ReadOwner)); }};
        for (const auto &put : places) {
            Defaults defaults(file());
            put();
            const QDateTime before = QFileInfo(file()).lastModified();
            defaults.set(u"a.key"_s, u"new"_s);
            defaults.synchronize();
            QCOMPARE(QFileInfo(file()).lastModified(), before);
            QCOMPARE(m_home->read(u"dotfiles/conf"_s), kept);
            QCOMPARE(defaults.string(u"a.key"_s), u"new"_s);
            QCOMPARE(::remove(path.constData()), 0);
            defaults.synchronize(); // it is tried again
            QVERIFY(QFile::remove(file()));
        }
        QVERIFY(QFile::link(target, file()));
        Defaults(file()).set(u"a.key"_s, u"new"_s);
        QVERIFY(QFileInfo(file()).isSymLink());
        QCOMPARE(m_home->read(u"dotfiles/conf"_s), "[General]\na.key=new\n");
        QVERIFY(QFileInfo(target).permission(QFile::WriteGroup));
        QCOMPARE(QDir(m_home->path(u"dotfiles"_s)).entryList(QDir::Files | QDir::Hidden), {u"conf"_s});
    }

    void changesAreWrittenTogetherAndNotWhileTheyAreHeld()
    {
        Defaults defaults(file());
        Defaults others(m_home->path(u"others.conf"_s));
        defaults.set(u"a"_s, true);
        defaults.setHeld(true);
        defaults.set(u"b"_s, 1.0);
        others.set(u"a"_s, true);
        QTRY_VERIFY(QFile::exists(m_home->path(u"others.conf"_s)));
        QVERIFY(!QFile::exists(file()));
        defaults.setHeld(false);
        defaults.set(u"b"_s, 2.0);
        QVERIFY(!QFile::exists(file()));
        QTRY_COMPARE(m_home->read(u".config/com.brevandel.nubble.conf"_s), "[General]\na=true\nb=2\n");
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

    // Each row puts tools into folders of a home ("-" before a folder: not executable, "/" behind it: a
    // folder of that name) and says from which of them, in a PATH of such folders, it is taken.
    void theFirstToolThatIsAnExecutableFileIsFound()
    {
        using Row = std::array<QString, 3>;
        for (const auto &[tools, path, found] :
             {Row{u"c"_s, u"a:b"_s, u""_s}, Row{u".local/bin .claude/local a"_s, u"a"_s, u".local/bin"_s},
              Row{u".claude/local a"_s, u"a"_s, u".claude/local"_s}, Row{u"a b c"_s, u"c:a:b"_s, u"c"_s},
              Row{u"b"_s, u"::b:"_s, u"b"_s}, Row{u"-.local/bin -a b"_s, u"a:b"_s, u"b"_s},
              Row{u"a/ b"_s, u"a:b"_s, u"b"_s}}) {
            init();
            for (QString tool : tools.split(u' ')) {
                tool += u"/nubble-test-tool";
                if (tool.contains(u"//"))
                    QDir().mkpath(m_home->path(tool));
                else if (tool.startsWith(u'-'))
                    m_home->write(tool.sliced(1), "#!/bin/sh\n");
                else
                    m_home->writeScript(tool, "#!/bin/sh\n");
            }
            QStringList folders;
            for (const QString &folder : path.split(u':'))
                folders.append(folder.isEmpty() ? folder : m_home->path(folder));
            const auto tool = Tools::find(u"nubble-test-tool"_s, m_home->home(), folders.join(u':'));
            QCOMPARE(
                tool.value_or(u""_s), found.isEmpty() ? u""_s : m_home->path(found + u"/nubble-test-tool"));
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
        const QString home = m_home->home().path();
        for (const auto &[line, script] :
             {std::pair<QByteArray, QString>("meetingNotes.script=", home + u"/.quib-live/quib-live.mjs"),
              {"meetingNotes.script=~/a b.mjs", home + u"/a b.mjs"},
              {"meetingNotes.script=~ann/a.mjs", u"~ann/a.mjs"_s},
              {"meetingNotes.script=/a/b.mjs", u"/a/b.mjs"_s}})
            QCOMPARE(recorderScript(m_home->home(), Defaults(written(line))), script);
    }

    void anAddonSaysWhatItLacksAndWhichKeysItHas()
    {
        const Home home = m_home->home();
        const Defaults defaults(file());
        const auto lack = [&](Addon addon) { return missing(addon, home, defaults).value_or(u""_s); };
        const QString script = home.file(u".quib-live/quib-live.mjs"_s);
        for (const auto &[addon, tool, sentence, then] :
             {std::tuple(Addon::Ask, u"claude"_s, u"Needs Claude Code (the `claude` command)."_s, u""_s),
              {Addon::Search, u"yarnbin"_s, u"Needs yarnbin (the `yarnbin` command)."_s, u""_s},
              {Addon::Notes, u"node"_s, u"Needs Node.js."_s,
               QString(u"Needs the recorder script at "_s + script + u'.')}}) {
            QCOMPARE(lack(addon), Tools::find(tool, home) ? then : sentence); // this machine may have it
            m_home->writeScript(u".local/bin/"_s + tool, "#!/bin/sh\n");
            QCOMPARE(lack(addon), then);
        }
        m_home->write(u".quib-live/quib-live.mjs"_s, {});
        QCOMPARE(lack(Addon::Notes), u""_s);
        QCOMPARE(lack(Addon::Quenwick), u"Needs the Quenwick app, opened at least once."_s);
        QVERIFY(QDir().mkpath(quenwickFolder(home)));
        QCOMPARE(lack(Addon::Quenwick), u""_s);
        QVERIFY(description(Addon::Ask).startsWith(u"Ctrl+Alt+A "));
        QVERIFY(description(Addon::Search).startsWith(u"Ctrl+Alt+Space "));
    }

    void anApplicationIsStartedByItsDesktopEntry()
    {
        const QString started = m_home->path(u"sta rted"_s);
        m_home->write(
            u"data/applications/com.example.app.desktop"_s,
            "[Desktop Entry]\nType=Application\nName=A\nExec=touch \"" + started.toUtf8() + "\" %U\n");
        qputenv("XDG_DATA_HOME", m_home->path(u"data"_s).toUtf8());
        QVERIFY(!launchDesktopEntry(u"com.example.other"_s, m_home->home()));
        QVERIFY(launchDesktopEntry(u"com.example.app"_s, m_home->home()));
        qunsetenv("XDG_DATA_HOME");
        QTRY_VERIFY(QFile::exists(started));
    }

private:
    QString file() const { return m_home->path(u".config/com.brevandel.nubble.conf"_s); }
    QString written(const QByteArray &lines) const
    {
        return m_home->write(u".config/com.brevandel.nubble.conf"_s, "[General]\n" + lines + '\n');
    }
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

QTEST_GUILESS_MAIN(TestDefaultsAndTools)
#include "tst_defaults_and_tools.moc"

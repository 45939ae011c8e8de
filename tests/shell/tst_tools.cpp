#include <QTest>

#include "Shell/Tools.h"
#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;
using namespace nubble;

class TestTools : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // Each row puts tools into folders of a home ("-" before a folder: not executable, "/" behind it: a
    // folder of that name) and says from which of them it is taken.
    void theFirstExecutableFileIsFound_data()
    {
        QTest::addColumn<QString>("tools");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("found");
        QTest::newRow("nowhere") << u""_s << u"a:b"_s << u""_s;
        QTest::newRow("beside the fixed folders") << u"c"_s << u"a:b"_s << u""_s;
        QTest::newRow("the user's own first") << u".local/bin .claude/local a"_s << u"a"_s << u".local/bin"_s;
        QTest::newRow("the local installer before PATH")
            << u".claude/local a"_s << u"a"_s << u".claude/local"_s;
        QTest::newRow("PATH in its order") << u"a b c"_s << u"c:a:b"_s << u"c"_s;
        QTest::newRow("PATH with empty parts") << u"b"_s << u"::b:"_s << u"b"_s;
        QTest::newRow("not executable") << u"-.local/bin -a b"_s << u"a:b"_s << u"b"_s;
        QTest::newRow("a folder of that name") << u"a/ b"_s << u"a:b"_s << u"b"_s;
        QTest::newRow("listed twice") << u".local/bin"_s << u".local/bin"_s << u".local/bin"_s;
    }

    void theFirstExecutableFileIsFound()
    {
        QFETCH(const QString, tools);
        QFETCH(const QString, path);
        QFETCH(const QString, found);
        const TemporaryHome home;
        for (const QString &tool : tools.split(u' ', Qt::SkipEmptyParts))
            install(home, tool);
        QStringList folders;
        for (const QString &folder : path.split(u':'))
            folders.append(folder.isEmpty() ? folder : home.path(folder));
        QCOMPARE(
            Tools::find(m_tool, home.home(), folders.join(u':')).value_or(QString()),
            found.isEmpty() ? QString() : home.path(found + u'/' + m_tool));
    }

    void withoutPathOnlyTheFixedFoldersAreSearched()
    {
        const TemporaryHome home;
        install(home, u"a"_s);
        QCOMPARE(Tools::find(m_tool, home.home(), std::nullopt), std::nullopt);
        QCOMPARE(Tools::find(u"env"_s, home.home(), std::nullopt), u"/usr/bin/env"_s);
    }

    void aToolInstalledMeanwhileIsFoundAtTheNextCall()
    {
        const TemporaryHome home;
        QCOMPARE(Tools::find(m_tool, home.home(), std::nullopt), std::nullopt);
        install(home, u".claude/local"_s);
        QCOMPARE(Tools::find(m_tool, home.home(), std::nullopt), home.path(u".claude/local/"_s + m_tool));
    }

    void childProcessesGetAPathOfFixedFoldersAndTheInheritedOnes()
    {
        const Home home(u"/home/ann"_s);
        const QString fixed =
            u"/home/ann/.local/bin:/opt/homebrew/bin:/usr/local/bin:/usr/bin:/bin:/usr/sbin:/sbin:"_s;
        QCOMPARE(Tools::searchPath(home, u"/a:/b"_s), fixed + u"/a:/b"_s);
        QCOMPARE(Tools::searchPath(home, std::nullopt), fixed);
    }

private:
    void install(const TemporaryHome &home, const QString &tool) const
    {
        if (tool.endsWith(u'/'))
            QDir().mkpath(home.path(tool + m_tool));
        else if (tool.startsWith(u'-'))
            home.write(tool.sliced(1) + u'/' + m_tool, "#!/bin/sh\n");
        else
            home.writeScript(tool + u'/' + m_tool, "#!/bin/sh\n");
    }

    const QString m_tool = u"nubble-test-tool"_s; // installed on no machine
};

QTEST_GUILESS_MAIN(TestTools)
#include "tst_tools.moc"

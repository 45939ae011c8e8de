#include <QDir>
#include <QTest>

#include <sys/stat.h>

#include "Platform/RegularFile.h"
#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;
using namespace nubble;

class TestFiles : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void onlyRegularFilesAreOpened()
    {
        const TemporaryHome home;
        const QString file = home.write(u"file"_s, "text");
        QCOMPARE(::mkfifo(QFile::encodeName(home.path(u"fifo"_s)), 0600), 0);
        QVERIFY(QFile::link(file, home.path(u"link"_s)));
        for (const QString &each : {file, home.path(u"link"_s)})
            QVERIFY(RegularFile::open(each));
        for (const QString &each : {home.path(u"fifo"_s), home.path(u"."_s), u"/dev/zero"_s})
            QVERIFY2(!RegularFile::open(each), qPrintable(each));
    }

    void homeIsThePasswordDatabasesWhateverTheEnvironmentSays()
    {
        const QString before = Home::ofUser().path();
        const QByteArray home = qgetenv("HOME");
        qputenv("HOME", "/nonexistent");
        QCOMPARE(Home::ofUser().path(), before);
        qputenv("HOME", home);

        qputenv("XDG_CONFIG_HOME", "/tmp/settings/");
        QCOMPARE(Home::ofUser().configFolder(), u"/tmp/settings"_s);
        QCOMPARE(Home(u"/trial/"_s).configFolder(), u"/trial/.config"_s);
        qputenv("XDG_CONFIG_HOME", "not/absolute");
        QCOMPARE(Home::ofUser().configFolder(), before + u"/.config");
        qunsetenv("XDG_CONFIG_HOME");
    }

    void applicationDataLiesInTheLibraryWhereThatExists()
    {
        const TemporaryHome home;
        QCOMPARE(home.home().applicationSupport(u"Claude"_s), home.path(u".config/Claude"_s));
        QVERIFY(QDir().mkpath(home.path(u"Library/Application Support/Claude"_s)));
        QCOMPARE(
            home.home().applicationSupport(u"Claude"_s), home.path(u"Library/Application Support/Claude"_s));
    }
};

QTEST_GUILESS_MAIN(TestFiles)
#include "tst_files.moc"

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
        const QByteArray fifo = QFile::encodeName(home.path(u"fifo"_s));
        QCOMPARE(::mkfifo(fifo.constData(), 0600), 0);
        QVERIFY(QFile::link(file, home.path(u"link"_s)));
        QVERIFY(QFile::link(home.path(u"circle"_s), home.path(u"circle"_s)));
        QVERIFY(QFile::link(u"/dev/zero"_s, home.path(u"device"_s)));

        QVERIFY(RegularFile::open(file));
        QVERIFY(RegularFile::open(home.path(u"link"_s)));
        for (const auto *name : {"fifo", "circle", "device", "gone", "."})
            QVERIFY2(!RegularFile::open(home.path(QString::fromLatin1(name))), name);
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

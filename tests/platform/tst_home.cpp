#include <QDir>
#include <QTest>

#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;
using namespace nubble;

class TestHome : public QObject {
    Q_OBJECT

private Q_SLOTS:
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

QTEST_GUILESS_MAIN(TestHome)
#include "tst_home.moc"

#include <QTest>

#include <unistd.h>

#include "Shell/Relaunch.h"
#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;
using namespace nubble;

class TestRelaunch : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theProgramStartsAgainWithItsArgumentsUnharmed()
    {
        const TemporaryHome home;
        const QString program = home.writeScript(
            u"a folder/pro\"gram's $HOME.sh"_s,
            "#!/bin/sh\nout=$1; shift\nprintf '%s|' \"$(pwd)\" \"$(readlink /proc/$$/fd/7)\" $# \"$@\" > "
            "\"$out.part\"\nmv \"$out.part\" \"$out\"\n");
        const QStringList arguments{
            u"--home"_s, u"/a b/c"_s, u"it's \"quoted\""_s, u"$(touch x) `y` $HOME *"_s, QString(),
            u"-c"_s,     u"日本"_s};
        const QString told = QString::number(arguments.size()) + u'|' + arguments.join(u'|') + u'|';

        const QString out = home.path(u"out put"_s);
        Relaunch{program, QStringList{out} + arguments}.now();
        QTRY_COMPARE(contents(out), QDir::currentPath() + u"||" + told);

        QCOMPARE(::dup2(1, 7), 7); // which a detached process does not share with its starter
        const QString atOnce = home.path(u"at once"_s);
        QVERIFY((Relaunch{program, QStringList{atOnce} + arguments}.startDetached()));
        QTRY_COMPARE(contents(atOnce), u"/||" + told);
    }

private:
    static QString contents(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
};

QTEST_GUILESS_MAIN(TestRelaunch)
#include "tst_relaunch.moc"

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
            "#!/bin/sh\nout=$1; shift\n{ echo $#; printf '%s|' \"$@\"; } > \"$out.part\" && mv \"$out.part\" "
            "\"$out\"\n");
        const QStringList arguments{
            u"--home"_s, u"/a b/c"_s, u"it's \"quoted\""_s, u"$(touch x) `y` $HOME *"_s, QString(),
            u"-c"_s,     u"日本"_s};
        const QString told = QString::number(arguments.size()) + u'\n' + arguments.join(u'|') + u'|';

        const QString out = home.path(u"out put"_s);
        Relaunch{program, QStringList{out} + arguments}.now();
        QTRY_COMPARE(contents(out), told);
        const QString atOnce = home.path(u"at once"_s);
        QVERIFY((Relaunch{program, QStringList{atOnce} + arguments}.startDetached()));
        QTRY_COMPARE(contents(atOnce), told);
    }

    void aDetachedProcessSharesNothingWithItsStarter()
    {
        const TemporaryHome home;
        const QString program = home.writeScript(
            u"look.sh"_s,
            "#!/bin/sh\nseen=$(pwd; cut -d' ' -f6 /proc/$$/stat; for each in 0 1 2 7; do readlink "
            "/proc/$$/fd/$each || echo none; done)\necho \"$seen\" > \"$1.part\"; mv \"$1.part\" \"$1\"\n");
        QCOMPARE(::dup2(1, 7), 7);
        const QString out = home.path(u"out"_s);
        QVERIFY((Relaunch{program, {out}}.startDetached()));
        QTRY_VERIFY(QFile::exists(out));
        QStringList seen = contents(out).split(u'\n', Qt::SkipEmptyParts);
        QVERIFY(seen.takeAt(1).toInt() != ::getsid(0));
        QCOMPARE(seen.join(u' '), u"/ /dev/null /dev/null /dev/null none"_s);
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

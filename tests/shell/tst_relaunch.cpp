#include <QTest>

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
        const QString out = home.path(u"out put"_s);
        Relaunch{program, QStringList{out} + arguments}.now();
        QTRY_VERIFY(QFile::exists(out));
        QFile file(out);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(
            QString::fromUtf8(file.readAll()),
            QString::number(arguments.size()) + u'\n' + arguments.join(u'|') + u'|');
    }
};

QTEST_GUILESS_MAIN(TestRelaunch)
#include "tst_relaunch.moc"

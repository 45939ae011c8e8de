#include <QTest>

#include "Shell/Addon.h"
#include "Shell/Defaults.h"
#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;
using namespace nubble;

class TestAddons : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theActiveOnesAreFrozenWhenTheProgramStarts()
    {
        const TemporaryHome home;
        Defaults defaults(home.path(u"preferences.conf"_s));
        const ActiveAddons none(defaults);
        for (const char16_t *key : {u"addon.notes", u"addon.quenwick", u"addon.ask"})
            defaults.set(QString::fromUtf16(key), true);
        const ActiveAddons some(defaults);
        defaults.set(u"addon.search"_s, true);
        defaults.set(u"addon.notes"_s, false);
        QVERIFY(none.actions().isEmpty());
        QCOMPARE(some.actions(), (QList{Addon::Ask, Addon::Notes})); // the companion is none
        QVERIFY(some.contains(Addon::Quenwick));
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
};

QTEST_GUILESS_MAIN(TestAddons)
#include "tst_addons.moc"

#include <QTest>

#include "Shell/HotKeys.h"
#include "support/FakeHotKeyService.h"

using namespace Qt::StringLiterals;
using namespace nubble;

class TestHotKeys : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aPressRunsItsActionLaterAndInOrderWhoeverOwnsTheKeys()
    {
        FakeHotKeyService service;
        const QKeyCombination ask = Qt::CTRL | Qt::ALT | Qt::Key_A;
        const QKeyCombination screenshot = Qt::CTRL | Qt::ALT | Qt::Key_S;
        service.ofOthers = {ask.toCombined()};
        QString ran;
        auto keys = std::make_optional<HotKeys>(service);
        keys->add(HotKey::Ask, [&] { ran += u'a'; });
        keys->add(HotKey::Screenshot, [&] { ran += u's'; });
        keys->add(screenshot, u"mine"_s, u"next"_s, [&] { ran += u'n'; }); // which is taken
        const QMap<quint32, int> asked{{1, ask.toCombined()}, {2, screenshot.toCombined()}};
        QCOMPARE(service.asked, asked);

        for (const quint32 id : {2U, 2U, 1U, 0U, 4U})
            Q_EMIT service.pressed(id);
        QVERIFY(ran.isEmpty());
        QTRY_COMPARE(ran, u"ssa"_s);

        const auto registered = [&] {
            return QList<bool>{keys->entries().at(0).registered, keys->entries().at(1).registered};
        };
        QCOMPARE(registered(), QList<bool>({false, true}));
        service.ofOthers = {screenshot.toCombined()}; // asked for afresh
        QCOMPARE(registered(), QList<bool>({true, false}));
        QCOMPARE(keys->entries().at(2), (HotKeys::Entry{u"mine"_s, u"next"_s, false}));
        QCOMPARE(keys->entries().at(1), (HotKeys::Entry{u"Ctrl+Alt+S"_s, u"screenshot"_s, false}));

        Q_EMIT service.pressed(1);
        keys.reset();
        QCoreApplication::processEvents();
        QCOMPARE(ran, u"ssa"_s);
    }
};

QTEST_GUILESS_MAIN(TestHotKeys)
#include "tst_hot_keys.moc"

#include <QImage>
#include <QSignalSpy>
#include <QTest>

#include "Tray/Mark.h"
#include "Tray/Menu.h"

using namespace Qt::StringLiterals;
using namespace nubble;

namespace {

// The colour at a point of the unit square whose origin is its lower left corner.
QColor at(const QImage &image, double x, double y)
{
    return image.pixelColor(static_cast<int>(x * image.width()), static_cast<int>((1 - y) * image.height()));
}

int rowHeight(const Menu &menu, int row)
{
    return menu.actionGeometry(menu.actions().at(row)).height();
}

} // namespace

class TestTray : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theMarkIsOneColourWithHolesForItsEyesAtEverySize()
    {
        for (const int size : {16, 22, 24, 32, 48, 128}) {
            const QImage image = Mark::icon(Qt::black, 0.45, {}).pixmap(QSize(size, size), 1.0).toImage();
            QCOMPARE(image.size(), QSize(size, size));
            QCOMPARE(at(image, 0.5, 0.7), QColor(0, 0, 0, 115)); // where two circles overlap, too
            QCOMPARE(at(image, 0.3, 0.2).alpha(), 115);
            QCOMPARE(at(image, 0.40, 0.56).alpha(), 0); // the eyes
            QCOMPARE(at(image, 0.68, 0.40).alpha(), 0);
            QCOMPARE(at(image, 0.02, 0.98).alpha(), 0);
            QCOMPARE(at(image, 0.95, 0.05).alpha(), 0);
        }
    }

    void withoutAColourItStandsOutFromLightAndDarkGround()
    {
        const QImage image = Mark::icon(std::nullopt, 1.0).pixmap(QSize(64, 64), 1.0).toImage();
        QCOMPARE(at(image, 0.5, 0.7), QColor(Qt::white));
        QCOMPARE(at(image, 0.40, 0.56).alpha(), 0);
        const QColor edge = at(image, 0.075, 0.56);
        QVERIFY(edge.alpha() > 100 && edge.lightness() < 30);
    }

    void aDetailIsASecondLineWhereTheMenuIsOurs()
    {
        MenuEntry entry;
        entry.title = u"Meeting Recorder"_s;
        entry.detail = u"Needs Node.js, which is a longer text than the title."_s;
        MenuEntry plain;
        plain.title = entry.detail;

        Menu own;
        own.setEntries({entry, plain});
        own.ensurePolished();
        QVERIFY(rowHeight(own, 0) > rowHeight(own, 1) + 8);
        const int width = own.sizeHint().width();
        own.setEntries({plain});
        QVERIFY(width <= own.sizeHint().width()); // one below the other, and the second is smaller

        Menu remote;
        remote.setEntries({entry}, Menu::Drawing::Desktop);
        QCOMPARE(remote.actions().at(0)->text(), entry.title + u" — "_s + entry.detail);

        entry.detail = u"Needs the recorder script at /"_s + QString(1000, u'x') + u"/R&D\tend.mjs."_s;
        own.setEntries({entry});
        QVERIFY(own.sizeHint().width() < 660);
        QVERIFY(own.actions().at(0)->text().endsWith(u"x/R&&D end.mjs."_s));
        QVERIFY(own.actions().at(0)->toolTip().contains(entry.detail));
    }

    void anEntryIsCheckedOnlyByWhatItStandsFor()
    {
        int chosen = 0;
        MenuEntry entry;
        entry.title = u"Right"_s;
        entry.checked = true;
        entry.action = [&chosen] { ++chosen; };
        Menu menu;
        menu.setEntries({entry});
        QAction *action = menu.actions().at(0);
        action->trigger();
        QCOMPARE(chosen, 1);
        QVERIFY(action->isChecked());
        menu.setEntries({entry});
        QCOMPARE(menu.actions().at(0), action); // desktops may be about to choose it
        entry.checked = false;
        menu.setEntries({entry});
        QVERIFY(!menu.actions().at(0)->isChecked());
    }

    void aShownKeyWorksWhileTheMenuIsOpen()
    {
        int refreshed = 0;
        MenuEntry entry;
        entry.title = u"Refresh"_s;
        entry.shortcut = QKeyCombination(Qt::ControlModifier, Qt::Key_R);
        entry.action = [&refreshed] { ++refreshed; };
        MenuEntry disabled = entry;
        disabled.enabled = false;
        Menu menu;
        MenuEntry below;
        below.title = u"Below"_s;
        below.entries = {MenuEntry(disabled)};
        menu.setEntries({disabled, MenuEntry::separator(), entry, below});
        menu.popup({10, 10});
        QTest::keyClick(menu.actions().at(3)->menu(), Qt::Key_R, Qt::ControlModifier);
        QVERIFY(!menu.isVisible());
        QCOMPARE(std::exchange(refreshed, 0), 1);
        menu.popup({10, 10});
        QTest::keyClick(&menu, Qt::Key_R);
        QVERIFY(menu.isVisible());
        QTest::keyClick(&menu, Qt::Key_R, Qt::ControlModifier);
        QVERIFY(!menu.isVisible());
        QCOMPARE(refreshed, 1);
    }
};

QTEST_MAIN(TestTray)
#include "tst_tray.moc"

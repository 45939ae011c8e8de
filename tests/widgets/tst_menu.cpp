#include <QLineEdit>
#include <QPointer>
#include <QTest>

#include "Widgets/ContextMenu.h"
#include "Widgets/FloatingFrame.h"
#include "Widgets/Menu.h"

using namespace Qt::StringLiterals;
using namespace nubble;

class TestMenu : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aDetailIsASecondLineWhereTheMenuIsOurs()
    {
        MenuEntry entry{
            .title = u"Meeting Recorder"_s,
            .detail = u"Needs Node.js, which is a longer text than the title."_s};
        const MenuEntry plain{.title = entry.detail};
        Menu own;
        own.setEntries({entry, plain});
        own.ensurePolished();
        const auto height = [&own](int row) { return own.actionGeometry(own.actions().at(row)).height(); };
        QVERIFY(height(0) > height(1) + 8);
        QVERIFY(std::abs(height(1) - own.fontMetrics().height() - 10) <= 1); // padding above and below
        const int width = own.sizeHint().width();
        own.setEntries({plain});
        QVERIFY(width <= own.sizeHint().width()); // one below the other, and the second is smaller

        Menu keyed;
        keyed.setEntries(
            {{.title = plain.title, .shortcut = QKeyCombination(Qt::ControlModifier, Qt::Key_R)}});
        QCOMPARE(
            keyed.sizeHint().width() - own.sizeHint().width(),
            24 + own.fontMetrics().horizontalAdvance(u"Ctrl+R"_s));

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
        MenuEntry entry{.title = u"Right"_s, .action = [&chosen] { ++chosen; }, .checked = true};
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

    void submenusStandBesideTheirEntryAndShadowsTakeNoMouse()
    {
        const MenuEntry below{.title = u"Below"_s, .entries = {{.title = u"One"_s}}};
        const QRect screen = QGuiApplication::primaryScreen()->geometry();
        const auto card = [](const QWidget &menu) { return menu.contentsRect().translated(menu.pos()); };
        for (const bool translucent : {true, false})
            for (const QPoint &place : {QPoint(100, 100), screen.bottomRight()}) {
                Menu menu;
                menu.setEntries({below, {.title = u"Next"_s}});
                menu.setTranslucent(translucent);
                menu.popup(place);
                menu.setActiveAction(menu.actions().at(0));
                QMenu *submenu = menu.actions().at(0)->menu();
                QVERIFY(submenu->isVisible() && screen.contains(card(*submenu)));
                const QRect common = card(menu) & card(*submenu);
                QCOMPARE(common.width(), 4);
                if (place != screen.bottomRight())
                    QCOMPARE(card(menu).top(), card(*submenu).top());
                QCOMPARE(
                    menu.mask().contains(QPoint(12, 1)) && !menu.mask().contains(QPoint(1, 1)), !translucent);
                QCOMPARE(menu.contentsRect() == menu.rect(), !translucent);
                if (!translucent)
                    continue;
                for (const int step : {5, 6}) { // the second one counts
                    QAction *next = menu.actions().at(1);
                    const QPoint entry = menu.mapToGlobal(menu.actionGeometry(next).center());
                    const int x = common.left() > entry.x() ? common.left() - step : common.right() + step;
                    QVERIFY(submenu->geometry().contains(x, entry.y()));
                    QTest::mouseMove(submenu, submenu->mapFromGlobal(QPoint(x, entry.y())));
                }
                QTRY_COMPARE(menu.activeAction(), menu.actions().at(1));
                QVERIFY(!submenu->isVisible());
                menu.setActiveAction(menu.actions().at(0));
                QTest::mousePress(submenu, Qt::LeftButton, {}, {1, 1});
                QVERIFY(!menu.isVisible() && !submenu->isVisible());
            }
    }

    void aShownKeyWorksWhileTheMenuIsOpen()
    {
        int refreshed = 0;
        const MenuEntry entry{
            .title = u"Refresh"_s,
            .action = [&refreshed] { ++refreshed; },
            .shortcut = QKeyCombination(Qt::ControlModifier, Qt::Key_R)};
        MenuEntry disabled = entry;
        disabled.enabled = false;
        const MenuEntry below{.title = u"Below"_s, .entries = {MenuEntry(disabled)}};
        Menu menu;
        menu.setEntries({disabled, MenuEntry::separator(), entry, below});
        int expected = 0;
        for (QWidget *open : {menu.actions().at(3)->menu(), static_cast<QMenu *>(&menu)}) {
            menu.popup({10, 10});
            QTest::keyClick(open, Qt::Key_R);
            QVERIFY(menu.isVisible());
            QTest::keyClick(open, Qt::Key_R, Qt::ControlModifier);
            QVERIFY(!menu.isVisible());
            QCOMPARE(refreshed, ++expected);
        }
    }

    void aFieldsOwnMenuOpensInTheSameLookWithItsCornerAtThePointer()
    {
        const QRect screen = QGuiApplication::primaryScreen()->geometry();
        for (const bool translucent : {true, false})
            for (const QPoint &place : {QPoint(100, 100), screen.bottomRight()}) {
                auto *field = new QLineEdit(u"text"_s);
                FloatingFrame frame(field);
                frame.setTranslucent(translucent);
                frame.show();
                openContextMenu(*field, place, field->createStandardContextMenu());
                const QPointer<Menu> menu = field->findChild<Menu *>();
                QVERIFY(menu && menu->isVisible() && menu->findChild<QMenu *>()->isHidden());
                QCOMPARE(menu->contentsRect() == menu->rect(), !translucent);
                const QRect card = menu->contentsRect().translated(menu->pos());
                QCOMPARE(place == screen.bottomRight() ? card.bottomRight() : card.topLeft(), place);
                for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Return}) // the last entry
                    QTest::keyClick(menu, key);
                QCOMPARE(field->selectedText(), u"text"_s);
                QTRY_VERIFY(!menu);
            }
    }
};

QTEST_MAIN(TestMenu)
#include "tst_menu.moc"

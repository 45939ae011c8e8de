#include <QImage>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>

#include "Tray/Mark.h"
#include "Tray/Menu.h"
#include "support/Contrast.h"

using namespace Qt::StringLiterals;
using namespace nubble;

namespace {

// The colour at a point of the unit square whose origin is its lower left corner.
QColor at(const QImage &image, const QPointF &point)
{
    const QPointF pixel = QPointF(point.x(), 1 - point.y()) * image.width();
    return image.pixelColor(static_cast<int>(pixel.x()), static_cast<int>(pixel.y()));
}

MenuEntry entryOf(const QString &title, const std::function<void()> &action = {})
{
    MenuEntry entry;
    entry.title = title;
    entry.action = action;
    return entry;
}

} // namespace

class TestTray : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theMarkIsOneColourWithHolesForItsEyesAtEverySize()
    {
        for (const int size : {16, 22, 24, 32, 48, 128}) {
            const QImage image = Mark::icon(Qt::black, false).pixmap(QSize(size, size), 1.0).toImage();
            QCOMPARE(image.size(), QSize(size, size));
            for (const QPointF &body : {QPointF(0.5, 0.7), QPointF(0.3, 0.2)}) // where circles overlap, too
                QCOMPARE(at(image, body), QColor(0, 0, 0, 115));
            for (const QPointF &eyeOrCorner : {QPointF(0.4, 0.56), {0.68, 0.4}, {0.02, 0.98}, {0.95, 0.05}})
                QCOMPARE(at(image, eyeOrCorner).alpha(), 0);
        }
    }

    void withoutAColourItStandsOutFromLightAndDarkGround()
    {
        const QStringList grounds{u"#ffffff"_s, u"#f0f0f0"_s, u"#2e3436"_s, u"#000000"_s};
        for (const bool isVisible : {true, false}) {
            const QIcon icon = Mark::icon(std::nullopt, isVisible);
            for (const QString &ground : grounds) {
                for (const int size : {16, 22, 24, 32}) {
                    QImage image(size, size, QImage::Format_RGB32);
                    image.fill(QColor(ground));
                    QPainter(&image).drawPixmap(0, 0, icon.pixmap(QSize(size, size), 1.0));
                    int seen = 0;
                    for (int i = 0; i < size * size; ++i)
                        seen += contrast(image.pixelColor(i % size, i / size), QColor(ground)) >= 3;
                    QVERIFY2(seen > size * size / 8, qPrintable(ground));
                }
            }
        }
    }

    void aDetailIsASecondLineWhereTheMenuIsOurs()
    {
        MenuEntry entry = entryOf(u"Meeting Recorder"_s);
        entry.detail = u"Needs Node.js, which is a longer text than the title."_s;
        const MenuEntry plain = entryOf(entry.detail);
        Menu own;
        own.setEntries({entry, plain});
        own.ensurePolished();
        const auto height = [&own](int row) { return own.actionGeometry(own.actions().at(row)).height(); };
        QVERIFY(height(0) > height(1) + 8);
        QVERIFY(std::abs(height(1) - own.fontMetrics().height() - 10) <= 1); // padding above and below
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
        MenuEntry entry = entryOf(u"Right"_s, [&chosen] { ++chosen; });
        entry.checked = true;
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
        MenuEntry below = entryOf(u"Below"_s);
        below.entries = {entryOf(u"One"_s)};
        const QRect screen = QGuiApplication::primaryScreen()->geometry();
        const auto card = [](const QWidget &menu) { return menu.contentsRect().translated(menu.pos()); };
        for (const bool translucent : {true, false})
            for (const QPoint &place : {QPoint(100, 100), screen.bottomRight()}) {
                Menu menu;
                menu.setEntries({below, entryOf(u"Next"_s)});
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
        MenuEntry entry = entryOf(u"Refresh"_s, [&refreshed] { ++refreshed; });
        entry.shortcut = QKeyCombination(Qt::ControlModifier, Qt::Key_R);
        MenuEntry disabled = entry;
        disabled.enabled = false;
        MenuEntry below = entryOf(u"Below"_s);
        below.entries = {MenuEntry(disabled)};
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
};

QTEST_MAIN(TestTray)
#include "tst_tray.moc"

#include <QAccessible>
#include <QHBoxLayout>
#include <QHelpEvent>
#include <QPushButton>
#include <QTest>
#include <QToolTip>

#include "Widgets/ToolTip.h"
#include "Widgets/ToolTips.h"
#include "Widgets/Units.h"

using namespace Qt::StringLiterals;
using namespace nubble;

class TestToolTips : public QObject {
    Q_OBJECT

private:
    QWidget m_window;
    ToolTips *m_tips = new ToolTips(m_window);
    QPushButton *m_button = new QPushButton(u"button"_s, &m_window);
    QPushButton *m_other = new QPushButton(u"other"_s, &m_window);

    void pointAt(QWidget &control)
    {
        const QPoint at = control.rect().center();
        QHelpEvent help(QEvent::ToolTip, at, control.mapToGlobal(at));
        QCoreApplication::sendEvent(&control, &help);
    }
    [[nodiscard]] ToolTip *shown() const
    {
        for (ToolTip *each : m_window.findChildren<ToolTip *>())
            if (each->isVisible())
                return each;
        return nullptr;
    }

private Q_SLOTS:
    void initTestCase()
    {
        m_button->move(100, 100);
        m_other->move(300, 300);
        m_button->setToolTip(u"<b>What</b> it does"_s);
        m_window.resize(500, 400);
        m_window.show();
        QVERIFY(QTest::qWaitForWindowActive(&m_window));
    }

    void aTextIsWrappedAnywhereAndCutAfterSixLinesNoneOfWhichTurnsAnother()
    {
        using Shape =
            QList<std::pair<bool, bool>>; // of each line: from right to left; of the first paragraph
        for (const auto &[text, shape, isCut] :
             {std::tuple(
                  u"One\n\n \nשלום (a)\nc:\u202e\u2028d"_s,
                  Shape{{false, true}, {true, false}, {false, false}}, false),
              {QString(60, u'W'), Shape(3, {false, true}), false},
              {QString(100'000, u'x'), Shape(6, {false, true}), true},
              {u"שלום "_s.repeated(300), Shape(6, {true, true}), true},
              {u"1\n2\n3\n4\n5\n6"_s, Shape{{false, true}} + Shape(5, {false, false}), false},
              {u"1\n2\n3\n4\n5\n6\n7"_s, Shape{{false, true}} + Shape(5, {false, false}), true}}) {
            ToolTip tip(text, true, &m_window);
            Shape found;
            for (const ToolTip::Line &each : tip.lines()) {
                found.append({each.isRightToLeft, each.isFirst});
                for (const QChar control : {QChar(0x202e), QChar(0x2028), QChar(u'\n')})
                    QVERIFY(!each.text.contains(control));
            }
            QCOMPARE(found, shape);
            QCOMPARE(tip.lines().last().text.endsWith(u'…'), isCut);
            QVERIFY(tip.width() <= 320);
            QCOMPARE(tip.width() > 290, text.size() > 50);
            QCOMPARE(QAccessible::queryAccessibleInterface(&tip)->text(QAccessible::Name), text);
        }
        const ToolTip usual(u"One"_s, false, &m_window);
        Units::set(m_window, 2); // as the panel at another size
        const ToolTip larger(u"One"_s, false, &m_window);
        Units::set(m_window, 1);
        QCOMPARE(larger.size(), 2 * usual.size());
        QCOMPARE(larger.mask().boundingRect().width(), 2 * usual.mask().boundingRect().width());
    }

    void oneStandsBesideItsControlUntilAnythingHappens()
    {
        const auto send = [this](auto &&event) { QCoreApplication::sendEvent(m_button, &event); };
        const std::initializer_list<std::pair<const char *, std::function<void()>>> ends{
            {"the pointer leaves", [&] { send(QEvent(QEvent::Leave)); }},
            {"a key", [this] { QTest::keyClick(&m_window, Qt::Key_A); }},
            {"a press elsewhere", [this] { QTest::mouseClick(m_other, Qt::LeftButton); }},
            {"the control is hidden", [this] { m_button->hide(); }},
            {"it moves away", [this] { m_button->move(120, 100); }},
            {"another text", [this] { m_button->setToolTip(u"Plain"_s); }},
            {"the window is hidden", [this] { m_window.hide(); }},
            {"compositing ends", [this] { m_tips->setTranslucent(false); }}};
        m_tips->setTranslucent(true);
        for (const auto &[why, end] : ends) {
            m_window.show();
            m_button->show();
            pointAt(*m_button);
            const QPointer<ToolTip> tip = shown();
            QVERIFY2(tip && tip->text() == m_button->toolTip(), why);
            QVERIFY(tip->mask().isEmpty());
            QVERIFY(!tip->geometry().intersects(QRect(m_button->mapToGlobal(QPoint()), m_button->size())));
            pointAt(*m_button); // keeps it
            QCOMPARE(shown(), tip);
            end();
            QVERIFY2(!shown(), why);
            QTRY_VERIFY(!tip);
        }
        m_window.show();
        m_button->show();
        pointAt(*m_button);
        QVERIFY(!shown()->mask().isEmpty());
        QVERIFY(!QToolTip::isVisible());
    }

    void aPartOfAControlHasItsOwn()
    {
        ToolTips::show(*m_other, u"part"_s, {0, 0, 10, 10});
        QCOMPARE(shown()->text(), u"part"_s);
        QTest::mouseMove(m_other, {5, 5});
        QVERIFY(shown());
        QTest::mouseMove(m_other, {15, 5});
        QVERIFY(!shown());
        ToolTips::show(*m_other, {}, {0, 0, 10, 10});
        QVERIFY(!shown());
    }
};

QTEST_MAIN(TestToolTips)
#include "tst_tool_tips.moc"

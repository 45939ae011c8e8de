#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include "Widgets/FloatingWindow.h"
#include "support/FakeFloatingSurface.h"

using namespace Qt::StringLiterals;
using namespace nubble;

namespace {

// A field that uses Escape while there is something to clear, and some things that can be pressed.
class Content : public QWidget {
public:
    Content()
    {
        auto *layout = new QVBoxLayout(this);
        for (QWidget *each : std::initializer_list<QWidget *>{label, selectable, field, switchedOff})
            layout->addWidget(each);
        selectable->setTextInteractionFlags(Qt::TextSelectableByMouse);
        switchedOff->setEnabled(false);
        setFocusProxy(field);
    }

    QLabel *label = new QLabel(u"label"_s);
    QLabel *selectable = new QLabel(u"text"_s);
    QLineEdit *field = new QLineEdit;
    QPushButton *switchedOff = new QPushButton(u"off"_s);

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        event->setAccepted(event->key() == Qt::Key_Escape && !field->text().isEmpty());
        field->clear();
    }
};

} // namespace

class TestFloatingWindow : public QObject {
    Q_OBJECT

private:
    Content *m_content = nullptr;
    FakeFloatingSurface *m_surface = nullptr;
    std::unique_ptr<FloatingWindow> m_window;

private Q_SLOTS:
    void init()
    {
        m_content = nullptr;
        const auto makeContent = [this] {
            return m_content ? qFatal("made twice"), nullptr : m_content = new Content;
        };
        m_window = std::make_unique<FloatingWindow>(
            u"Title"_s, makeContent, FakeFloatingSurface::factory(m_surface));
    }
    void cleanup() { m_window.reset(); }

    void canBeOutOfThePictureOnlyWhileItIsOpen()
    {
        for (const bool closes : {false, true}) {
            m_window->openAt({100, 90, 300, 200});
            m_surface->giveKeyboard(true);
            m_window->setUnseen(true);
            QVERIFY(m_surface->unseen && m_window->isOpen());
            closes ? m_surface->giveKeyboard(false) : m_window->setUnseen(false);
            QVERIFY(!m_surface->unseen);
            QCOMPARE(m_window->isOpen(), !closes);
        }
        m_window->setUnseen(true);
        QVERIFY(!m_surface->unseen);
    }

    void isMadeOnceWhenFirstOpenedAndKept()
    {
        m_window->close();
        QVERIFY(!m_content);
        for (const QRect at : {QRect(100, 90, 300, 200), QRect(200, 30, 80, 40)}) {
            m_window->openAt(at);
            QVERIFY(QTest::qWaitForWindowActive(&m_surface->window));
            QCOMPARE(QRect(m_content->mapToGlobal(QPoint()), m_content->size()), at); // however small
            QCOMPARE(m_surface->outline.boundingRect(), QRectF(m_content->geometry()));
            QCOMPARE(m_surface->window.minimumSize(), m_surface->window.maximumSize()); // so that it floats
            QCOMPARE(m_surface->window.focusWidget(), m_content->field);
            m_content->field->clearFocus(); // which the next opening undoes
            m_window->close();
            QVERIFY(!m_surface->window.isVisible());
        }
        QCOMPARE(m_surface->window.windowTitle(), u"Title"_s);
    }

    void closesWhenTheUserWantsItGone()
    {
        const QSignalSpy closed(m_window.get(), &FloatingWindow::closed);
        m_window->open();
        QVERIFY(QTest::qWaitForWindowActive(&m_surface->window));
        QTest::keyClicks(m_content->field, u"x"_s);
        QTest::keyClick(m_content->field, Qt::Key_Escape);
        QVERIFY(m_window->isOpen()); // the content has used the key
        QTest::keyClick(m_content->field, Qt::Key_Escape);
        QVERIFY(!m_window->isOpen());
        m_window->open();
        QVERIFY(!m_surface->window.close()); // as the window manager asks for it
        QVERIFY(!m_window->isOpen());
        QCOMPARE(closed.count(), 2);
    }

    void closesWhenItLosesTheKeyboardUnlessItIsHeldOpen()
    {
        for (const auto &[steps, open] :
             {std::pair(u"taken lost"_s, false),
              {u"lost"_s, true}, // that was before it came
              {u"taken hold lost"_s, true},
              {u"taken hold lost release"_s, false},
              {u"taken hold hold lost release"_s, true},
              {u"taken hold release"_s, true},
              {u"taken hold release lost"_s, false},
              {u"taken hold lost taken release"_s, true},
              {u"taken hold lost open release"_s, true},
              {u"taken hold lost open lost taken release lost"_s, false}}) {
            init();
            m_window->open();
            QList<FloatingWindow::Hold> holds;
            for (const QString &step : steps.split(u' ')) {
                if (step == u"open")
                    m_window->open();
                else if (step == u"hold")
                    holds.append(m_window->holdOpen());
                else if (step == u"release")
                    holds.removeLast();
                else
                    m_surface->giveKeyboard(step == u"taken");
            }
            QVERIFY2(m_window->isOpen() == open, qPrintable(steps));
            QCOMPARE(m_surface->window.isVisible(), open);
            m_window.reset(); // which what holds it may outlive
        }
    }

    void isDraggedByItsBackgroundOnly()
    {
        m_window->open();
        QVERIFY(QTest::qWaitForWindowActive(&m_surface->window));
        const std::initializer_list<std::pair<QWidget *, int>> drags{
            {m_content, 1},
            {m_content->label, 1},
            {m_content->selectable, 0},
            {m_content->field, 0},
            {m_content->switchedOff, 0}};
        QWindow *window = m_surface->window.windowHandle();
        for (const auto &[widget, moves] : drags) {
            m_surface->moves = 0;
            const QPoint from = widget->mapTo(&m_surface->window, QPoint(4, 4));
            QTest::mousePress(window, Qt::LeftButton, {}, from);
            QTest::mouseMove(window, from + QPoint(1, 1));
            QCOMPARE(m_surface->moves, 0);
            for (const int far : {5, 10})
                QTest::mouseMove(window, from + QPoint(far, far));
            QTest::mouseRelease(window, Qt::LeftButton, {}, from);
            QCOMPARE(m_surface->moves, moves);
        }
    }

    void isOpaqueAllOverWithoutTranslucencyAndFollowsIt()
    {
        m_window->open();
        for (const bool translucent : {false, true, false}) {
            if (m_surface->translucent != translucent)
                m_surface->setTranslucent(translucent);
            QImage picture(m_surface->window.size(), QImage::Format_ARGB32_Premultiplied);
            picture.fill(Qt::transparent);
            m_surface->window.render(&picture, {}, {}, QWidget::DrawChildren);
            QCOMPARE(picture.pixelColor(0, 0).alpha(), translucent ? 0 : 255);
            QCOMPARE(picture.pixelColor(150, 30).alpha(), translucent ? 240 : 255);
            QVERIFY(picture.pixelColor(20, 112).alpha() > 10); // the shadow
        }
    }
};

QTEST_MAIN(TestFloatingWindow)
#include "tst_floating_window.moc"

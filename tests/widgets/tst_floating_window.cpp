#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include "Widgets/FloatingWindow.h"
#include "support/FakeFloatingSurface.h"

using namespace nubble;

namespace {

// A field that uses Escape while there is something to clear, and some things that can be pressed.
class Content : public QWidget {
public:
    Content()
    {
        auto *layout = new QVBoxLayout(this);
        for (QWidget *each : std::initializer_list<QWidget *>{label, selectable, field, button, switchedOff})
            layout->addWidget(each);
        selectable->setTextInteractionFlags(Qt::TextSelectableByMouse);
        switchedOff->setEnabled(false);
        setFocusProxy(field);
    }

    QLabel *label = new QLabel(QStringLiteral("label"));
    QLabel *selectable = new QLabel(QStringLiteral("text"));
    QLineEdit *field = new QLineEdit;
    QPushButton *button = new QPushButton(QStringLiteral("button"));
    QPushButton *switchedOff = new QPushButton(QStringLiteral("off"));

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
    int m_made = 0;
    Content *m_content = nullptr;
    FakeFloatingSurface *m_surface = nullptr;
    std::unique_ptr<FloatingWindow> m_window;

    void step(const QString &name, FloatingWindow::Hold &hold)
    {
        if (name == QLatin1String("open"))
            m_window->open();
        else if (name == QLatin1String("taken") || name == QLatin1String("lost"))
            m_surface->giveKeyboard(name == QLatin1String("taken"));
        else if (name == QLatin1String("hold"))
            hold = m_window->holdOpen();
        else if (name == QLatin1String("release"))
            hold.reset();
        else
            qFatal("no such step");
    }

private Q_SLOTS:
    void init()
    {
        m_made = 0;
        m_window = std::make_unique<FloatingWindow>(
            QStringLiteral("Title"), QSize(300, 200),
            [this] {
                ++m_made;
                return m_content = new Content;
            },
            [this](QWidget &window) {
                auto surface = std::make_unique<FakeFloatingSurface>(window);
                m_surface = surface.get();
                return surface;
            });
    }
    void cleanup() { m_window.reset(); }

    void isMadeOnceWhenFirstOpenedAndKept()
    {
        m_window->close();
        QCOMPARE(m_made, 0);
        for (const QPoint at : {QPoint(100, 90), QPoint(200, 30)}) {
            m_window->openAt(at);
            QVERIFY(QTest::qWaitForWindowActive(&m_surface->window));
            QCOMPARE(m_content->mapToGlobal(QPoint()), at);
            QCOMPARE(m_content->size(), m_window->size());
            QCOMPARE(m_surface->outline.boundingRect(), QRectF(m_content->geometry()));
            QCOMPARE(m_surface->window.focusWidget(), m_content->field);
            m_content->button->setFocus(); // which the next opening undoes
            m_window->close();
            QVERIFY(!m_surface->window.isVisible());
        }
        QCOMPARE(m_made, 1);
        QCOMPARE(m_surface->window.windowTitle(), QStringLiteral("Title"));
    }

    void closesWhenTheUserWantsItGone()
    {
        const QSignalSpy closed(m_window.get(), &FloatingWindow::closed);
        m_window->open();
        QVERIFY(QTest::qWaitForWindowActive(&m_surface->window));
        QTest::keyClicks(m_content->field, QStringLiteral("x"));
        QTest::keyClick(m_content->field, Qt::Key_Escape);
        QVERIFY(m_window->isOpen()); // the content has used the key
        QTest::keyClick(m_content->field, Qt::Key_Escape);
        QVERIFY(!m_window->isOpen());
        m_window->open();
        QVERIFY(!m_surface->window.close()); // as the window manager asks for it
        QVERIFY(!m_window->isOpen());
        QCOMPARE(closed.count(), 2);
    }

    void closesWhenItLosesTheKeyboard_data()
    {
        QTest::addColumn<bool>("open");
        QTest::newRow("open taken lost") << false;
        QTest::newRow("open lost") << true; // that was before it came
        QTest::newRow("open taken hold lost") << true;
        QTest::newRow("open taken hold lost release") << false;
        QTest::newRow("open taken hold release") << true;
        QTest::newRow("open taken hold release lost") << false;
        QTest::newRow("open taken hold lost taken release") << true;
        QTest::newRow("open taken hold lost open release") << true;
        QTest::newRow("open taken hold lost open lost taken release lost") << false;
    }
    void closesWhenItLosesTheKeyboard()
    {
        FloatingWindow::Hold hold;
        for (const QString &each : QString::fromLatin1(QTest::currentDataTag()).split(u' '))
            step(each, hold);
        QTEST(m_window->isOpen(), "open");
        QCOMPARE(m_surface->window.isVisible(), m_window->isOpen());
    }

    void staysOpenUntilTheLastHoldIsReleasedWhichMayOutliveIt()
    {
        m_window->open();
        m_surface->giveKeyboard(true);
        FloatingWindow::Hold first = m_window->holdOpen();
        FloatingWindow::Hold second = m_window->holdOpen();
        m_surface->giveKeyboard(false);
        first.reset();
        QVERIFY(m_window->isOpen());
        m_window.reset();
        second.reset();
    }

    void isDraggedByItsBackgroundOnly()
    {
        m_window->open();
        QVERIFY(QTest::qWaitForWindowActive(&m_surface->window));
        const std::initializer_list<std::pair<QWidget *, int>> drags{
            {m_content, 1},        {m_content->label, 1},  {m_content->selectable, 0},
            {m_content->field, 0}, {m_content->button, 0}, {m_content->switchedOff, 0}};
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
            QVERIFY(picture.pixelColor(6, 112).alpha() > 10); // the shadow
        }
    }
};

QTEST_MAIN(TestFloatingWindow)
#include "tst_floating_window.moc"

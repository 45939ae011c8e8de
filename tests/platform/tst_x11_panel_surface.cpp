#include <QApplication>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>
#include <QTest>
#include <QWidget>
#include <QWindow>

#include "Platform/Backend.h"
#include "Platform/Home.h"
#include "platform/ForeignApplication.h"

using namespace nubble;

namespace {

// A white panel that counts the presses that reach it.
class Panel : public QWidget {
public:
    int presses = 0;

protected:
    void paintEvent(QPaintEvent *) override { QPainter(this).fillRect(rect(), Qt::white); }
    void mousePressEvent(QMouseEvent *) override { ++presses; }
};

QColor pixelOnScreen(const QPoint &pixel)
{
    return QGuiApplication::primaryScreen()->grabWindow(0).toImage().pixelColor(pixel);
}

} // namespace

// Run at scales 1, 1.5 and 2. Lengths of the surface are device-independent, those of the screen are pixels.
class TestX11PanelSurface : public QObject {
    Q_OBJECT

private:
    Backend m_backend = makeBackend(Home(QStringLiteral("/nonexistent")));
    const qreal m_scale = QGuiApplication::primaryScreen()->devicePixelRatio();
    std::unique_ptr<ForeignApplication> m_others;
    std::unique_ptr<Panel> m_panel;
    std::unique_ptr<PanelSurface> m_surface;

    [[nodiscard]] QRect screen() const { return QGuiApplication::primaryScreen()->geometry(); }
    [[nodiscard]] QRect panelOnScreen() const
    {
        return m_others->onScreen(static_cast<xcb_window_t>(m_panel->windowHandle()->winId()));
    }
    [[nodiscard]] QPoint pixelAt(qreal x, qreal y) const
    {
        return panelOnScreen().topLeft() + (QPointF(x, y) * m_scale).toPoint();
    }
    [[nodiscard]] bool clickReachesPanel(qreal x, qreal y)
    {
        const int before = m_panel->presses;
        const int beforeOthers = m_others->presses();
        userClicks(pixelAt(x, y));
        if (!QTest::qWaitFor([&] { return m_panel->presses > before || m_others->presses() > beforeOthers; }))
            qFatal("a click reaches nobody");
        return m_panel->presses > before;
    }
    void showPanel(const QRect &frame)
    {
        QPainterPath all;
        all.addRect(QRectF({}, QSizeF(frame.size())));
        m_surface->place({.frame = frame});
        m_surface->setOutline(all);
        m_surface->orderFront();
        QVERIFY(QTest::qWaitForWindowExposed(m_panel.get()));
    }

private Q_SLOTS:
    void init()
    {
        m_others = std::make_unique<ForeignApplication>();
        m_panel = std::make_unique<Panel>();
        m_surface = m_backend.makePanelSurface(*m_panel);
    }
    void cleanup()
    {
        m_surface.reset();
        m_panel.reset();
        m_others.reset();
    }

    void letsClicksThroughOutsideItsActiveRects()
    {
        (void)m_others->open({0, 0, 1280, 800}, Qt::red);
        showPanel({100, 100, 200, 200});
        QVERIFY(!clickReachesPanel(50, 50)); // nothing is active to begin with

        m_surface->setActiveRects({QRectF(10, 10, 60, 60), QRectF(100.25, 100.25, 20.5, 20.5)});
        QVERIFY(clickReachesPanel(50, 50));
        QVERIFY(clickReachesPanel(110, 110));
        QVERIFY(!clickReachesPanel(90, 50));

        m_surface->place({.frame = {60, 60, 240, 240}});
        QVERIFY(clickReachesPanel(50, 50));
        QVERIFY(!clickReachesPanel(90, 50));

        m_panel->windowHandle()->destroy(); // as Qt does on its own when a screen goes away
        m_panel->windowHandle()->create();
        m_surface->orderOut();
        m_surface->orderFront();
        QVERIFY(QTest::qWaitForWindowExposed(m_panel.get()));
        QVERIFY(clickReachesPanel(50, 50));
        QVERIFY(!clickReachesPanel(90, 50));
    }

    void isCutToItsOutlineToThePixelWithoutACompositingManager()
    {
        (void)m_others->open({0, 0, 1280, 800}, Qt::red);
        showPanel({100, 100, 200, 200});
        QVERIFY(!m_surface->isTranslucent());

        const int oddPixel = qRound(101 * m_scale) + 1; // no whole number of units at a scale of 2
        QPainterPath outline;
        outline.addRect(QRectF(QPointF(20, 20), QPointF(oddPixel / m_scale, 120)));
        m_surface->setOutline(outline);
        const QPoint pastRightEdge = pixelAt(0, 50) + QPoint(oddPixel, 0);
        QTRY_COMPARE(pixelOnScreen(pastRightEdge), QColor(Qt::red));
        QTRY_COMPARE(pixelOnScreen(pastRightEdge - QPoint(1, 0)), QColor(Qt::white));
        QCOMPARE(pixelOnScreen(pixelAt(10, 10)), QColor(Qt::red));
    }

    void liesFlushWithTheScreensEdgesWhateverDocksReserve()
    {
        const auto dock = m_others->open({1240, 0, 40, 800}, Qt::blue, ForeignApplication::Dock);
        m_others->setNumbers(dock, "_NET_WM_STRUT_PARTIAL", {0, 40, 0, 0, 0, 0, 0, 800, 0, 0, 0, 0});
        for (const int width : {201, 202, 203}) { // different remainders at a scale of 1.5
            QRect frame(screen().topLeft(), QSize(width, width + 1));
            showPanel(frame);
            QTRY_COMPARE(panelOnScreen().width(), qRound(width * m_scale));
            QTRY_COMPARE(panelOnScreen().topLeft(), QPoint(0, 0));
            frame.moveBottomRight(screen().bottomRight());
            showPanel(frame);
            QTRY_COMPARE(panelOnScreen().width(), qRound(width * m_scale));
            QTRY_COMPARE(panelOnScreen().bottomRight(), QPoint(1279, 799));
        }
    }
};

QTEST_MAIN(TestX11PanelSurface)
#include "tst_x11_panel_surface.moc"

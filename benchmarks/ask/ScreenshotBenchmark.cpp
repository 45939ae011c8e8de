#include <benchmark/benchmark.h>

#include <QApplication>
#include <QBuffer>
#include <QEventLoop>
#include <QPainter>
#include <QProcess>
#include <QWidget>

#include "Ask/ScreenCapturer.h"
#include "Platform/Backend.h"
#include "Platform/Home.h"
#include "Platform/X11/X11Connection.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr QSize display(3840, 2160);

// An X server of its own with a large display. It ends with this object.
class LargeDisplay {
public:
    LargeDisplay()
    {
        const QString size = u"%1x%2x24"_s.arg(display.width()).arg(display.height());
        m_server.start(
            u"Xvfb"_s, {u"-displayfd"_s, u"1"_s, u"-screen"_s, u"0"_s, size, u"-nolisten"_s, u"tcp"_s});
        QByteArray number;
        while (!number.endsWith('\n') && m_server.waitForReadyRead())
            number += m_server.readAll();
        if (number.isEmpty())
            qFatal("Xvfb does not start");
        qputenv("DISPLAY", ':' + number.trimmed());
        qputenv("QT_QPA_PLATFORM", "xcb");
    }
    ~LargeDisplay()
    {
        m_server.terminate();
        m_server.waitForFinished();
    }
    Q_DISABLE_COPY_MOVE(LargeDisplay)

private:
    QProcess m_server;
};

// Text, edges and flat surfaces all over the display.
class Content : public QWidget {
public:
    Content()
    {
        setWindowFlags(Qt::BypassWindowManagerHint);
        setGeometry(QRect(QPoint(), display));
        show();
        while (!m_painted)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        for (int y = 0; y < height(); y += 20)
            for (int x = 0; x < width(); x += 400) {
                painter.fillRect(x, y, 400, 20, QColor::fromHsv((x + y) % 360, 40, 250));
                painter.drawText(x, y + 15, u"%1 what a terminal may show, and then some"_s.arg(x * y));
            }
        m_painted = true;
    }

private:
    bool m_painted = false;
};

XcbReply<xcb_get_image_reply_t> pixels(const X11Connection &x11)
{
    return XcbReply<xcb_get_image_reply_t>(xcb_get_image_reply(
        x11.get(),
        xcb_get_image(
            x11.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, x11.root(), 0, 0, display.width(), display.height(), ~0U),
        nullptr));
}

void bareGrab(benchmark::State &state)
{
    const auto x11 = X11Connection::ofThisProgram();
    while (state.KeepRunning())
        benchmark::DoNotOptimize(pixels(*x11).get());
}

void grab(benchmark::State &state)
{
    const Backend backend = makeBackend(Home(u"/nonexistent"_s));
    while (state.KeepRunning())
        benchmark::DoNotOptimize(backend.screenCapture->grab().constBits());
}

// The floor for a whole screenshot: its three steps, one after another.
void bareGrabScaleAndEncode(benchmark::State &state)
{
    const auto x11 = X11Connection::ofThisProgram();
    while (state.KeepRunning()) {
        const auto reply = pixels(*x11);
        const QImage picture(
            xcb_get_image_data(reply.get()), display.width(), display.height(), QImage::Format_RGB32);
        QBuffer jpeg;
        jpeg.open(QIODevice::WriteOnly);
        picture.scaled(1568, 882, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).save(&jpeg, "JPEG", 80);
    }
}

// From the question to the answer, a thumbnail included.
void screenshot(benchmark::State &state)
{
    const Backend backend = makeBackend(Home(u"/nonexistent"_s));
    ScreenCapturer capturer(*backend.workspace, *backend.screenCapture);
    while (state.KeepRunning()) {
        QEventLoop waiting;
        capturer.capture(backend.workspace->frontApplication(), [&](const ScreenContext &context) {
            if (!context.jpeg)
                state.SkipWithError("there is no picture");
            waiting.quit();
        });
        waiting.exec();
    }
}

} // namespace

} // namespace nubble

int main(int argc, char **argv)
{
    const nubble::LargeDisplay server;
    QApplication application(argc, argv);
    const nubble::Content content;
    using Row = std::pair<const char *, void (*)(benchmark::State &)>;
    for (const auto &[name, run] :
         {Row("bareGrab", nubble::bareGrab), Row("grab", nubble::grab),
          Row("bareGrabScaleAndEncode", nubble::bareGrabScaleAndEncode),
          Row("screenshot", nubble::screenshot)})
        benchmark::RegisterBenchmark(name, run)->Unit(benchmark::kMillisecond)->UseRealTime();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

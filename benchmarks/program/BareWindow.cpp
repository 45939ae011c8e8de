#include <QApplication>
#include <QPainter>
#include <QScreen>
#include <QTimer>
#include <QWidget>

// The least that a translucent panel can be: a window of the panel's kind and size at the same place, painted
// black, and a timer that fires once a second.
namespace {

class BareWindow : public QWidget {
protected:
    void paintEvent(QPaintEvent *) override { QPainter(this).fillRect(rect(), Qt::black); }
};

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    BareWindow window;
    window.setWindowFlags(
        Qt::Tool | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint | Qt::WindowDoesNotAcceptFocus);
    window.setAttribute(Qt::WA_TranslucentBackground);
    window.setAttribute(Qt::WA_ShowWithoutActivating);
    QRect frame(0, 0, 330, 510);
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    frame.moveCenter(screen.center());
    frame.moveRight(screen.right());
    window.setGeometry(frame);
    QTimer timer;
    timer.start(1000);
    window.show();
    return QApplication::exec();
}

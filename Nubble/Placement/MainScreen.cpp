#include "Placement/MainScreen.h"

#include "Platform/MainThread.h"

#include <QGuiApplication>
#include <QScreen>

namespace nubble {

MainScreen::MainScreen(QObject *parent) : QObject(parent)
{
    connect(qApp, &QGuiApplication::primaryScreenChanged, this, &MainScreen::follow);
    follow(QGuiApplication::primaryScreen());
}

std::optional<QRectF> MainScreen::frame() const
{
    assertMainThread("Nubble/Placement/MainScreen");
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen && !screen->geometry().isEmpty() ? std::optional<QRectF>(screen->geometry()) : std::nullopt;
}

std::optional<QRectF> MainScreen::visibleFrame() const
{
    assertMainThread("Nubble/Placement/MainScreen");
    return frame() ? std::optional<QRectF>(QGuiApplication::primaryScreen()->availableGeometry())
                   : std::nullopt;
}

void MainScreen::follow(QScreen *screen)
{
    if (screen) {
        connect(screen, &QScreen::geometryChanged, this, &MainScreen::changed, Qt::UniqueConnection);
        connect(
            screen, &QScreen::logicalDotsPerInchChanged, this, &MainScreen::changed, Qt::UniqueConnection);
    }
    Q_EMIT changed();
}

} // namespace nubble

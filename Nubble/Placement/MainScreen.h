#pragma once

#include <QObject>
#include <QRectF>

#include <optional>

class QScreen;

namespace nubble {

// The screen that the panel lives on, whole: docks and bars included. Main thread only.
class MainScreen : public QObject {
    Q_OBJECT

public:
    explicit MainScreen(QObject *parent = nullptr);

    // In screen coordinates, device-independent pixels; none while no screen is connected.
    [[nodiscard]] std::optional<QRectF> frame() const;

    [[nodiscard]] std::optional<QRectF> visibleFrame() const; // without docks and bars

Q_SIGNALS:
    void changed(); // another screen, another size or scale

private:
    void follow(QScreen *screen);
};

} // namespace nubble

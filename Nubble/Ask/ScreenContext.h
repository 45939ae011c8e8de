#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

#include <optional>

namespace nubble {

// What is known of the screen at the moment at which the user asks.
struct ScreenContext {
    std::optional<QByteArray> jpeg{}; // a picture of one display; none when it could not be taken
    QImage thumbnail{};               // the same, small; null without it
    std::optional<QString> appName{}; // of the application in front
    std::optional<QString> windowTitle{};

    [[nodiscard]] QString label() const; // the two names, as far as they are known

    bool operator==(const ScreenContext &) const = default;
};

struct Screenshot {
    QByteArray jpeg;
    QImage thumbnail;
};

// The picture as it is sent: at most 1568 pixels long, never enlarged, as JPEG of quality 80; and as a view
// shows it. None when there is no picture. Takes some 25 ms for a large display; any thread.
[[nodiscard]] std::optional<Screenshot> encodeScreenshot(const QImage &picture);

} // namespace nubble

#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

#include <optional>

namespace nubble {

// What is known of the screen at the moment at which the user asks.
struct ScreenContext {
    std::optional<QByteArray> jpeg; // a picture of one display; none when it could not be taken
    QImage thumbnail;               // the same, small; null without it
    std::optional<QString> appName; // of the application in front
    std::optional<QString> windowTitle;

    [[nodiscard]] QString label() const; // the two names, as far as they are known

    bool operator==(const ScreenContext &) const = default;
};

// The picture as it is sent: at most 1568 pixels long, never enlarged, as JPEG of quality 80. None when there
// is no picture. Takes some 20 ms for a large display; any thread.
[[nodiscard]] std::optional<QByteArray> encodeScreenshot(const QImage &picture);

// What a view shows of it; null when that is no picture. Any thread.
[[nodiscard]] QImage thumbnailOf(const QByteArray &jpeg);

} // namespace nubble

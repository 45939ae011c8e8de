#pragma once

#include <QColor>
#include <QObject>

#include <optional>

namespace nubble {

// The part of the desktop that shows status items ("tray icons"). It may come after this program, and go.
// Main thread only.
class StatusHost : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    enum class Kind {
        None,
        Embedding, // shows a window of ours, so that menus are drawn by us
        Remote     // is told what to show, and draws the menu itself
    };

    [[nodiscard]] virtual Kind kind() const = 0;

    // The colour of icons on it, where it says so.
    [[nodiscard]] virtual std::optional<QColor> foreground() const { return std::nullopt; }

Q_SIGNALS:
    void changed();
};

} // namespace nubble

#pragma once

namespace nubble {

// A tab or pane that a session is seen in, of a terminal or of a multiplexer. Both operations ask the program
// that it belongs to and wait for it, a second at most; for worker threads. Failures are silent.
class TerminalPane {
public:
    virtual ~TerminalPane() = default;

    virtual void select() const = 0;

    // Whether it is the one that its window shows; yes where that cannot be known.
    [[nodiscard]] virtual bool isSelected() const = 0;
};

} // namespace nubble

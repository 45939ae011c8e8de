#pragma once

#include <QtGlobal>

namespace nubble {

// Wall-clock time, handed to whoever measures spans so that a test can move it. Any thread.
class Clock {
public:
    virtual ~Clock();
    [[nodiscard]] virtual qint64 msecsSinceEpoch() const = 0; // UTC
};

class SystemClock : public Clock {
public:
    [[nodiscard]] qint64 msecsSinceEpoch() const override;
};

} // namespace nubble

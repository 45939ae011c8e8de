#pragma once

#include <QObject>

#include <deque>
#include <functional>

#include "Ask/ScreenContext.h"
#include "Shell/SerialWorker.h"

namespace nubble {

class ScreenCapture;
class Workspace;
struct RunningApplication;

// Takes what is to be known of the screen, one capture after another. The main thread is blocked for the grab
// of the pixels alone. Main thread only; calls nobody back once it has gone.
class ScreenCapturer : public QObject {
    Q_OBJECT

public:
    ScreenCapturer(const Workspace &workspace, ScreenCapture &screen, QObject *parent = nullptr);

    // With the names of that application, which are read at once, and the display under the pointer as it is
    // when those asked for before are done: now, when there are none. `grabbed` is called as soon as that has
    // been looked at, even before this returns, `done` with the result, later.
    using Done = std::function<void(const ScreenContext &)>;
    void capture(
        const std::optional<RunningApplication> &front, const Done &done,
        const std::function<void()> &grabbed = {});

private:
    struct Request {
        ScreenContext names;
        Done done;
        std::function<void()> grabbed;
    };

    void startNext();
    void finish(const Request &request, const ScreenContext &context);

    const Workspace &m_workspace;
    ScreenCapture &m_screen;
    std::deque<Request> m_waiting;
    bool m_isRunning = false;
    SerialWorker m_worker{QStringLiteral("screenshot")};
};

} // namespace nubble

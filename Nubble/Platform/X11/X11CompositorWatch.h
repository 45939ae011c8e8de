#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <memory>

namespace nubble {

class X11Connection;

// Knows whether a compositing manager runs on this screen. Main thread only.
class X11CompositorWatch : public QObject, private QAbstractNativeEventFilter {
    Q_OBJECT

public:
    explicit X11CompositorWatch(std::shared_ptr<const X11Connection> x11);

    [[nodiscard]] bool isRunning() const { return m_running; }

Q_SIGNALS:
    void changed();

private:
    bool nativeEventFilter(const QByteArray &type, void *message, qintptr *result) override;
    void setRunning(bool running);

    std::shared_ptr<const X11Connection> m_x11;
    uint8_t m_firstEvent = 0; // of the XFixes extension; 0 without it
    bool m_running = false;
};

} // namespace nubble

#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <memory>
#include <xcb/xcb.h>

namespace nubble {

class X11Connection;

// Whether a window can be seen at all, as far as the X server says so. A screen that DPMS switches off is a
// blank one; whether other windows lie over a translucent one only servers without the Composite extension
// know. Main thread only.
class X11Visibility : public QObject, private QAbstractNativeEventFilter {
    Q_OBJECT

public:
    explicit X11Visibility(std::shared_ptr<const X11Connection> x11);

    void watch(xcb_window_t window); // instead of the one before

    [[nodiscard]] bool isScreenBlank() const { return m_isScreenBlank; }
    [[nodiscard]] bool isCovered() const { return m_isCovered; } // all over, by other windows

Q_SIGNALS:
    void changed();

private:
    bool nativeEventFilter(const QByteArray &type, void *message, qintptr *result) override;
    void watchScreenSaver();
    void set(bool &value, bool now);

    std::shared_ptr<const X11Connection> m_x11;
    uint8_t m_firstEvent = 0; // of the screen saver extension; 0 without it
    xcb_window_t m_window = XCB_WINDOW_NONE;
    bool m_isScreenBlank = false;
    bool m_isCovered = false;
};

} // namespace nubble

#pragma once

#include <QAbstractNativeEventFilter>

#include <memory>

#include "Platform/MouseMonitor.h"

namespace nubble {

class X11Connection;

// Listens to raw button presses, which arrive also while another program holds the pointer. One at a time:
// the last one to go ends the listening.
class X11MouseMonitor : public MouseMonitor, private QAbstractNativeEventFilter {
    Q_OBJECT

public:
    explicit X11MouseMonitor(std::shared_ptr<const X11Connection> x11);
    ~X11MouseMonitor() override;

    [[nodiscard]] bool canWatch() const override { return m_extension != 0; }

private:
    bool nativeEventFilter(const QByteArray &type, void *message, qintptr *result) override;
    void select(uint32_t events) const;
    [[nodiscard]] bool isPointerOverOwnWindow() const;

    std::shared_ptr<const X11Connection> m_x11;
    uint8_t m_extension = 0; // 0 without XInput
};

} // namespace nubble

#pragma once

#include <QAbstractNativeEventFilter>

#include <memory>

#include "Platform/PlainFloatingSurface.h"
#include "Platform/X11/X11SelectionWatch.h"

namespace nubble {

class X11Connection;

// A floating window that the window manager manages, for only such a one is focused and dragged everywhere.
// What the window manager must know stands on the window before it is mapped, and what it does differently
// is asked for again.
class X11FloatingSurface : public PlainFloatingSurface, private QAbstractNativeEventFilter {
    Q_OBJECT

public:
    X11FloatingSurface(QWidget &window, std::shared_ptr<const X11Connection> x11);

    void place(const QRect &frame) override;
    void orderFront() override;
    void orderOut() override;
    void setUnseen(bool unseen) override;
    void startMove() override;
    [[nodiscard]] bool isTranslucent() const override { return m_compositor.isOwned(); }
    void setOutline(const QPainterPath &outline) override;

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool nativeEventFilter(const QByteArray &type, void *message, qintptr *result) override;
    [[nodiscard]] uint32_t nativeWindow() const; // 0 while there is none
    void describe() const;
    void askForKeyboard() const;
    void takeKeyboard() const;
    void settle() const;
    void correctPosition() const;
    void applyOutline() const;

    std::shared_ptr<const X11Connection> m_x11;
    X11SelectionWatch m_compositor;
    QTimer m_settling; // runs while the window manager may still be busy with an opening
    bool m_unseen = false;
    bool m_keyboardCame = false; // since the last opening
    QRect m_frame;               // empty once the user has dragged the window
    QPainterPath m_outline;
};

} // namespace nubble

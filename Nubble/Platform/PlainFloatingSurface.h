#pragma once

#include <QTimer>

#include <optional>

#include "Platform/FloatingSurface.h"

class QWidget;
class QWindow;

namespace nubble {

// As much of a floating window as Qt alone gives. A backend adds what its desktop needs.
class PlainFloatingSurface : public FloatingSurface {
    Q_OBJECT

public:
    explicit PlainFloatingSurface(QWidget &window);

    void place(const QRect &frame) override;
    void orderFront() override;
    void orderOut() override;
    void setUnseen(bool unseen) override;
    [[nodiscard]] bool hasKeyboard() const override;
    void startMove() override;
    [[nodiscard]] bool isTranslucent() const override { return true; }
    void setOutline(const QPainterPath &) override { }

    bool eventFilter(QObject *watched, QEvent *event) override;

protected:
    [[nodiscard]] QWidget &window() const { return m_window; }
    void noteKeyboard(); // Qt tells nobody when the window was hidden so shortly that it has not noticed

private:
    [[nodiscard]] bool isOwn(const QWindow *focused) const;
    void followKeyboard(QWindow *focused);
    void takeKeyboardBack(bool dialogVisible);

    QWidget &m_window;
    QTimer m_takingBack;
    bool m_hadKeyboard = false;   // when it was said last
    std::optional<QPoint> m_grip; // while it is moved by hand: the pointer's place in the window
};

} // namespace nubble

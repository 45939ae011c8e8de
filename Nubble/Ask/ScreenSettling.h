#pragma once

#include <QImage>
#include <QObject>
#include <QTimer>

#include <functional>

namespace nubble {

// Waits until the screen has been drawn anew after a window was taken out of sight: by the windows below it,
// or by a compositing manager, which may let it fade. Main thread only.
class ScreenSettling : public QObject {
    Q_OBJECT

public:
    using Look = std::function<QImage()>; // at the part of the screen in question

    explicit ScreenSettling(Look look, QObject *parent = nullptr);

    // `before` is what it looked like with the window. Settled is what looks different and has stayed so for
    // a while; what keeps moving is waited for only so long.
    void start(const QImage &before);
    [[nodiscard]] bool isActive() const { return m_timer.isActive(); }

Q_SIGNALS:
    void settled();

private:
    void lookAgain();

    Look m_look;
    QTimer m_timer;
    QImage m_before;
    QImage m_last;
    int m_looks = 0;
    int m_same = 0; // how often in a row
};

} // namespace nubble

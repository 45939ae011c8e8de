#pragma once

#include <QObject>
#include <QVariantAnimation>

namespace nubble {

// Time and way of the panel when it goes from one edge to another: it fades out into the one, and in from the
// other. Main thread only.
class EdgeTransition : public QObject {
    Q_OBJECT

public:
    explicit EdgeTransition(QObject *parent = nullptr);

    void start();
    void stop(); // what has begun is as if it were done; says nothing

    [[nodiscard]] bool isLeaving() const;                        // the first edge, until `turned`
    [[nodiscard]] double presence() const { return m_presence; } // 1 as it is at rest, 0 not seen
    [[nodiscard]] double distance() const;                       // into the edge

Q_SIGNALS:
    void turned(); // it is not seen, and can go to the other edge
    void presenceChanged();

private:
    void run(double to, int duration);

    QVariantAnimation m_motion;
    double m_presence = 1;
};

} // namespace nubble

#pragma once

#include <QVariantAnimation>
#include <QWidget>

namespace nubble {

// A ring with a turning arc: something is under way, nobody knows for how long. Turns only while it is seen.
class Spinner : public QWidget {
    Q_OBJECT

public:
    explicit Spinner(int side, QWidget *parent = nullptr);

    void setMotionReduced(bool reduced);

protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void follow();

    QVariantAnimation m_turn;
    bool m_motionReduced = false;
};

} // namespace nubble

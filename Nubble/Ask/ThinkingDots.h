#pragma once

#include <QVariantAnimation>
#include <QWidget>

namespace nubble {

// Three dots for a reply that is awaited. They breathe while they are seen; with reduced motion they rest.
class ThinkingDots : public QWidget {
    Q_OBJECT

public:
    explicit ThinkingDots(QWidget *parent = nullptr);

    void setMotionReduced(bool reduced);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void follow();

    bool m_motionReduced = false;
    QVariantAnimation m_breath;
};

} // namespace nubble

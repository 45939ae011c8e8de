#pragma once

#include <QAbstractButton>
#include <QColor>
#include <QElapsedTimer>
#include <QTimer>

#include <optional>

#include "Widgets/HoverLift.h"

namespace nubble {

// A round button with a symbol, for the body and for cards. Lifts under the pointer and shows the keyboard's
// focus; the help text is its tool tip and its accessible name.
class NotchButton : public QAbstractButton {
    Q_OBJECT

public:
    NotchButton(const QString &symbol, const QString &helpText, QWidget *parent = nullptr);

    void setSymbol(const QString &symbol);
    void setHelpText(const QString &helpText);
    void setTint(const QColor &tint);
    void setSide(double side);        // of the circle that it shows, in units
    void setRotation(double degrees); // of the symbol, clockwise
    void setPulsing(bool pulsing);    // the symbol, slowly, while it is seen

    // To be touched in that area, with the circle somewhere within it; both in the parent's coordinates. By
    // itself the circle is in the middle.
    void place(const QRect &area, const QPointF &center);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void followPulse();
    [[nodiscard]] float pulse() const; // of the symbol's density

    QString m_symbol;
    QColor m_tint;
    double m_side;
    std::optional<QPointF> m_center; // of the circle, in units
    double m_rotation = 0;
    bool m_pulsing = false;
    QTimer m_pulse;
    QElapsedTimer m_sincePulse;
    HoverLift m_hover;
};

} // namespace nubble

#pragma once

#include <QFont>
#include <QMargins>
#include <QPainter>
#include <QSize>

class QWidget;

namespace nubble {

// What the panel is made of is measured in units, so that it can be shown larger or smaller: a window says
// how many device-independent pixels one has. In every other window a unit is a pixel. Main thread only.
namespace Units {

// Of all that is in the window. What has its size already keeps it.
void set(QWidget &window, double unit);

// Where the widget is; it should have its parent by then.
[[nodiscard]] double of(const QWidget *widget);

// Lengths in the widget's units, as whole pixels, and a font for what the toolkit draws by itself.
[[nodiscard]] int px(const QWidget *widget, double length);
[[nodiscard]] QSize px(const QWidget *widget, const QSizeF &size);
[[nodiscard]] QMargins px(const QWidget *widget, const QMargins &margins);
[[nodiscard]] QFont px(const QWidget *widget, QFont font);

} // namespace Units

// Paints a widget in its units.
class UnitPainter : public QPainter {
public:
    explicit UnitPainter(QWidget *widget);

    [[nodiscard]] QRectF area() const { return m_area; } // all of the widget

private:
    QRectF m_area;
};

} // namespace nubble

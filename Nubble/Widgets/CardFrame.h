#pragma once

#include <QPainterPath>
#include <QPixmap>
#include <QSize>

namespace nubble {

// How every card and floating window looks below its content.
struct CardFrame {
    static constexpr int margin = 12; // around it, for the shadow

    QPainterPath outline;
    QPainterPath shadowOutline; // what casts the shadow: the outline without its tail

    // A card without a tail.
    [[nodiscard]] static CardFrame rounded(const QRectF &card);

    // The near-black fill with its inner line, and the shadow around it. Without translucency it is opaque
    // and goes on beyond the outline, which the window is cut to.
    [[nodiscard]] QPixmap drawn(const QSize &size, qreal scale, bool translucent) const;
};

} // namespace nubble

#pragma once

#include <QLineF>
#include <QPainterPath>
#include <QPixmap>
#include <QRegion>
#include <QSize>

#include "Widgets/SoftShadow.h"

namespace nubble {

// How every card and floating window looks below its content.
struct CardFrame {
    QPainterPath outline;
    QLineF tail = {}; // from the card to its tail's tip; null without a tail
    std::span<const ShadowLayer> shadow = cardShadow;
    bool isOpaque = false; // where texts lie below, which would shine through

    // A card without a tail.
    [[nodiscard]] static CardFrame rounded(const QRectF &card);

    // The near-black fill with its inner line, both of which become the body's black towards the tail's tip,
    // and the shadow around them. Without translucency it is opaque and goes on beyond the outline, which the
    // window is cut to. `size` is in device-independent pixels, the frame in units of so many of them.
    [[nodiscard]] QPixmap drawn(const QSize &size, qreal scale, bool translucent, double unit = 1) const;

    // What to cut such a window to, where it is not cut exactly: the pixels that are within the outline.
    [[nodiscard]] QRegion region(const QSize &size, double unit = 1) const;
};

} // namespace nubble

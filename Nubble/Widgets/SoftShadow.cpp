#include "Widgets/SoftShadow.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>

#include "Placement/PanelShapes.h"
#include "Widgets/Palette.h"

namespace nubble {

namespace {

constexpr int boxes = 3; // one after the other they are nearly a bell

static_assert(std::ranges::all_of(cardShadow, [](const ShadowLayer &each) {
    return each.reach <= cardShadowRoom.left() && each.reach - each.drop <= cardShadowRoom.top()
        && each.reach + each.drop <= cardShadowRoom.bottom();
}));

// The mean of each pixel and `radius` ones on either side; there is nothing beyond the line's ends. `copy`
// has room for the line.
void blurLine(uchar *line, qsizetype step, int count, int radius, uchar *copy)
{
    for (int i = 0; i < count; ++i)
        copy[i] = line[i * step];
    int sum = 0;
    for (int i = -radius; i < count; ++i) {
        sum += i + radius < count ? copy[i + radius] : 0;
        if (i >= 0)
            line[i * step] = static_cast<uchar>((sum + radius) / (2 * radius + 1));
        sum -= i >= radius ? copy[i - radius] : 0;
    }
}

void blur(QImage &mask, int radius)
{
    QList<uchar> copy(std::max(mask.width(), mask.height()));
    for (int box = 0; box < boxes; ++box) {
        for (int y = 0; y < mask.height(); ++y)
            blurLine(mask.scanLine(y), 1, mask.width(), radius, copy.data());
        for (int x = 0; x < mask.width(); ++x)
            blurLine(mask.bits() + x, mask.bytesPerLine(), mask.height(), radius, copy.data());
    }
}

void drawLayer(QPainter &painter, const QPainterPath &outline, const ShadowLayer &layer)
{
    // What is blurred far needs few pixels.
    constexpr double finestReach = 12;
    const double scale = std::min(painter.deviceTransform().m11(), finestReach / layer.reach);
    const QRectF area = outline.boundingRect().adjusted(-layer.reach, -layer.reach, layer.reach, layer.reach);
    QImage mask((area.size() * scale).toSize() + QSize(1, 1), QImage::Format_Alpha8);
    mask.fill(0);
    QPainter onMask(&mask);
    onMask.setRenderHint(QPainter::Antialiasing);
    onMask.scale(scale, scale);
    onMask.translate(-area.topLeft());
    onMask.fillPath(outline, Palette::shadow);
    onMask.end();
    blur(mask, std::max(1, static_cast<int>(layer.reach * scale / boxes)));

    painter.setOpacity(layer.density);
    painter.drawImage(
        QRectF(area.topLeft() + QPointF(0, layer.drop), QSizeF(mask.size()) / scale),
        mask.convertToFormat(QImage::Format_ARGB32_Premultiplied));
}

} // namespace

void drawSoftShadow(QPainter &painter, const QPainterPath &outline, std::span<const ShadowLayer> layers)
{
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    for (const ShadowLayer &layer : layers)
        drawLayer(painter, outline, layer);
    painter.restore();
}

} // namespace nubble

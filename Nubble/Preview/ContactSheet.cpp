#include "Preview/ContactSheet.h"

#include <QPainter>

#include <algorithm>

#include "Widgets/Palette.h"
#include "Widgets/Typography.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr QColor paper(27, 30, 34);
constexpr int columns = 7;
constexpr int margin = 28; // around all, and between the pictures
constexpr int headingHeight = 30;
constexpr int labelHeight = 22;

struct Place {
    const PreviewPicture *picture;
    QRectF rect;
    bool isFirst; // of its card
};

struct Arrangement {
    QList<Place> places;
    QSizeF size;
};

QSizeF largest(const QList<PreviewPicture> &pictures)
{
    QSizeF size;
    for (const PreviewPicture &each : pictures)
        size = size.expandedTo(each.image.deviceIndependentSize());
    return size;
}

// Each card begins a line of its own; a line is as high as its highest picture.
Arrangement arranged(const QList<PreviewPicture> &pictures)
{
    Arrangement result;
    const double column = largest(pictures).width() + margin;
    double top = 0;
    double bottom = margin;
    int inLine = 0;
    QLatin1String card;
    for (const PreviewPicture &each : pictures) {
        const bool isFirst = each.sample.card != card;
        card = each.sample.card;
        if (isFirst || inLine == columns) {
            inLine = 0;
            top = bottom + labelHeight + (isFirst ? headingHeight : 0);
        }
        const QRectF rect({margin + column * inLine++, top}, each.image.deviceIndependentSize());
        bottom = std::max(bottom, rect.bottom() + margin);
        result.places.append({&each, rect, isFirst});
    }
    result.size = {margin + column * columns, bottom};
    return result;
}

void drawLine(QPainter &painter, double bottom, double left, const QFont &font, const QString &text)
{
    painter.setFont(font);
    painter.drawText(QRectF(left, bottom - headingHeight, 600, headingHeight), Qt::AlignVCenter, text);
}

void draw(QPainter &painter, const Place &place)
{
    painter.drawImage(place.rect, place.picture->image);
    const double top = place.rect.top();
    const double left = place.rect.left();
    painter.setPen(Palette::textSecondary);
    drawLine(painter, top, left, Typography::rowTitle(), place.picture->sample.state);
    if (!place.isFirst)
        return;
    painter.setPen(Palette::textPrimary);
    drawLine(painter, top - labelHeight, left, Typography::heading(1), place.picture->sample.card);
}

} // namespace

QImage contactSheet(const QList<PreviewPicture> &pictures)
{
    const Arrangement arrangement = arranged(pictures);
    const qreal scale = pictures.isEmpty() ? 1 : pictures.first().image.devicePixelRatio();
    QImage sheet((arrangement.size * scale).toSize(), QImage::Format_RGB32);
    sheet.setDevicePixelRatio(scale);
    sheet.fill(paper);
    QPainter painter(&sheet);
    for (const Place &place : arrangement.places)
        draw(painter, place);
    return sheet;
}

} // namespace nubble

#include "Widgets/Symbols.h"
#include "Platform/MainThread.h"

#include <QHash>
#include <QPainter>
#include <QPixmap>
#include <QPixmapCache>
#include <QSvgRenderer>

#include <cmath>

#include "Widgets/PixelGrid.h"

using namespace Qt::StringLiterals;

namespace nubble::Symbols {

namespace {

QPixmap render(const QString &name, const QSizeF &size, const QColor &tint, double scale)
{
    QPixmap pixmap((size * scale).toSize());
    pixmap.fill(Qt::transparent);
    QSvgRenderer renderer(u":/symbols/"_s + name + u".svg"_s);
    Q_ASSERT_X(renderer.isValid(), "Symbols", qPrintable(name));
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    QPainter painter(&pixmap);
    renderer.render(&painter);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(pixmap.rect(), tint);
    painter.end();
    pixmap.setDevicePixelRatio(scale);
    return pixmap;
}

} // namespace

void draw(QPainter &painter, const QString &name, const QRectF &rect, const QColor &tint)
{
    assertMainThread("Nubble/Widgets/Symbols");
    const QTransform &onDevice = painter.deviceTransform();
    const double scale = std::sqrt(std::abs(onDevice.determinant()));
    const QString key = u"symbol %1 %2 %3 %4"_s.arg(name).arg(rect.width()).arg(tint.rgba()).arg(scale);
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = render(name, rect.size(), tint, scale);
        QPixmapCache::insert(key, pixmap);
    }
    // Whole device pixels keep the drawing sharp, unless it is turned.
    const bool isTurned = onDevice.type() > QTransform::TxScale;
    painter.drawPixmap(isTurned ? rect.topLeft() : PixelGrid::aligned(painter, rect.topLeft()), pixmap);
}

} // namespace nubble::Symbols

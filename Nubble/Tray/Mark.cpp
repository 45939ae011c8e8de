#include "Tray/Mark.h"

#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>

namespace nubble::Mark {

namespace {

// In units of the whole, from the lower left corner.
constexpr std::array body{
    QRectF(0.10, 0.26, 0.60, 0.60), QRectF(0.46, 0.18, 0.44, 0.44), QRectF(0.53, 0.57, 0.34, 0.34),
    QRectF(0.15, 0.11, 0.30, 0.30)};
constexpr std::array eyes{QRectF(0.31, 0.47, 0.18, 0.18), QRectF(0.615, 0.335, 0.13, 0.13)};

template <size_t N> QPainterPath circles(const std::array<QRectF, N> &rects)
{
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    for (const QRectF &rect : rects)
        path.addEllipse(rect);
    return path;
}

QPixmap pixmap(int pixels, const std::optional<QColor> &color, double opacity)
{
    QPixmap pixmap(pixels, pixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(0, pixels);
    painter.scale(pixels, -pixels);
    const QPainterPath shape = circles(body);
    const QPainterPath holes = circles(eyes);
    const QPen edge(Qt::black, 2 * std::max(1.0, pixels / 16.0) / pixels);
    if (!color)
        painter.strokePath(shape, edge);
    painter.fillPath(shape, color.value_or(Qt::white));
    if (!color)
        painter.strokePath(holes, edge);
    painter.setCompositionMode(QPainter::CompositionMode_Clear);
    painter.fillPath(holes, Qt::black);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.fillRect(QRectF(0, 0, 1, 1), QColor::fromRgbF(0, 0, 0, static_cast<float>(opacity)));
    return pixmap;
}

class Engine : public QIconEngine {
public:
    Engine(const std::optional<QColor> &color, double opacity, const QString &themeName)
        : m_color(color), m_opacity(opacity), m_themeName(themeName)
    {
    }

    [[nodiscard]] QIconEngine *clone() const override { return new Engine(*this); }
    [[nodiscard]] QString key() const override { return QStringLiteral("nubble-mark"); }
    QString iconName() override { return m_themeName; }

    QPixmap pixmap(const QSize &size, QIcon::Mode, QIcon::State) override
    {
        return Mark::pixmap(std::min(size.width(), size.height()), m_color, m_opacity);
    }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode, QIcon::State) override
    {
        const double scale = painter->device()->devicePixelRatioF();
        const int side = std::min(rect.width(), rect.height());
        QPixmap pixmap = Mark::pixmap(qRound(side * scale), m_color, m_opacity);
        pixmap.setDevicePixelRatio(scale);
        painter->drawPixmap(
            rect.x() + (rect.width() - side) / 2, rect.y() + (rect.height() - side) / 2, pixmap);
    }

    // What status item hosts are sent.
    QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override
    {
        return {{16, 16}, {22, 22}, {24, 24}, {32, 32}, {48, 48}, {64, 64}};
    }

private:
    std::optional<QColor> m_color;
    double m_opacity;
    QString m_themeName;
};

} // namespace

QIcon icon(const std::optional<QColor> &color, bool panelVisible, const QString &themeName)
{
    const double hidden = color ? 0.45 : 0.6; // of two colours, whichever stands out on its ground still does
    return QIcon(new Engine(color, panelVisible ? 1 : hidden, themeName));
}

} // namespace nubble::Mark

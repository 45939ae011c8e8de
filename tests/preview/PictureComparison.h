#pragma once

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <array>
#include <cstdlib>

namespace nubble {

// How far apart two pictures of one size are for the eye: the largest mean difference of a colour channel, 0
// to 255, in any square of 8 by 8 pixels. What a smaller palette or another rasteriser changes is spread out;
// what has moved, or has another colour, is not.
class PictureComparison {
public:
    static constexpr double tolerance = 2.5;

    PictureComparison(const QImage &stored, const QImage &drawn)
        : m_stored(stored.convertToFormat(QImage::Format_RGB32)),
          m_drawn(drawn.convertToFormat(QImage::Format_RGB32))
    {
    }

    [[nodiscard]] bool isSame() const { return m_stored.size() == m_drawn.size() && distance() <= tolerance; }

    [[nodiscard]] double distance() const
    {
        double farthest = 0;
        for (int top = 0; top < m_stored.height(); top += side / 2)
            for (int left = 0; left < m_stored.width(); left += side / 2)
                farthest = std::max(farthest, distanceIn(left, top));
        return farthest;
    }

    // Both beside each other, and what tells them apart.
    [[nodiscard]] QImage shown() const
    {
        const QSize size = m_stored.size().expandedTo(m_drawn.size());
        QImage all(size.width() * 3, size.height(), QImage::Format_RGB32);
        all.fill(Qt::black);
        QPainter painter(&all);
        painter.drawImage(0, 0, m_stored);
        painter.drawImage(size.width(), 0, m_drawn);
        painter.drawImage(size.width() * 2, 0, m_stored);
        painter.setCompositionMode(QPainter::CompositionMode_Difference);
        painter.drawImage(size.width() * 2, 0, m_drawn);
        painter.setCompositionMode(QPainter::CompositionMode_ColorDodge); // or nobody would see it
        painter.fillRect(QRect(QPoint(size.width() * 2, 0), size), QColor(220, 220, 220));
        return all;
    }

private:
    static constexpr int side = 8;

    [[nodiscard]] double distanceIn(int left, int top) const
    {
        std::array<int, 3> sums{};
        for (int y = top; y < std::min(top + side, m_stored.height()); ++y) {
            const auto *stored = reinterpret_cast<const QRgb *>(m_stored.constScanLine(y));
            const auto *drawn = reinterpret_cast<const QRgb *>(m_drawn.constScanLine(y));
            for (int x = left; x < std::min(left + side, m_stored.width()); ++x) {
                sums[0] += std::abs(qRed(stored[x]) - qRed(drawn[x]));
                sums[1] += std::abs(qGreen(stored[x]) - qGreen(drawn[x]));
                sums[2] += std::abs(qBlue(stored[x]) - qBlue(drawn[x]));
            }
        }
        return 1.0 * *std::ranges::max_element(sums) / (side * side);
    }

    QImage m_stored;
    QImage m_drawn;
};

} // namespace nubble

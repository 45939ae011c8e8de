#pragma once

#include <QMargins>
#include <QPoint>
#include <QString>

#include <array>
#include <optional>

namespace nubble {

// The screen edge that the panel sits on.
enum class NotchEdge { Right, Left, Top, Bottom };

inline constexpr std::array allEdges{NotchEdge::Right, NotchEdge::Left, NotchEdge::Top, NotchEdge::Bottom};

[[nodiscard]] QString rawValue(NotchEdge edge); // how it is stored
[[nodiscard]] std::optional<NotchEdge> edgeFrom(const QString &rawValue);
[[nodiscard]] QString title(NotchEdge edge); // for menus

// Whether the panel runs from top to bottom.
[[nodiscard]] constexpr bool isVertical(NotchEdge edge)
{
    return edge == NotchEdge::Right || edge == NotchEdge::Left;
}

// A step of one towards it.
[[nodiscard]] QPoint stepTowards(NotchEdge edge);

// The same for those who know nothing of the panel.
[[nodiscard]] Qt::Edge qtEdge(NotchEdge edge);

// Of these margins the one on its side alone.
[[nodiscard]] QMarginsF onlyOn(NotchEdge edge, const QMarginsF &margins);

} // namespace nubble

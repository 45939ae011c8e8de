#include "Placement/NotchEdge.h"

using namespace Qt::StringLiterals;

namespace nubble {

QString rawValue(NotchEdge edge)
{
    switch (edge) {
    case NotchEdge::Right:
        return u"right"_s;
    case NotchEdge::Left:
        return u"left"_s;
    case NotchEdge::Top:
        return u"top"_s;
    case NotchEdge::Bottom:
        break;
    }
    return u"bottom"_s;
}

std::optional<NotchEdge> edgeFrom(const QString &raw)
{
    for (const NotchEdge edge : allEdges)
        if (rawValue(edge) == raw)
            return edge;
    return std::nullopt;
}

QString title(NotchEdge edge)
{
    const QString raw = rawValue(edge);
    return raw.first(1).toUpper() + raw.sliced(1);
}

QPoint stepTowards(NotchEdge edge)
{
    switch (edge) {
    case NotchEdge::Right:
        return {1, 0};
    case NotchEdge::Left:
        return {-1, 0};
    case NotchEdge::Top:
        return {0, -1};
    case NotchEdge::Bottom:
        break;
    }
    return {0, 1};
}

Qt::Edge qtEdge(NotchEdge edge)
{
    switch (edge) {
    case NotchEdge::Right:
        return Qt::RightEdge;
    case NotchEdge::Left:
        return Qt::LeftEdge;
    case NotchEdge::Top:
        return Qt::TopEdge;
    case NotchEdge::Bottom:
        break;
    }
    return Qt::BottomEdge;
}

QMarginsF onlyOn(NotchEdge edge, const QMarginsF &margins)
{
    switch (edge) {
    case NotchEdge::Right:
        return {0, 0, margins.right(), 0};
    case NotchEdge::Left:
        return {margins.left(), 0, 0, 0};
    case NotchEdge::Top:
        return {0, margins.top(), 0, 0};
    case NotchEdge::Bottom:
        break;
    }
    return {0, 0, 0, margins.bottom()};
}

} // namespace nubble

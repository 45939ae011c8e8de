#pragma once

class QPainter;
class QPointF;
class QString;

namespace nubble::Avatar {

// A sender as a disc with the initial of the name; device-independent pixels.
inline constexpr int side = 26;
void draw(QPainter &painter, const QPointF &corner, const QString &initial);

} // namespace nubble::Avatar

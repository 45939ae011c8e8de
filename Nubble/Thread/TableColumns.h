#pragma once

#include <QList>
#include <QStringView>

class QFontMetricsF;

namespace nubble {

// How wide the columns of a table are: as wide as their texts where all fit into `available`, else the wide
// ones share what the narrow ones leave. `sample` is its header and first rows, as Markdown; `padding` is on
// both sides of each cell's text. Pure.
[[nodiscard]] QList<double> tableColumns(
    QStringView sample, const QFontMetricsF &metrics, double padding, double available);

} // namespace nubble

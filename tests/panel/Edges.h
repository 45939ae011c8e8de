#pragma once

#include <QTest>

#include "Panel/NotchEdge.h"

namespace nubble {

// One test row for each edge, in a column "edge".
inline void addEdgeRows()
{
    QTest::addColumn<NotchEdge>("edge");
    for (const NotchEdge edge : allEdges)
        QTest::newRow(qPrintable(rawValue(edge))) << edge;
}

} // namespace nubble

#include "Thread/TableColumns.h"

#include <QFontMetricsF>

#include <algorithm>
#include <numeric>

#include "Thread/MarkdownLine.h"

namespace nubble {

namespace {

constexpr qsizetype longestMeasured = 80; // characters; wider cells are wrapped whatever they are

// About what the cell shows: without marks of emphasis and where its links lead.
QString shown(QStringView cell)
{
    QString text;
    bool isTarget = false;
    for (qsizetype i = 0; i < cell.size() && text.size() < longestMeasured; ++i) {
        const QChar each = cell.at(i);
        if (isTarget)
            isTarget = each != u')';
        else if (each == u']' && i + 1 < cell.size() && cell.at(i + 1) == u'(')
            isTarget = true;
        else if (!QStringView(u"*`~[").contains(each))
            text += each;
    }
    return text;
}

QList<double> naturalWidths(QStringView sample, const QFontMetricsF &metrics, double padding)
{
    QList<double> widths;
    for (const QStringView row : sample.split(u'\n')) {
        const QList<QStringView> cells = MarkdownLine::cells(row);
        if (widths.isEmpty())
            widths.resize(cells.size(), 0);
        for (qsizetype i = 0; i < std::min(cells.size(), widths.size()); ++i) {
            constexpr double emphasis = 1.06; // headers and code are a little wider
            const double text = metrics.horizontalAdvance(shown(cells.at(i))) * emphasis;
            widths[i] = std::max(widths.at(i), std::ceil(text + 2 * padding + 1));
        }
    }
    return widths;
}

} // namespace

QList<double> tableColumns(QStringView sample, const QFontMetricsF &metrics, double padding, double available)
{
    QList<double> widths = naturalWidths(sample, metrics, padding);
    if (std::accumulate(widths.begin(), widths.end(), 0.0) <= available)
        return widths;
    QList<double> ascending = widths;
    std::sort(ascending.begin(), ascending.end());
    double share = 0;
    double left = available;
    for (qsizetype i = 0; i < ascending.size(); ++i) {
        share = left / static_cast<double>(ascending.size() - i);
        if (ascending.at(i) > share)
            break;
        left -= ascending.at(i);
    }
    for (double &width : widths)
        width = std::floor(std::min(width, share));
    return widths;
}

} // namespace nubble

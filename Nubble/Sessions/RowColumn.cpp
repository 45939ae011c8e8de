#include "Sessions/RowColumn.h"

#include <QResizeEvent>

#include <algorithm>

namespace nubble {

RowColumn::RowColumn(int rowHeight, QWidget *parent) : QWidget(parent), m_rowHeight(rowHeight)
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void RowColumn::setCount(int count)
{
    if (m_count == count)
        return;
    m_count = count;
    updateGeometry();
}

void RowColumn::place(QWidget *row, int number)
{
    row->setGeometry(0, number * pitch(), width(), m_rowHeight);
    row->show();
}

QSize RowColumn::sizeHint() const
{
    return {100, std::max(0, m_count * pitch() - 1)};
}

void RowColumn::resizeEvent(QResizeEvent *event)
{
    if (event->size().width() == event->oldSize().width())
        return;
    for (QWidget *row : findChildren<QWidget *>(Qt::FindDirectChildrenOnly))
        row->resize(width(), m_rowHeight);
}

} // namespace nubble

#pragma once

#include <QWidget>

namespace nubble {

// Rows of one height below one another, each in the place of its number. Has room for all of them, whether or
// not they have been made.
class RowColumn : public QWidget {
public:
    explicit RowColumn(int rowHeight, QWidget *parent = nullptr);

    void setCount(int count);
    void place(QWidget *row, int number);
    [[nodiscard]] int numberAt(int y) const { return y / pitch(); }

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    [[nodiscard]] int pitch() const { return m_rowHeight + 1; }

    int m_rowHeight;
    int m_count = 0;
};

} // namespace nubble

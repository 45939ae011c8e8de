#pragma once

#include <QWidget>

namespace nubble {

// A few lines with clocks in them, whose digits stand still while they count. A line that is too long goes on
// below, behind a dot.
class TimingLines : public QWidget {
    Q_OBJECT

public:
    explicit TimingLines(QWidget *parent = nullptr);

    void setText(const QString &text);

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    [[nodiscard]] QStringList lines(double width) const;

    QString m_text;
};

} // namespace nubble

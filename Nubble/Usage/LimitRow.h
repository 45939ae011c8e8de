#pragma once

#include <QVariantAnimation>
#include <QWidget>

#include <optional>

namespace nubble {

// One usage window of the plan: its name, how much of it is used, as a number and as a bar, and when it
// starts anew. A window that nothing is known of has a dash and a dashed line.
class LimitRow : public QWidget {
    Q_OBJECT

public:
    explicit LimitRow(const QString &label, QWidget *parent = nullptr);

    // The bar runs to a new percentage within 200 ms, but for the first one or when `animated` is false.
    void setWindow(std::optional<int> percent, const QString &resetText, bool animated);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void describe();
    static void drawMissing(QPainter &painter, const QRectF &bar);
    void drawBar(QPainter &painter, const QRectF &bar) const;

    QString m_label;
    std::optional<int> m_percent;
    QString m_resetText;
    QVariantAnimation m_bar; // the part of it that is drawn, 0 to 1
};

} // namespace nubble

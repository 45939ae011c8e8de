#pragma once

#include <QColor>
#include <QWidget>

namespace nubble {

// A symbol that stands in a card or window by itself, in a square of that side.
class SymbolSign : public QWidget {
    Q_OBJECT

public:
    static constexpr int large = 34; // of what stands where there is nothing else

    SymbolSign(const QString &symbol, int side, const QColor &tint);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_symbol;
    int m_side;
    QColor m_tint;
};

} // namespace nubble

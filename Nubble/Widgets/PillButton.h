#pragma once

#include <QAbstractButton>
#include <QColor>

#include "Widgets/HoverLift.h"

namespace nubble {

// A button with rounded ends, a title and perhaps a symbol before it. Lifts under the pointer and shows the
// keyboard's focus; what does not fit of the title is elided.
class PillButton : public QAbstractButton {
    Q_OBJECT

public:
    explicit PillButton(const QString &title, QWidget *parent = nullptr);

    void setSymbol(const QString &symbol);
    void setTitle(const QString &title);
    void setHelpText(const QString &helpText);    // the tool tip
    void setAccent(const QColor &accent);         // of the symbol and, thinly, of the fill; invalid for none
    void setMeasures(int height, double padding); // of the ends
    [[nodiscard]] int widthFor(const QString &title) const; // units; with a symbol, if it has one

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    [[nodiscard]] double symbolWidth() const;

    QString m_symbol;
    QColor m_accent;
    int m_height = 30;
    double m_padding = 14;
    HoverLift m_hover;
};

} // namespace nubble

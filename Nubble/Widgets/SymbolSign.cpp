#include "Widgets/SymbolSign.h"

#include <QPainter>

#include "Widgets/Symbols.h"
#include "Widgets/Units.h"

namespace nubble {

SymbolSign::SymbolSign(const QString &symbol, int side, const QColor &tint)
    : m_symbol(symbol), m_side(side), m_tint(tint)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize SymbolSign::sizeHint() const
{
    return Units::px(this, QSizeF(m_side, m_side));
}

void SymbolSign::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    Symbols::draw(painter, m_symbol, rect(), m_tint);
}

} // namespace nubble

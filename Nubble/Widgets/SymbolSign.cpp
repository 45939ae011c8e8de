#include "Widgets/SymbolSign.h"

#include <QPainter>

#include "Widgets/Symbols.h"

namespace nubble {

SymbolSign::SymbolSign(const QString &symbol, int side, const QColor &tint) : m_symbol(symbol), m_tint(tint)
{
    setFixedSize(side, side);
}

void SymbolSign::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    Symbols::draw(painter, m_symbol, rect(), m_tint);
}

} // namespace nubble

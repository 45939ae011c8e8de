#include "Widgets/Typography.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QHash>
#include <QPainter>
#include <QScreen>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace nubble::Typography {

namespace {

QFont sized(QFont font, double pixels, QFont::Weight weight)
{
    // Fractional pixel sizes can only be given as points of the font resolution.
    const QScreen *screen = QGuiApplication::primaryScreen();
    font.setPointSizeF(pixels * 72 / (screen ? screen->logicalDotsPerInch() : 96));
    font.setWeight(weight);
    font.setStyleStrategy(QFont::PreferAntialias);
    return font;
}

QFont font(double pixels, QFont::Weight weight)
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setFamilies(QStringList{u"Inter"_s} + font.families());
    font = sized(font, pixels, weight);
    if (weight > QFont::Normal)
        font.setWeight(presentWeight(QFontInfo(font).family(), weight));
    return font;
}

double digitWidth(const QFontMetricsF &metrics)
{
    double widest = 0;
    for (char16_t digit = u'0'; digit <= u'9'; ++digit)
        widest = std::max(widest, metrics.horizontalAdvance(QChar(digit)));
    return widest;
}

double advance(const QFontMetricsF &metrics, double digit, QChar character)
{
    return character.isDigit() ? digit : metrics.horizontalAdvance(character);
}

double width(const QFontMetricsF &metrics, const QString &text)
{
    const double digit = digitWidth(metrics);
    double total = 0;
    for (const QChar character : text)
        total += advance(metrics, digit, character);
    return total;
}

} // namespace

QFont percent()
{
    return font(1000.0 / 119.0, QFont::Normal);
}

QFont cardTitle()
{
    return font(13, QFont::DemiBold);
}

QFont rowTitle()
{
    return font(12, QFont::Medium);
}

QFont dayHeader()
{
    return font(10.5, QFont::DemiBold);
}

QFont query()
{
    return font(18, QFont::Normal);
}

QFont resultTitle()
{
    return font(13, QFont::Medium);
}

QFont menu()
{
    return font(13, QFont::Normal);
}

QFont reading()
{
    return font(13, QFont::Normal);
}

QFont heading(int level)
{
    return font(level <= 1 ? 18 : level == 2 ? 16 : level == 3 ? 14.5 : 13, QFont::DemiBold);
}

QFont code()
{
    return sized(QFontDatabase::systemFont(QFontDatabase::FixedFont), 12, QFont::Normal);
}

QFont cardBody()
{
    return font(10.5, QFont::Normal);
}

QFont caption()
{
    return font(10.5, QFont::Normal);
}

QFont::Weight presentWeight(const QString &family, QFont::Weight wanted)
{
    static QHash<std::pair<QString, int>, QFont::Weight> known; // asked for at each painting
    const auto key = std::pair(family, static_cast<int>(wanted));
    if (const auto found = known.constFind(key); found != known.constEnd())
        return *found;
    int lightest = QFont::Black + 1;
    for (const QString &style : QFontDatabase::styles(family))
        if (const int weight = QFontDatabase::weight(family, style); weight >= wanted)
            lightest = std::min(lightest, weight);
    return known[key] = lightest > QFont::Black ? wanted : static_cast<QFont::Weight>(lightest);
}

double percentLineHeight()
{
    const QFontMetricsF metrics(percent());
    return std::ceil(metrics.ascent() + metrics.descent() + metrics.leading());
}

QString elidedLine(const QFont &font, const QString &text, double width)
{
    QString shown = QFontMetricsF(font).elidedText(text, Qt::ElideRight, width);
    while (shown.endsWith(u" …"))
        shown.remove(shown.size() - 2, 1);
    return shown;
}

void drawElided(QPainter &painter, const QRectF &rect, const QString &text, Elided elided)
{
    // Eliding looks at the whole text: one of a megabyte is cut first to what can never fit.
    constexpr qsizetype longest = 400;
    const bool isMiddle = elided == Elided::Middle;
    const QString start = isMiddle && text.size() > longest
        ? text.left(longest / 2) + u'…' + text.right(longest / 2)
        : text.left(longest);
    const QString shown = isMiddle
        ? painter.fontMetrics().elidedText(start, Qt::ElideMiddle, qFloor(rect.width()))
        : elidedLine(painter.font(), start, rect.width());
    // Not in the widget's direction: the dots stand where the text itself goes on.
    const auto direction = text.isRightToLeft() ? Qt::TextForceRightToLeft : Qt::TextForceLeftToRight;
    painter.drawText(
        rect, direction | Qt::AlignLeft | Qt::AlignAbsolute | Qt::AlignVCenter | Qt::TextSingleLine, shown);
}

void drawTabular(QPainter &painter, const QRectF &rect, Qt::Alignment alignment, const QString &text)
{
    const QFontMetricsF metrics(painter.font());
    const double digit = digitWidth(metrics);
    double x = rect.left();
    if (alignment & Qt::AlignRight)
        x = rect.right() - width(metrics, text);
    else if (alignment & Qt::AlignHCenter)
        x = rect.center().x() - width(metrics, text) / 2;
    const double baseline = rect.center().y() + (metrics.ascent() - metrics.descent()) / 2;
    for (const QChar character : text) {
        const double cell = advance(metrics, digit, character);
        painter.drawText(QPointF(x + (cell - metrics.horizontalAdvance(character)) / 2, baseline), character);
        x += cell;
    }
}

double tabularWidth(const QPainter &painter, const QString &text)
{
    return width(QFontMetricsF(painter.font()), text);
}

} // namespace nubble::Typography

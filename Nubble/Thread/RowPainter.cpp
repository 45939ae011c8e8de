#include "Thread/RowPainter.h"

#include <QAbstractTextDocumentLayout>
#include <QPainter>
#include <QPainterPath>
#include <QTextBlock>
#include <QTextTable>

#include <cmath>

#include "Thread/ThreadRows.h"
#include "Widgets/Palette.h"
#include "Widgets/Symbols.h"
#include "Widgets/Typography.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr double bubbleRadius = 14;
constexpr double codeRadius = 10;

// Everything that drawing one row needs to know.
class RowDrawing {
public:
    RowDrawing(
        QPainter &painter, const QPoint &corner, const ThreadRows &rows, int index,
        const ThreadLayout::Row &row, const RowLook &look)
        : m_painter(painter), m_corner(corner), m_rows(rows), m_index(index), m_row(row), m_look(look),
          m_block(rows.block(index)), m_isReply(rows.messageAt(index).isReply()),
          m_isMirrored(m_isReply && RowBoxes::isMirrored(m_block, *row.document))
    {
    }

    void draw()
    {
        drawQuotes();
        drawPanel();
        drawCodeSpans();
        drawMatches();
        drawCurrentMark();
        drawMarker();
        drawText();
        if (m_row.document->table())
            drawHairlines();
        drawQuestionParts();
        drawCopyCode();
        drawCopyReply();
        drawFocusedLink();
    }

private:
    [[nodiscard]] QRectF placed(const QRect &rect) const { return rect.translated(m_corner); }
    [[nodiscard]] double snapped(double y) const
    {
        const double scale = m_painter.device()->devicePixelRatioF();
        const double origin = m_painter.transform().dy() / m_painter.transform().m22();
        return std::round((y + origin) * scale) / scale - origin;
    }
    // As wide as a pixel of the device.
    void drawLine(double left, double right, double y) const
    {
        const double scale = m_painter.device()->devicePixelRatioF();
        m_painter.fillRect(
            QRectF(left, snapped(y), right - left, std::floor(scale) / scale), Palette::cardLine);
    }
    [[nodiscard]] bool isLook(const std::optional<ThreadTarget> &target, ThreadTarget::Kind kind) const
    {
        return target && target->kind == kind && target->row == m_index;
    }

    // What stands before the text, from left to right.
    [[nodiscard]] QRectF onItsSide(QRectF rect) const
    {
        if (m_isMirrored)
            rect.moveLeft(2 * m_corner.x() + textRight() + beforeText() - rect.right());
        return rect;
    }
    [[nodiscard]] int beforeText() const { return RowBoxes::side + RowBoxes::indent(m_block); }

    void drawQuotes() const
    {
        const int quotes = m_isReply ? std::min(m_block.quotes, RowBoxes::deepest) : 0;
        const int before = m_rows.isFirst(m_index) ? 0 : m_rows.block(m_index - 1).quotes;
        const int above = m_row.box.panel.isNull() ? m_row.box.text.y() : m_row.box.panel.top();
        const int below = m_row.box.copyReply.isNull() ? m_row.box.height : m_row.box.copyReply.top() - 4;
        const double bottom = snapped(m_corner.y() + below);
        for (int i = 0; i < quotes; ++i) {
            const double top = snapped(m_corner.y() + (i < before ? 0 : above));
            const double x = m_corner.x() + RowBoxes::quoteLine(m_block) + i * RowBoxes::quoteWidth;
            m_painter.fillRect(onItsSide({x, top, 2, bottom - top}), Palette::ringTrack);
        }
    }

    void drawPanel() const
    {
        if (m_row.box.panel.isNull())
            return;
        const auto [first, end] = m_rows.parts(m_index);
        const bool isFirst = m_isReply ? m_index == first : m_rows.isFirst(m_index);
        const bool isLast = m_isReply ? m_index + 1 == end : m_rows.isLast(m_index);
        const double radius = m_isReply ? codeRadius : bubbleRadius;
        QRectF panel = placed(m_row.box.panel);
        panel.setTop(snapped(panel.top()));
        panel.setBottom(snapped(panel.bottom()));
        m_painter.save();
        m_painter.setClipRect(panel, Qt::IntersectClip);
        m_painter.setPen(Qt::NoPen);
        m_painter.setBrush(m_isReply ? Palette::code : Palette::bubble);
        // Rounded only where it really ends.
        m_painter.drawRoundedRect(
            panel.adjusted(0, isFirst ? 0 : -2 * radius, 0, isLast ? 0 : 2 * radius), radius, radius);
        m_painter.restore();
    }

    void drawCodeSpans() const
    {
        m_painter.setPen(Qt::NoPen);
        m_painter.setBrush(Palette::codeSpan);
        for (const TextRange &span : m_row.document->codeSpans())
            for (const QRectF &rect : m_row.document->rects(span))
                m_painter.drawRoundedRect(
                    rect.translated(m_row.box.text + m_corner).adjusted(-2, 0, 2, 1), 4, 4);
    }

    void drawMatches() const
    {
        const QPointF origin = m_row.box.text + m_corner;
        const QRectF seen = m_painter.clipBoundingRect();
        m_painter.setPen(Qt::NoPen);
        m_painter.setBrush(m_look.isCurrent ? Palette::currentMatch : Palette::match);
        for (const QRectF &each : m_row.lit) {
            const QRectF rect = each.translated(origin).adjusted(-1, 0, 1, 0);
            if (rect.intersects(seen))
                m_painter.drawRoundedRect(
                    QRectF(
                        QPointF(rect.left(), snapped(rect.top())),
                        QPointF(rect.right(), snapped(rect.bottom()))),
                    3, 3);
        }
    }

    // Beside the message that is being looked at, where it stands.
    void drawCurrentMark() const
    {
        if (!m_look.isCurrent)
            return;
        const bool isFirst = m_rows.isFirst(m_index);
        const QRect &panel = m_row.box.panel;
        const int above = !isFirst ? 0 : panel.isNull() ? m_row.box.text.y() : panel.top();
        const int below = m_row.box.copyReply.isNull() ? m_row.box.height : m_row.box.copyReply.top() - 4;
        const double top = snapped(m_corner.y() + above);
        constexpr int width = 2;
        constexpr int fromEdge = 6;
        const int right = (panel.isNull() ? m_row.box.text.x() : panel.right() + 1) + RowBoxes::side;
        const int x = m_isReply ? fromEdge : right - fromEdge - width;
        m_painter.fillRect(
            QRectF(m_corner.x() + x, top, width, snapped(m_corner.y() + below) - top), Palette::currentMatch);
    }

    void drawMarker() const
    {
        if (!m_isReply || m_block.marker == Block::Marker::None)
            return;
        const QFontMetricsF metrics(Typography::reading());
        const QRectF line = m_row.document->rects({0, 1}).value(0, QRectF(0, 2, 1, metrics.height()));
        const QRect &panel = m_row.box.panel;
        const double top = panel.isNull() ? m_row.box.text.y() : panel.top();
        const double x = m_corner.x() + beforeText();
        const QRectF gutter(x - 60, m_corner.y() + top + line.top(), 60, line.height());
        if (m_block.marker == Block::Marker::Number)
            drawNumber(gutter);
        else if (m_block.marker == Block::Marker::Bullet)
            drawBullet(gutter.center().y(), x);
        else
            drawTask(gutter.center().y(), x);
    }

    void drawNumber(const QRectF &gutter) const
    {
        m_painter.setFont(Typography::reading());
        m_painter.setPen(Palette::textSecondary);
        const int side =
            m_isMirrored ? Qt::TextForceRightToLeft | Qt::AlignAbsolute | Qt::AlignLeft : 0 | Qt::AlignRight;
        m_painter.drawText(
            onItsSide(gutter.adjusted(0, 0, -6, 0)), side | Qt::AlignVCenter,
            QString::number(m_block.number) + u'.');
    }

    void drawBullet(double y, double x) const
    {
        const QRectF dot = onItsSide({x - 13, y - 2.25, 4.5, 4.5});
        const bool isHollow = m_block.depth % 2 == 0;
        m_painter.setPen(isHollow ? QPen(Palette::textSecondary, 1) : QPen(Qt::NoPen));
        m_painter.setBrush(isHollow ? QBrush(Qt::NoBrush) : QBrush(Palette::textSecondary));
        m_painter.drawEllipse(isHollow ? dot.adjusted(0.5, 0.5, -0.5, -0.5) : dot);
    }

    void drawTask(double y, double x) const
    {
        const bool isDone = m_block.marker == Block::Marker::Done;
        const QRectF box = onItsSide({x - 17, y - 6, 12, 12});
        m_painter.setPen(isDone ? QPen(Qt::NoPen) : QPen(Palette::textSecondary, 1.2));
        m_painter.setBrush(isDone ? QBrush(Palette::link) : QBrush(Qt::NoBrush));
        m_painter.drawRoundedRect(box.adjusted(0.6, 0.6, -0.6, -0.6), 3, 3);
        if (isDone)
            Symbols::draw(m_painter, u"checkmark"_s, box.adjusted(2, 2, -2, -2), Palette::body);
    }

    void drawText() const
    {
        if (m_isReply && m_block.kind == Block::Kind::Rule)
            return drawLine(
                m_corner.x() + m_row.box.text.x(), m_corner.x() + textRight(),
                m_corner.y() + m_row.box.text.y());
        QAbstractTextDocumentLayout::PaintContext context;
        const bool isDimmed = m_isReply && m_block.quotes > 0;
        context.palette.setColor(QPalette::Text, isDimmed ? Palette::textSecondary : Palette::textPrimary);
        if (m_look.selected.from < m_look.selected.to)
            context.selections.append(selection());
        if (m_look.isCurrent)
            for (const TextRange &match : m_row.matches)
                context.selections.append(onMatch(match));
        const QPointF origin = m_corner + m_row.box.text;
        m_painter.save();
        m_painter.translate(origin);
        if (m_painter.hasClipping())
            context.clip = m_painter.clipBoundingRect();
        m_row.document->documentLayout()->draw(&m_painter, context);
        m_painter.restore();
    }

    [[nodiscard]] QAbstractTextDocumentLayout::Selection selectionOf(const TextRange &range) const
    {
        QAbstractTextDocumentLayout::Selection selection;
        selection.cursor = QTextCursor(m_row.document.get());
        selection.cursor.setPosition(range.from);
        selection.cursor.setPosition(range.to, QTextCursor::KeepAnchor);
        return selection;
    }

    [[nodiscard]] QAbstractTextDocumentLayout::Selection onMatch(const TextRange &match) const
    {
        QAbstractTextDocumentLayout::Selection selection = selectionOf(match);
        selection.format.setForeground(Palette::body);
        return selection;
    }

    [[nodiscard]] QAbstractTextDocumentLayout::Selection selection() const
    {
        TextRange range = m_look.selected;
        if (const QTextTable *table = m_row.document->table()) // not the empty lines around it
            range = {std::max(range.from, table->firstPosition()), std::min(range.to, table->lastPosition())};
        QAbstractTextDocumentLayout::Selection selection = selectionOf(range);
        selection.format.setBackground(Palette::selection);
        return selection;
    }

    [[nodiscard]] double textRight() const { return m_row.box.text.x() + m_row.document->textWidth(); }

    void drawHairlines() const
    {
        const QTextTable &table = *m_row.document->table();
        const auto *layout = m_row.document->documentLayout();
        const QPointF origin = m_corner + m_row.box.text;
        const double padding = table.format().cellPadding();
        double right = -padding;
        for (const QTextLength &column : table.format().columnWidthConstraints())
            right += column.rawValue();
        for (int row = m_block.continues ? 0 : 1; row < table.rows(); ++row) {
            const QTextBlock first = table.cellAt(row, 0).firstCursorPosition().block();
            const double y = layout->blockBoundingRect(first).top() - padding;
            drawLine(origin.x() + padding, origin.x() + right, origin.y() + y);
        }
    }

    void drawQuestionParts() const
    {
        const ThreadMessage &message = m_rows.messageAt(m_index).content;
        if (!m_row.box.picture.isNull()) {
            const QRectF picture = placed(m_row.box.picture);
            QPainterPath rounded;
            rounded.addRoundedRect(picture, codeRadius, codeRadius);
            m_painter.save();
            m_painter.setRenderHint(QPainter::SmoothPixmapTransform);
            QBrush brush(message.picture);
            brush.setTransform(QTransform::fromTranslate(picture.x(), picture.y())
                                   .scale(
                                       picture.width() / message.picture.width(),
                                       picture.height() / message.picture.height()));
            m_painter.setPen(QPen(Palette::cardLine, 1));
            m_painter.setBrush(brush);
            m_painter.drawPath(rounded);
            m_painter.restore();
        }
        if (m_row.box.caption.isNull())
            return;
        const QRectF caption = placed(m_row.box.caption);
        m_painter.setFont(Typography::caption());
        m_painter.setPen(Palette::textSecondary);
        const QString text = message.caption.left(400).simplified();
        m_painter.drawText(
            caption, Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine,
            Typography::elidedLine(m_painter.font(), text, caption.width()));
    }

    void drawButton(const QRectF &rect, ThreadTarget::Kind kind, double radius) const
    {
        const bool isHovered = isLook(m_look.hovered, kind);
        const bool isFocused = isLook(m_look.focused, kind);
        m_painter.setPen(isFocused ? QPen(Palette::focus, 1.5) : QPen(Qt::NoPen));
        m_painter.setBrush(isHovered ? QBrush(Palette::hover) : QBrush(Qt::NoBrush));
        m_painter.drawRoundedRect(rect.adjusted(1, 1, -1, -1), radius, radius);
    }

    void drawCopyCode() const
    {
        if (m_row.box.copyCode.isNull())
            return;
        QRectF button = placed(m_row.box.copyCode); // wide enough for either word
        const bool isCopied = isLook(m_look.copied, ThreadTarget::Kind::CopyCode);
        const bool isLit = isCopied || isLook(m_look.hovered, ThreadTarget::Kind::CopyCode)
            || isLook(m_look.focused, ThreadTarget::Kind::CopyCode);
        const QColor tint = isLit ? Palette::textPrimary : Palette::textSecondary;
        m_painter.setFont(Typography::cardBody());
        const QString word = isCopied ? u"Copied"_s : u"Copy"_s;
        QRectF text = button.adjusted(0, 0, -9, 0);
        text.setLeft(text.right() - std::ceil(m_painter.fontMetrics().horizontalAdvance(word)));
        const QRectF symbol(text.left() - 16, button.center().y() - 6, 12, 12);
        button.setLeft(symbol.left() - 8);
        drawButton(button, ThreadTarget::Kind::CopyCode, 6);
        m_painter.setPen(tint);
        m_painter.drawText(text, Qt::AlignLeft | Qt::AlignVCenter, word);
        Symbols::draw(m_painter, isCopied ? u"checkmark"_s : u"doc.on.doc"_s, symbol, tint);
        const QString language = m_rows.messageAt(m_index)
                                     .content.text.mid(m_block.head, m_block.headLength)
                                     .left(40)
                                     .trimmed()
                                     .section(u' ', 0, 0);
        const QRectF label(
            m_corner.x() + m_row.box.text.x(), button.top(), button.left() - 8 - m_row.box.text.x(),
            button.height());
        m_painter.setPen(Palette::textSecondary);
        m_painter.drawText(label, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, language);
    }

    void drawCopyReply() const
    {
        if (m_row.box.copyReply.isNull() || !m_look.showsCopyReply)
            return;
        const QRectF button = placed(m_row.box.copyReply);
        const bool isCopied = isLook(m_look.copied, ThreadTarget::Kind::CopyReply);
        drawButton(button, ThreadTarget::Kind::CopyReply, 7);
        Symbols::draw(
            m_painter, isCopied ? u"checkmark"_s : u"doc.on.doc"_s, button.adjusted(5, 5, -5, -5),
            isLook(m_look.hovered, ThreadTarget::Kind::CopyReply) ? Palette::textPrimary
                                                                  : Palette::textSecondary);
    }

    void drawFocusedLink() const
    {
        if (!isLook(m_look.focused, ThreadTarget::Kind::Link)
            || m_look.focused->link >= m_row.document->links().size())
            return;
        m_painter.setPen(QPen(Palette::focus, 1.5));
        m_painter.setBrush(Qt::NoBrush);
        for (const QRectF &rect : m_row.document->rects(m_row.document->links().at(m_look.focused->link)))
            m_painter.drawRoundedRect(
                rect.translated(m_row.box.text + m_corner).adjusted(-2, -1, 2, 1), 4, 4);
    }

    QPainter &m_painter;
    QPoint m_corner;
    const ThreadRows &m_rows;
    int m_index;
    const ThreadLayout::Row &m_row;
    const RowLook &m_look;
    const Block &m_block;
    bool m_isReply;
    bool m_isMirrored;
};

} // namespace

void paintRow(
    QPainter &painter, const QPoint &corner, const ThreadRows &rows, int index, const ThreadLayout::Row &row,
    const RowLook &look)
{
    painter.setRenderHint(QPainter::Antialiasing);
    RowDrawing(painter, corner, rows, index, row, look).draw();
}

} // namespace nubble

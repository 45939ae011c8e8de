#include "Thread/BlockDocument.h"

#include <QAbstractTextDocumentLayout>
#include <QFontMetricsF>
#include <QImage>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextTable>

#include <algorithm>
#include <cmath>

#include "Thread/BlockSource.h"
#include "Thread/LineSpan.h"
#include "Thread/TableColumns.h"
#include "Widgets/Palette.h"
#include "Widgets/Typography.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

qsizetype imported = 0;

constexpr auto headerWeight = QFont::DemiBold; // of a table

QTextBlockFormat lines(double percent)
{
    QTextBlockFormat format;
    format.setLineHeight(percent, QTextBlockFormat::ProportionalHeight);
    format.setTopMargin(0);
    format.setBottomMargin(0);
    return format;
}

struct Piece : TextRange {
    QTextCharFormat format;
};

QList<Piece> pieces(const QTextDocument &document)
{
    QList<Piece> result;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next())
        for (auto each = block.begin(); !each.atEnd(); ++each) {
            const QTextFragment fragment = each.fragment();
            const int from = fragment.position();
            result.append({{from, from + fragment.length()}, fragment.charFormat()});
        }
    return result;
}

QTextCursor select(QTextDocument *document, const TextRange &range)
{
    QTextCursor cursor(document);
    cursor.setPosition(range.from);
    cursor.setPosition(range.to, QTextCursor::KeepAnchor);
    return cursor;
}

QTextCharFormat shownAsLink(QTextCharFormat format, bool isLink)
{
    format.setAnchor(isLink);
    format.setFontUnderline(isLink);
    if (isLink)
        format.setForeground(Palette::link);
    else
        format.clearForeground();
    format.clearProperty(QTextFormat::TextToolTip);
    return format;
}

QFont fontOf(const Block &block, bool isPlain)
{
    if (isPlain)
        return Typography::reading();
    switch (block.kind) {
    case Block::Kind::Heading:
        return Typography::heading(block.level);
    case Block::Kind::Code:
        return Typography::code();
    default:
        return Typography::reading();
    }
}

} // namespace

QUrl allowedLink(const QString &address)
{
    const QUrl url(address, QUrl::StrictMode);
    const QString scheme = url.scheme();
    const bool isWeb = (scheme == u"http" || scheme == u"https") && !url.host().isEmpty();
    return url.isValid() && (isWeb || scheme == u"mailto") ? url : QUrl();
}

QString shownLink(const QUrl &url)
{
    constexpr qsizetype longest = 300;
    QString text = url.toDisplayString(QUrl::EncodeUnicode);
    text.removeIf([](QChar each) { return each.category() == QChar::Other_Format || !each.isPrint(); });
    return text.size() > longest ? text.first(longest - 1) + u'…' : text;
}

BlockDocument::BlockDocument(QStringView source, const Block &block, double width, bool isPlain)
{
    setUndoRedoEnabled(false);
    setDocumentMargin(0);
    setDefaultFont(fontOf(block, isPlain));
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setDefaultTextOption(option);
    setTextWidth(width);

    QTextCursor cursor(this);
    cursor.beginEditBlock(); // without it the importer lays out at each of its steps
    if (isPlain)
        cursor.insertText(BlockSource::plain(source, block));
    else if (block.kind == Block::Kind::Code)
        cursor.insertText(BlockSource::code(source, block));
    else if (block.kind == Block::Kind::Table)
        importTable(source, block);
    else if (block.kind != Block::Kind::Rule)
        import(BlockSource::paragraph(source, block));
    cursor.select(QTextCursor::Document);
    cursor.mergeBlockFormat(lines(block.kind == Block::Kind::Table ? 100 : 125));
    if (!isPlain && block.kind != Block::Kind::Code) {
        describePictures();
        formatText();
    }
    if (block.kind == Block::Kind::Table)
        formatTable(source, block, width);
    cursor.endEditBlock();
}

void BlockDocument::import(const QString &markdown)
{
    imported += markdown.size();
    setMarkdown(markdown, MarkdownFeatures(MarkdownDialectGitHub) | MarkdownNoHTML);
}

void BlockDocument::importTable(QStringView source, const Block &block)
{
    import(BlockSource::table(source, block));
    // Until the editing ends, frames do not know their children.
    for (int i = 0; !m_table && object(i); ++i)
        m_table = qobject_cast<QTextTable *>(object(i));
    if (m_table && block.continues && m_table->rows() > 1)
        m_table->removeRows(0, 1); // the header, which the first part shows
}

// A picture is never shown; what it is called stands in its place.
void BlockDocument::describePictures()
{
    QList<Piece> all = pieces(*this);
    std::reverse(all.begin(), all.end()); // so that positions stay true
    for (const Piece &piece : all) {
        if (!piece.format.isImageFormat())
            continue;
        QTextCharFormat text;
        text.setFontItalic(true);
        const QString name = piece.format.stringProperty(QTextFormat::ImageAltText).simplified();
        select(this, piece).insertText(name.isEmpty() ? u"[picture]"_s : name, text);
    }
}

void BlockDocument::formatText()
{
    for (const Piece &piece : pieces(*this)) {
        QTextCharFormat format = piece.format;
        if (format.isAnchor()) {
            const QUrl url = allowedLink(format.anchorHref());
            format = shownAsLink(format, url.isValid());
            if (url.isValid())
                addLink({{piece.from, piece.to}, url});
        }
        if (format.fontFixedPitch()) {
            format.setFontFamilies(Typography::code().families());
            format.setFontPointSize(defaultFont().pointSizeF() * 0.92);
            m_codeSpans.append(piece);
        }
        if (format != piece.format)
            select(this, piece).setCharFormat(format);
    }
}

// A link with emphasis in it comes in pieces.
void BlockDocument::addLink(const TextLink &link)
{
    if (!m_links.isEmpty() && m_links.last().to == link.from && m_links.last().url == link.url)
        m_links.last().to = link.to;
    else
        m_links.append(link);
}

void BlockDocument::formatTable(QStringView source, const Block &block, double width)
{
    if (!m_table)
        return;
    const QString sample = BlockSource::tableSample(source, block);
    QFont heaviest = defaultFont(); // a header may be much wider, where the font has no weight between
    heaviest.setWeight(headerWeight);
    QList<QTextLength> columns;
    for (const double each :
         tableColumns(sample, QFontMetricsF(heaviest), tablePadding, width + 2 * tablePadding))
        columns.append(QTextLength(QTextLength::FixedLength, each));
    QTextTableFormat format;
    format.setBorder(0);
    format.setCellSpacing(0);
    format.setCellPadding(tablePadding);
    format.setColumnWidthConstraints(columns);
    m_table->setFormat(format);
    if (!block.continues)
        formatHeader();
    lowerCode();
}

// A cell that begins with code would stand higher than the text beside it.
void BlockDocument::lowerCode()
{
    const QFontMetricsF text(defaultFont());
    for (const TextRange &span : m_codeSpans) {
        QTextCursor cursor(this);
        cursor.setPosition(span.from);
        if (!cursor.atBlockStart() || span.to - span.from + 1 < cursor.block().length())
            continue;
        const QFontMetricsF code(cursor.block().begin().fragment().charFormat().font());
        QTextBlockFormat format;
        format.setTopMargin(std::max(0.0, text.ascent() - code.ascent()));
        cursor.mergeBlockFormat(format);
    }
}

void BlockDocument::formatHeader()
{
    QTextCharFormat header;
    header.setFontWeight(headerWeight);
    header.setForeground(Palette::textSecondary);
    for (int column = 0; column < m_table->columns(); ++column) {
        const QTextTableCell cell = m_table->cellAt(0, column);
        QTextCursor text = cell.firstCursorPosition();
        text.setPosition(cell.lastPosition(), QTextCursor::KeepAnchor);
        text.mergeCharFormat(header);
        if (m_table->rows() == 1)
            continue;
        QTextBlockFormat aligned; // which the importer forgets
        aligned.setAlignment(m_table->cellAt(1, column).firstCursorPosition().blockFormat().alignment());
        text.mergeBlockFormat(aligned);
    }
}

int BlockDocument::height() const
{
    return static_cast<int>(std::ceil(size().height()));
}

QList<TextRange> BlockDocument::find(const TextMatcher &matcher) const
{
    QList<TextRange> ranges;
    if (matcher.isEmpty())
        return ranges;
    for (QTextBlock block = begin(); block.isValid(); block = block.next())
        for (const TextRange &each : matcher.in(block.text()))
            ranges.append({block.position() + each.from, block.position() + each.to});
    return ranges;
}

QList<QRectF> BlockDocument::rects(const TextRange &range) const
{
    QList<QRectF> result;
    for (QTextBlock block = findBlock(range.from); block.isValid() && block.position() < range.to;
         block = block.next()) {
        const QPointF origin = documentLayout()->blockBoundingRect(block).topLeft();
        const QString text = block.text();
        for (int i = 0; i < block.layout()->lineCount(); ++i) {
            const QTextLine line = block.layout()->lineAt(i);
            const int start = block.position() + line.textStart();
            const int from = std::max(range.from, start);
            const int to = std::min(range.to, start + line.textLength());
            if (from >= to)
                continue;
            const double top = line.y() + line.height() - line.ascent() - line.descent();
            const TextRange inBlock{from - block.position(), to - block.position()};
            for (const LineSpan &each : spansOf(line, text, inBlock))
                result.append(QRectF(each.left, top, each.right - each.left, line.height() - top + line.y())
                                  .translated(origin));
        }
    }
    return result;
}

qsizetype BlockDocument::importedCharacters()
{
    return imported;
}

// Without an answer of ours the toolkit would open the file of that name.
QVariant BlockDocument::loadResource(int, const QUrl &)
{
    static const QImage nothing = [] {
        QImage picture(1, 1, QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
        return picture;
    }();
    return nothing;
}

} // namespace nubble

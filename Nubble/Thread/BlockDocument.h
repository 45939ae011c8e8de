#pragma once

#include <QTextDocument>
#include <QUrl>

#include "Thread/Block.h"
#include "Thread/TextMatcher.h"

class QTextTable;

namespace nubble {

struct TextLink : TextRange {
    QUrl url;
};

// Where a link may lead; nothing for one that is not to be followed.
[[nodiscard]] QUrl allowedLink(const QString &address);
// That address for people: without characters that nobody sees, cut where it is very long.
[[nodiscard]] QString shownLink(const QUrl &url);

// One block laid out. What it says is foreign: nothing outside is looked at, whatever it names.
class BlockDocument : public QTextDocument {
public:
    static constexpr double tablePadding = 6; // of cells; the outer ones hang over the width

    // `isPlain`: the text stands for itself, whatever kind the block is of.
    BlockDocument(QStringView source, const Block &block, double width, bool isPlain);

    [[nodiscard]] const QList<TextLink> &links() const { return m_links; }
    [[nodiscard]] const QList<TextRange> &codeSpans() const { return m_codeSpans; }
    [[nodiscard]] const QTextTable *table() const { return m_table; }
    [[nodiscard]] int height() const;
    [[nodiscard]] int lastPosition() const { return characterCount() - 1; }
    [[nodiscard]] QList<TextRange> find(const TextMatcher &matcher) const; // in what is shown
    // Where a range is, line by line, in the document's coordinates.
    [[nodiscard]] QList<QRectF> rects(const TextRange &range) const;

    // Characters that have gone through the importer since the start, which tests count.
    static qsizetype importedCharacters();

protected:
    QVariant loadResource(int type, const QUrl &name) override;

private:
    void import(const QString &markdown);
    void importTable(QStringView source, const Block &block);
    void describePictures();
    void formatText();
    void addLink(const TextLink &link);
    void formatTable(QStringView source, const Block &block, double width);
    void formatHeader();
    void lowerCode();

    QList<TextLink> m_links;
    QList<TextRange> m_codeSpans;
    QTextTable *m_table = nullptr;
};

} // namespace nubble

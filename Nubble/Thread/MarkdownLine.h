#pragma once

#include <QList>
#include <QStringView>

#include <optional>

// What one line of Markdown can be the start of. Pure; a line has no line break, and where it is called
// `rest` no indentation either.
namespace nubble::MarkdownLine {

struct Indent {
    qsizetype length = 0; // characters
    int column = 0;       // where the text begins; a tab goes to the next multiple of four
};
// The white space at `from`, where column `column` is; not beyond column `until`.
[[nodiscard]] Indent indent(QStringView line, qsizetype from = 0, int column = 0, int until = 1 << 20);

struct Fence {
    QChar mark; // ` or ~, null for none
    qsizetype length = 0;

    bool operator==(const Fence &) const = default;
};
[[nodiscard]] std::optional<Fence> fence(QStringView rest);
[[nodiscard]] bool closes(const Fence &fence, QStringView rest);

struct ListMark {
    QChar mark; // the bullet, or what stands behind the number
    int number = -1;
    qsizetype length = 0;
};
[[nodiscard]] std::optional<ListMark> listMark(QStringView rest);

[[nodiscard]] int headingLevel(QStringView rest);              // 0: it is none
[[nodiscard]] QStringView headingText(QStringView behindMark); // without the marks that may close it
[[nodiscard]] int underlineLevel(QStringView rest); // of the heading in the line above; 0: it is none
[[nodiscard]] bool isRule(QStringView rest);
[[nodiscard]] bool isDefinition(QStringView rest); // "[label]: where it leads"

[[nodiscard]] QList<QStringView> cells(QStringView row);
// How many columns the line below a table's header announces; 0 when it is no such line.
[[nodiscard]] qsizetype announcedColumns(QStringView rest);

} // namespace nubble::MarkdownLine

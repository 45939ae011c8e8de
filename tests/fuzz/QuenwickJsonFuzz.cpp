#include "Review/ReviewTexts.h"

using namespace nubble;

// Whatever Quenwick answers or leaves in its file, what comes of it can be shown.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const QDateTime now = QDateTime::fromMSecsSinceEpoch(1'790'000'000'000);
    const QByteArray json(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    if (const auto live = parseLiveState(json); live && (live->port == 0 || live->pid <= 0))
        qFatal("a port or a process that cannot be");
    const auto answer = parseAnswer(json);
    if (scanText(answer).isEmpty() && !(answer && answer->error))
        qFatal("a search without a result");
    const auto inbox = parseInbox(json);
    if (!inbox)
        return 0;
    if (inbox->pending < 0 || answer.has_value() != inbox.has_value())
        qFatal("an inbox that cannot be");
    qsizetype grouped = 0;
    for (const DayGroup &group : dayGroups(inbox->items, now))
        grouped += group.label.isEmpty() ? 0 : group.items.size();
    if (grouped != inbox->items.size())
        qFatal("an item without a place");
    for (const QuenwickItem &item : inbox->items)
        if (NextDue::inShort(item.due, now).isEmpty() || initialOf(item.who).isEmpty()
            || NextDue::inFull(item.due, item.timeKnown, now).isEmpty() == item.due.has_value()
            || shortHandle(item.text).size() > std::max<qsizetype>(item.text.size(), 9)
            || firstCharacters(item.text, 160).size() > item.text.size())
            qFatal("an item without a text");
    return 0;
}

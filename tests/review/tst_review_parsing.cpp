#include <QRegularExpression>
#include <QTest>

#include "Review/ReviewTexts.h"

using namespace nubble;
using namespace Qt::StringLiterals;

namespace {

// "guid source who title text due known calendar", the empty ones as -.
QString printed(const QuenwickItem &item)
{
    QStringList parts{item.guid, item.source, item.who, item.title, item.text};
    parts << (item.due ? item.due->toString(Qt::ISODate) : QString());
    parts << QString::number(item.timeKnown) << QString::number(item.onCalendar);
    return parts.replaceInStrings(QRegularExpression(u"^$"_s), u"-"_s).join(u' ');
}

QString printed(const std::optional<Inbox> &inbox)
{
    if (!inbox)
        return u"none"_s;
    QStringList lines{QString::number(inbox->pending)};
    for (const QuenwickItem &each : inbox->items)
        lines.append(printed(each));
    return lines.join(u'\n');
}

QDateTime local(int day, int hour, int minute = 0) // of November 2026; the 16th is a Monday
{
    return {QDate(2026, 11, day), QTime(hour, minute)};
}

QuenwickItem dated(const std::optional<QDateTime> &due)
{
    QuenwickItem item;
    item.due = due;
    return item;
}

} // namespace

class ReviewParsingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aDateHasItsOffsetAndNoFraction()
    {
        using Row = std::pair<const char *, const char *>;
        for (const auto &[text, date] :
             {Row("2026-11-16T09:30:00Z", "2026-11-16T09:30:00Z"),
              Row("2026-11-16T09:30:00.123Z", "2026-11-16T09:30:00Z"),
              Row("2026-11-16T09:30:00.123456+01:00", "2026-11-16T08:30:00Z"),
              Row("2026-11-16T00:30:00-0530", "2026-11-16T06:00:00Z"), Row("2026-11-16 09:30", ""),
              Row("2026-11-16 09:30:00Z", ""), Row("2026-11-16T09:30:00", ""), Row("2026-11-16T09:30Z", ""),
              Row("2026-11-16T09:30:00.Z", ""), Row("2026-11-31T09:30:00Z", ""), Row("2026-11-16", ""),
              Row("2026-11-16T09:30:00+99:99", ""), Row("2026-11-16T٠٩:30:00Z", ""), Row("Z", ""),
              Row("", ""),
              Row("2026-11-16T09:30:00.0000000000000000000000000000000000000000000000000000Z", "")}) {
            const auto parsed = parseDate(QString::fromUtf8(text));
            QCOMPARE(parsed ? parsed->toString(Qt::ISODate) : QString(), QLatin1String(date));
        }
    }

    void aPhoneNumberIsToldByItsEnd()
    {
        using Row = std::pair<const char *, const char *>;
        for (const auto &[text, handle] :
             {Row("+1 (555) 010-4477", "…4477"), Row("1234567", "…4567"), Row("123456", "123456"),
              Row("call 1234567 now", "…4567"), Row("9876543210@example.org", "9876543210@example.org"),
              Row("٠١٢٣٤٥٦٧", "…٤٥٦٧"), Row("Ada", "Ada"), Row("", ""), Row("①②③④⑤⑥⑦⑧", "①②③④⑤⑥⑦⑧")})
            QCOMPARE(shortHandle(QString::fromUtf8(text)), QString::fromUtf8(handle));
    }

    void aTextIsCutBetweenCharacters()
    {
        const QString flag = u"🇩🇪"_s; // four UTF-16 units, one character
        QCOMPARE(firstCharacters(flag.repeated(3), 2), flag.repeated(2));
        QCOMPARE(firstCharacters(u"e\u0301x"_s, 1), u"e\u0301"_s);
        QCOMPARE(firstCharacters(u"abc"_s, 3), u"abc"_s);
        QCOMPARE(firstCharacters({}, 3), QString());
    }

    void theLiveStateNamesAPortAndAProcess()
    {
        QCOMPARE(
            parseLiveState(R"({"port":65535,"pid":2147483647,"more":[]})"),
            (LiveState{.port = 65535, .pid = 2147483647}));
        QCOMPARE(parseLiveState(R"({"port":1,"pid":1})"), (LiveState{.port = 1, .pid = 1}));
        for (const char *json :
             {"", "{", "[]", "7", R"({"port":1})", R"({"pid":1})", R"({"port":0,"pid":1})",
              R"({"port":65536,"pid":1})", R"({"port":-1,"pid":1})", R"({"port":1.5,"pid":1})",
              R"({"port":1e300,"pid":1})", R"({"port":"1","pid":1})", R"({"port":true,"pid":1})",
              R"({"port":1,"pid":0})", R"({"port":1,"pid":-1})", R"({"port":1,"pid":2147483648})",
              R"({"port":1,"pid":4294967297})"})
            QVERIFY2(!parseLiveState(json), json);
    }

    void anInboxIsTakenAsItIsSent()
    {
        using Row = std::pair<const char *, QString>;
        for (const auto &[json, inbox] :
             {Row(R"({"pending":3,"items":[{"guid":"b","source":"mail","who":"Ada","title":"T","text":"x",)"
                  R"("due_at":"2026-11-16T09:30:00.5+01:00","time_known":true,"on_calendar":true},)"
                  R"({"guid":"a","due_at":"soon"}]})",
                  u"3\nb mail Ada T x 2026-11-16T08:30:00Z 1 1\na - - - - - 0 0"_s),
              Row(R"({"pending":3,"items":[]})", u"3"_s), Row("{}", u"0"_s),
              Row(R"({"pending":"3","items":{"guid":"a"}})", u"0"_s), Row(R"({"pending":2.5})", u"0"_s),
              Row(R"({"pending":-4})", u"0"_s), Row(R"({"pending":5000000000})", u"2147483647"_s),
              Row(R"({"items":[null,1,[],{"source":"a"},{"guid":7},)"
                  R"({"guid":"","source":1,"who":[],"title":{},"text":null,"due_at":5,"time_known":1}]})",
                  u"0\n- - - - - - 0 0"_s),
              Row("[]", u"none"_s), Row("7", u"none"_s), Row("", u"none"_s), Row("<html>", u"none"_s)})
            QCOMPARE(printed(parseInbox(json)), inbox);
        QCOMPARE(printed(parseInbox(QByteArray(1'000'000, '['))), u"none"_s);
    }

    void anAnswerIsPutIntoWords()
    {
        using Row = std::array<const char *, 4>; // the answer; then of a scan, a decision, the calendar
        for (const auto &[json, scan, approval, calendar] :
             {Row{"{}", "Up to date", "Approved", "Added to your calendar"},
              Row{"", "Up to date", "Approved", "Added to your calendar"},
              Row{"[]", "Up to date", "Approved", "Added to your calendar"},
              Row{R"({"added":2})", "2 new", "Approved", "Added to your calendar"},
              Row{R"({"added":0,"how":"x"})", "Up to date", "Approved", "Added to your calendar"},
              Row{R"({"added":"2","how":"google"})", "Up to date", "Approved", "Added to Google Calendar"},
              Row{R"({"error":null,"how":"ics"})", "Up to date", "Approved",
                  "Opened in your calendar — confirm to save"},
              Row{R"({"added":2,"how":"ics","error":"Off"})", "Off", "Off", "Off"}}) {
            const auto answer = parseAnswer(json);
            QCOMPARE(scanText(answer), QString::fromUtf8(scan));
            QCOMPARE(describe(ReviewAction::Approve, answer), QString::fromUtf8(approval));
            QCOMPARE(describe(ReviewAction::Calendar, answer), QString::fromUtf8(calendar));
        }
        QCOMPARE(describe(ReviewAction::Dismiss, {}), u"Dismissed"_s);
    }

    void aDueTimeIsToldByItsDay()
    {
        using Row = std::tuple<std::optional<QDateTime>, QString, QString, QString>;
        for (const auto &[due, word, day, time] :
             {Row(local(16, 8), u"Now"_s, u"Today"_s, u" 8:00 AM"_s),
              Row(local(16, 9), u"Now"_s, u"Today"_s, u" 9:00 AM"_s),
              Row(local(16, 9, 1), u"Today"_s, u"Today"_s, u" 9:01 AM"_s),
              Row(local(17, 0), u"Tmrw"_s, u"Tomorrow"_s, u" 12:00 AM"_s),
              Row(local(17, 23, 59), u"Tmrw"_s, u"Tomorrow"_s, u" 11:59 PM"_s),
              Row(local(15, 23, 59), u"Due"_s, u"Sun Nov 15"_s, u" 11:59 PM"_s),
              Row(local(19, 9, 30), u"Thu"_s, u"Thu Nov 19"_s, u" 9:30 AM"_s),
              Row(std::nullopt, u"—"_s, u""_s, u""_s)}) {
            const auto utc = due ? std::optional(due->toUTC()) : due;
            QCOMPARE(NextDue::inShort(utc, local(16, 9)), word);
            QCOMPARE(NextDue::inFull(utc, false, local(16, 9)), day);
            QCOMPARE(NextDue::inFull(utc, true, local(16, 9).toUTC()), day + time);
        }
        QCOMPARE(NextDue::of({dated({}), dated(local(18, 1)), dated(local(17, 1))}), local(17, 1));
        QVERIFY(!NextDue::of({dated({})}));
    }

    void itemsStandUnderTheirDayInTheirOrder()
    {
        QString all;
        const QList<QuenwickItem> items{
            dated(local(16, 8)),  dated(local(16, 12)), dated(local(17, 8)), dated(local(16, 13)),
            dated(local(15, 23)), dated(local(1, 0)),   dated({}),           dated(local(19, 9))};
        for (const DayGroup &group : dayGroups(items, local(16, 9)))
            all += group.label + (group.soon ? u"! " : u" ") + QString::number(group.items.size()) + u"; ";
        QCOMPARE(all, u"Today! 2; Tomorrow! 1; Today! 1; Earlier 2; Undated 1; Thu Nov 19 1; "_s);
    }

    void aRowQuotesWhatItsTitleDoesNotSay()
    {
        using Row = std::array<QString, 3>;
        for (const auto &[title, text, quote] :
             {Row{u"Lunch"_s, u" See you at noon \n"_s, u"See you at noon"_s},
              Row{u"Lunch at Noon"_s, u" lunch at noon\n"_s, u""_s}, Row{u"Lunch"_s, u" \n\t"_s, u""_s},
              Row{u""_s, u"x"_s, u"x"_s}}) {
            QuenwickItem item;
            item.title = title;
            item.text = text;
            QCOMPARE(quoteOf(item), quote);
        }
        for (const auto &[name, initial] :
             {std::pair(u"ada"_s, u"A"_s), std::pair(u" (élodie)"_s, u"É"_s), std::pair(u"…4477"_s, u"#"_s),
              std::pair(u"𐐨x"_s, u"𐐀"_s), std::pair(u""_s, u"#"_s)})
            QCOMPARE(initialOf(name), initial);
    }

    void theCardSaysWhatWaits()
    {
        ReviewState state;
        QVERIFY(isAllClear(state));
        QCOMPARE(footerTexts(state), QStringList());
        state.inbox.pending = 3;
        state.lastMessage = u"Approved"_s;
        QVERIFY(!isAllClear(state));
        QCOMPARE(countText(state), u"to review, none dated"_s);
        QCOMPARE(
            footerTexts(state),
            QStringList({u"Nothing dated coming up. The rest are in the app."_s, u"Approved"_s}));
        state.inbox.items = {dated(local(16, 9))};
        QCOMPARE(countText(state), u"to review in Quenwick"_s);
        QCOMPARE(footerTexts(state), QStringList(u"Approved"_s));
        state.live = true;
        QCOMPARE(countText(state), u"waiting for review"_s);
        state.inbox.pending = 0;
        QVERIFY(!isAllClear(state));
        QCOMPARE(actionHelp(ReviewAction::Dismiss, true), u"Dismiss"_s);
        QCOMPARE(actionHelp(ReviewAction::Calendar, false), u"Add to calendar… — open Quenwick first"_s);
    }
};

QTEST_GUILESS_MAIN(ReviewParsingTest)
#include "tst_review_parsing.moc"

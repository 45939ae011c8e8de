#include "Preview/PreviewSample.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr auto card = "sessions"_L1;

struct Row {
    QString name;
    QString status;
    std::chrono::minutes age;
    QString prompt{};
    QString entrypoint = u"cli"_s;
    QString folder = u"/home/ada/engine"_s;
};

double msecs(TimePoint time)
{
    return static_cast<double>(time.time_since_epoch().count());
}

// A row of the status "done" has finished a short while ago.
SessionsSample sessionsOf(const QList<Row> &rows)
{
    SessionsSample sample;
    for (const Row &row : rows) {
        const auto number = static_cast<qint32>(sample.sessions.size());
        const QString id = u"session-%1"_s.arg(number);
        sample.sessions.append({
            .pid = 4000 + number,
            .sessionId = id,
            .cwd = row.folder,
            .startedAt = msecs(previewTime() - 6h),
            .name = row.name,
            .status = row.status,
            .updatedAt = msecs(previewTime() - row.age),
            .entrypoint = row.entrypoint,
            .nameSource = u"user"_s,
        });
        if (row.status == "done"_L1)
            sample.recentlyCompleted.insert(sample.sessions.last().run());
        if (!row.prompt.isEmpty())
            sample.details.insert(id, {.title = {}, .lastPrompt = row.prompt});
    }
    return sample;
}

SessionsSample manySessions()
{
    QList<Row> rows;
    for (int i = 1; i <= 14; ++i)
        rows.append(
            {u"Package %1 of the release"_s.arg(i), i < 4 ? u"busy"_s : u"idle"_s,
             std::chrono::minutes(i * i * 7), i % 3 ? u"Run the checks again, please"_s : QString()});
    return sessionsOf(rows);
}

SessionsSample longSessions()
{
    return sessionsOf({
        {u"Rewrite the importer so that a statement of several hundred megabytes no longer stops it"_s,
         u"busy"_s, 0min,
         u"Begin with the parser, measure it, and only then look at what the database does with it"_s},
        {u"Donaudampfschifffahrtselektrizitätenhauptbetriebswerkbauunterbeamtengesellschaft"_s, u"waiting"_s,
         3min, u"thequickbrownfoxjumpsoverthelazydogandthenoveranotherlazydogwithoutasinglespace"_s},
        {u"ترجمة صفحات المساعدة كلها ومراجعة النصوص القصيرة التي تظهر في القائمة"_s, u"done"_s, 1min,
         u"ابدأ بالصفحة الأولى ثم اسألني عن الكلمات التي لا تعرف لها ترجمة مناسبة"_s},
        {u"תרגום"_s, u"idle"_s, 200min, u"בדוק את הקובץ settings.json לפני השינוי"_s},
    });
}

} // namespace

SessionsSample usualSessions()
{
    return sessionsOf({
        {u"Checkout page"_s, u"waiting"_s, 2min, u"May I run the migration on the staging database?"_s},
        {u"Search index"_s, u"busy"_s, 0min, u"Make the index rebuild itself after a crash"_s},
        {u"Invoice export"_s, u"done"_s, 1min, u"Write the totals with two decimals"_s, u"claude-desktop"_s},
        {u"Website"_s, u"idle"_s, 190min},
    });
}

QList<PreviewSample> sessionSamples()
{
    const PreviewSample usual{.card = card, .state = "one of each"_L1, .sessions = usualSessions()};
    QList<PreviewSample> samples;
    const auto add = [&](QLatin1String state, const SessionsSample &sessions) -> PreviewSample & {
        PreviewSample sample = usual;
        sample.state = state;
        sample.sessions = sessions;
        sample.usage = usualUsage();
        sample.review = usualReview();
        samples.append(sample);
        return samples.last();
    };
    add("none"_L1, {});
    add("one"_L1, sessionsOf({{u"Search index"_s, u"busy"_s, 0min, u"Make the index rebuild itself"_s}}));
    add(usual.state, usual.sessions);
    add("keyboard"_L1, usual.sessions).isFocused = true;
    add("long texts"_L1, longSessions());
    add("many"_L1, manySessions());
    add("left edge"_L1, usual.sessions).edge = NotchEdge::Left;
    add("top edge"_L1, usual.sessions).edge = NotchEdge::Top;
    add("bottom edge"_L1, usual.sessions).edge = NotchEdge::Bottom;
    add("larger"_L1, usual.sessions).panelScale = 1.4;
    return samples;
}

} // namespace nubble

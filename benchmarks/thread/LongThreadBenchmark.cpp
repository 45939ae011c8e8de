#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QRandomGenerator>

#include <algorithm>
#include <ctime>
#include <memory>

#include <malloc.h>

#include "Thread/TextMatcher.h"
#include "Thread/ThreadScene.h"
#include "Thread/ThreadView.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr qsizetype megabyte = 1'000'000;

QString textOf(qsizetype length)
{
    const QString sample =
        u"Some **words** about the thread, `code` and [a link](https://example.org) in a paragraph of a few "
        u"lines.\nAnd one more line of it.\n\n- an item\n- another one\n\n```cpp\nint main();\n```\n\n"_s;
    return sample.repeated(length / sample.size() + 1).first(length);
}

// What is opened: 20 messages; 10,000 and one of a megabyte; 20 of a megabyte and 10,000.
QList<ThreadMessage> conversation(qint64 which)
{
    const QString text = textOf(380);
    const qsizetype large = which == 0 ? 0 : which == 1 ? 1 : 20;
    QList<ThreadMessage> messages;
    for (int i = 0; i < (which == 0 ? 20 : 10'000); ++i) {
        const auto kind = i % 2 == 0 ? ThreadMessage::Kind::Question : ThreadMessage::Kind::Reply;
        messages.append({kind, (i % 10 == 0 ? u"A match, then "_s : u"Text "_s) + text, {}, {}});
    }
    for (qsizetype i = 0; i < large; ++i)
        messages.insert(i * 500 + 5, {ThreadMessage::Kind::Reply, textOf(megabyte), {}, {}});
    return messages;
}

double milliseconds(std::clock_t since)
{
    return 1000.0 * static_cast<double>(std::clock() - since) / CLOCKS_PER_SEC;
}

std::unique_ptr<ThreadView> openedView(const ThreadRows &rows)
{
    auto view = std::make_unique<ThreadView>();
    view->resize(560, 640);
    view->show();
    QCoreApplication::processEvents();
    view->setRows(rows);
    view->setMatcher(TextMatcher({u"match"_s}));
    QCoreApplication::processEvents();
    return view;
}

// Off the main thread. "KiB" is what the rows and the heights take beside the texts.
void cutThread(benchmark::State &state)
{
    const QList<ThreadMessage> messages = conversation(state.range(0));
    ThreadView view;
    const struct mallinfo2 before = ::mallinfo2();
    view.setRows(ThreadRows::of(messages));
    const struct mallinfo2 after = ::mallinfo2();
    while (state.KeepRunning())
        benchmark::DoNotOptimize(ThreadRows::of(messages).count());
    state.counters["KiB"] =
        static_cast<double>(after.uordblks + after.hblkhd - before.uordblks - before.hblkhd) / 1024;
}
BENCHMARK(cutThread)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);

// From the rows to the first painted frame, with the one before still there.
void openThread(benchmark::State &state)
{
    const ThreadRows rows = ThreadRows::of(conversation(state.range(0)));
    const auto view = openedView(rows);
    double worst = 0;
    while (state.KeepRunning()) {
        state.PauseTiming();
        ThreadRows next = rows;
        state.ResumeTiming();
        const std::clock_t start = std::clock();
        view->setRows(std::move(next));
        QCoreApplication::processEvents();
        worst = std::max(worst, milliseconds(start));
    }
    state.counters["worst"] = worst;
}
BENCHMARK(openThread)->DenseRange(0, 2)->Iterations(20)->Unit(benchmark::kMillisecond);

// To a message anywhere, and the frame that shows it.
void showFarMessage(benchmark::State &state)
{
    const ThreadRows rows = ThreadRows::of(conversation(state.range(0)));
    const auto view = openedView(rows);
    QRandomGenerator random(7);
    double worst = 0;
    while (state.KeepRunning()) {
        const std::clock_t start = std::clock();
        view->showMessage(static_cast<int>(random.bounded(rows.messageCount())));
        QCoreApplication::processEvents();
        worst = std::max(worst, milliseconds(start));
    }
    state.counters["worst"] = worst;
}
BENCHMARK(showFarMessage)->DenseRange(0, 2)->Iterations(400)->Unit(benchmark::kMillisecond);

// A message of a megabyte in which nothing matches is read to its end.
void showMessageWithoutMatch(benchmark::State &state)
{
    const auto view = openedView(ThreadRows::of(conversation(1)));
    while (state.KeepRunning()) {
        view->showMessage(5);
        QCoreApplication::processEvents();
    }
}
BENCHMARK(showMessageWithoutMatch)->Iterations(50)->Unit(benchmark::kMillisecond);

void scrollThread(benchmark::State &state)
{
    const ThreadRows rows = ThreadRows::of(conversation(state.range(0)));
    const auto view = openedView(rows);
    int step = -60;
    double worst = 0;
    view->showMessage(rows.messageCount() / 2);
    for (int i = 0; state.KeepRunning(); ++i) {
        if (i % 50 == 0)
            step = -step;
        const std::clock_t start = std::clock();
        view->scene().scrollBy(step);
        QCoreApplication::processEvents();
        worst = std::max(worst, milliseconds(start));
    }
    state.counters["worst"] = worst;
}
BENCHMARK(scrollThread)->DenseRange(0, 2)->Iterations(1000)->Unit(benchmark::kMillisecond);

// A megabyte of Latin, Cyrillic and Han text, searched for a hundred words.
void matchMegabyte(benchmark::State &state)
{
    const QStringList texts{
        u"Words of a text that is long. "_s, u"Слова длинного текста здесь. "_s, u"这里是一段很长的文字。"_s};
    const QString &sample = texts.at(state.range(0));
    const QString text = sample.repeated(megabyte / sample.size());
    QStringList words;
    for (int i = 0; i < 100; ++i)
        words.append(u"wort%1 слово%1 字%1"_s.arg(i).split(u' ').at(i % 3));
    const TextMatcher matcher(words);
    while (state.KeepRunning())
        benchmark::DoNotOptimize(matcher.in(text));
}
BENCHMARK(matchMegabyte)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);

} // namespace

} // namespace nubble

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QFile>

#include <algorithm>
#include <array>
#include <ctime>
#include <memory>

#include "Platform/Memory.h"
#include "Thread/ThreadScene.h"
#include "Thread/ThreadView.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

// What a reply can be made of, endlessly. Each is repeated as often as it takes.
const std::array kinds{
    std::pair(
        "paragraphs",
        u"Some **bold** words and a [link](https://example.org/a) that are read, and `code` in "
        u"between, until the line is long enough.\nAnd one more line of it.\n\n"_s),
    std::pair(
        "lists", u"- an item of **some** length\n  - one inside of it\n- a [link](https://example.org)\n"_s),
    std::pair("tables", u"| `name` | a few words in a cell | 12345 |\n"_s),
    std::pair("fences", u"    const auto value = compute(argument, another); // and why\n"_s),
    std::pair("endless line", u"words without any end of the line, "_s),
    std::pair("no blank line", u"A line of text below which there is no blank one.\n"_s),
    std::pair(
        "mixed",
        u"## A heading\n\nA paragraph with **bold** words, `code` and a [link](https://example.org) "
        u"in it, some lines long.\n\n1. first\n2. second\n   - inside\n\n```cpp\nint main()\n{\n    "
        u"return 0;\n}\n```\n\n| a | b |\n|---|---|\n| one | two |\n| three | four |\n\n"_s)};

QString opening(const char *kind)
{
    if (kind == std::string_view("tables"))
        return u"| a | b | c |\n|---|---|---|\n"_s;
    return kind == std::string_view("fences") ? u"```cpp\n"_s : QString();
}

constexpr int deltasPerFrame = 66; // 2,000 a second at 30 frames
constexpr qsizetype deltaLength = 6;

class Stream {
public:
    Stream(const char *kind, const QString &sample, qsizetype deltas) : m_sample(sample)
    {
        view.resize(420, 540);
        view.show();
        view.append({ThreadMessage::Kind::Question, u"A question"_s, {}, {}});
        view.append({ThreadMessage::Kind::Reply, opening(kind), {}, {}});
        while (m_at < deltas * deltaLength)
            append();
        frame();
    }

    // As many deltas as come in one, then what the timer does, and the painting.
    void frame()
    {
        for (int i = 0; i < deltasPerFrame; ++i)
            append();
        view.scene().takeIn();
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }

    ThreadView view;

private:
    void append()
    {
        const qsizetype from = m_at % m_sample.size();
        const QStringView delta = QStringView(m_sample).sliced(from).left(deltaLength);
        view.appendText(delta);
        m_at += delta.size();
    }

    QString m_sample;
    qsizetype m_at = 0;
};

// One frame of a reply that has become that long. "percent" is of a core, at 2,000 deltas a second; "worst"
// is the dearest of the frames in ms.
void streamedFrame(benchmark::State &state)
{
    const auto &[name, sample] = kinds.at(static_cast<std::size_t>(state.range(0)));
    Stream stream(name, sample, state.range(1));
    state.SetLabel(name);
    double total = 0;
    double worst = 0;
    while (state.KeepRunning()) {
        const std::clock_t start = std::clock();
        stream.frame();
        const double ms = 1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
        total += ms;
        worst = std::max(worst, ms);
    }
    state.counters["percent"] = total / static_cast<double>(state.iterations()) * 3;
    state.counters["worst"] = worst;
}
BENCHMARK(streamedFrame)
    ->ArgsProduct({{0, 1, 2, 3, 4, 5, 6}, {100, 10'000, 100'000}})
    ->Iterations(200)
    ->Unit(benchmark::kMillisecond);

qsizetype memoryInUse()
{
    QFile status(u"/proc/self/smaps_rollup"_s);
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n'))
        if (line.startsWith("Private_Dirty:"))
            return line.simplified().split(' ').at(1).toLongLong();
    return 0;
}

// A reply of 10,000 lines: what it takes, and what scrolling through it costs.
void longReply(benchmark::State &state)
{
    const QString &sample = kinds.back().second;
    const auto lines = sample.count(u'\n');
    {
        const Stream first("mixed", sample, 1000);
    } // what the libraries take at their first use
    releaseFreedMemory();
    const qsizetype before = memoryInUse();
    auto view = std::make_unique<ThreadView>();
    view->resize(420, 540);
    view->show();
    view->append({ThreadMessage::Kind::Reply, sample.repeated(10'000 / lines), {}, {}});
    view->scene().takeIn();
    int step = -60;
    while (state.KeepRunning()) {
        if (view->scene().layout().value() == 0)
            step = 60;
        view->scene().scrollBy(step);
        QCoreApplication::processEvents();
    }
    state.counters["KiB"] = static_cast<double>(memoryInUse() - before);
}
BENCHMARK(longReply)->Iterations(1000)->Unit(benchmark::kMillisecond);

} // namespace

} // namespace nubble

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <functional>
#include <map>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "Sessions/SessionFiles.h"
#include "Sessions/Transcripts.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr QByteArrayView newestLines = "{\"type\":\"ai-title\",\"aiTitle\":\"A title\"}\n"
                                       "{\"type\":\"last-prompt\",\"lastPrompt\":\"A prompt\"}\n";

void write(const QString &path, QByteArrayView bytes, qint64 holeBefore = 0)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite) || !file.resize(holeBefore) || !file.seek(holeBefore)
        || file.write(bytes.data(), bytes.size()) != bytes.size())
        qFatal("cannot write %s", qPrintable(path));
}

// A home with that many sessions, all of them alive, each with a transcript.
class Sample {
public:
    explicit Sample(int sessions)
    {
        for (int i = 0; i < sessions; ++i) {
            ClaudeSession session;
            session.pid = ::getpid();
            session.sessionId = u"0f3c2a9e-77d1-4c0e-9d42-%1"_s.arg(i, 12, 10, QChar(u'0'));
            session.cwd = u"/home/someone/projects/project%1"_s.arg(i % 20);
            m_sessions.append(session);
            write(record(i), json(session, i));
            write(transcript(i), newestLines);
        }
    }

    [[nodiscard]] QString folder() const { return m_folder.path(); }
    [[nodiscard]] QString sessionsFolder() const { return m_folder.filePath(u"sessions"_s); }
    [[nodiscard]] QString projectsFolder() const { return m_folder.filePath(u"projects"_s); }
    [[nodiscard]] const QList<ClaudeSession> &sessions() const { return m_sessions; }
    [[nodiscard]] QString record(int i) const { return sessionsFolder() + u"/%1.json"_s.arg(i); }
    [[nodiscard]] QString transcript(int i) const
    {
        const ClaudeSession &session = m_sessions.at(i);
        return projectsFolder() + u'/' + projectFolderName(session.cwd) + u'/' + session.sessionId
            + u".jsonl";
    }

private:
    static QByteArray json(const ClaudeSession &session, int i)
    {
        return QStringLiteral(
                   R"({"pid":%1,"sessionId":"%2","cwd":"%3","startedAt":%4,"procStart":"1","version":"2.1.0",)"
                   R"("kind":"interactive","entrypoint":"cli","name":"project-%5","nameSource":"derived",)"
                   R"("status":"idle","updatedAt":%6})")
            .arg(session.pid)
            .arg(session.sessionId, session.cwd)
            .arg(1790000000000 + i)
            .arg(i)
            .arg(1790000000000 + i * 7919 % 100000)
            .toUtf8();
    }

    QTemporaryDir m_folder;
    QList<ClaudeSession> m_sessions;
};

// The same work without anything around it: a look at every record's attributes.
void bareLooks(const char *folderPath)
{
    DIR *folder = ::opendir(folderPath);
    while (const dirent *entry = ::readdir(folder)) {
        if (!std::string_view(entry->d_name).ends_with(".json"))
            continue;
        struct stat info { };
        benchmark::DoNotOptimize(::fstatat(::dirfd(folder), entry->d_name, &info, 0));
    }
    ::closedir(folder);
}

// Of this thread's processor time: other programs must not count.
double threadSeconds()
{
    timespec time{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

double seconds(const std::function<void()> &work)
{
    const double start = threadSeconds();
    work();
    return threadSeconds() - start;
}

// Times `work`, and `bare` in turn with it: the machine's mood touches both alike. The ratio is what to read.
void compare(benchmark::State &state, const std::function<void()> &work, const std::function<void()> &bare)
{
    double spent = 0, spentBare = 0;
    while (state.KeepRunning()) {
        const double once = seconds(work);
        spent += once;
        spentBare += seconds(bare);
        state.SetIterationTime(once);
    }
    state.counters["ratio"] = spent / spentBare;
    state.counters["bare_us"] = benchmark::Counter(spentBare * 1e6, benchmark::Counter::kAvgIterations);
}

// One whose records were written long enough ago to be trusted by their attributes.
const Sample &settledSample(int sessions)
{
    static std::map<int, Sample> samples;
    const auto [sample, isNew] = samples.try_emplace(sessions, sessions);
    if (isNew)
        std::this_thread::sleep_for(std::chrono::seconds(4));
    return sample->second;
}

// A pass over the folder with nothing changed.
void pollUnchanged(benchmark::State &state)
{
    const Sample &sample = settledSample(static_cast<int>(state.range(0)));
    SessionFiles files(sample.folder());
    (void)files.read();
    const QByteArray folder = QFile::encodeName(sample.sessionsFolder());
    compare(
        state, [&] { (void)files.read(); }, [&] { bareLooks(folder.constData()); });
}

void updateUnchanged(benchmark::State &state)
{
    const Sample sample(static_cast<int>(state.range(0)));
    Transcripts transcripts({sample.projectsFolder()});
    transcripts.update(sample.sessions(), false, TimePoint());
    QList<QByteArray> paths;
    for (int i = 0; i < sample.sessions().size(); ++i)
        paths.append(QFile::encodeName(sample.transcript(i)));
    const FileCosts before = transcripts.costs();
    const auto stats = [&] {
        struct stat info { };
        for (const QByteArray &path : paths)
            benchmark::DoNotOptimize(::stat(path.constData(), &info));
    };
    compare(
        state, [&] { transcripts.update(sample.sessions(), false, TimePoint()); }, stats);
    const auto perSession = static_cast<double>(state.iterations() * state.range(0));
    state.counters["stats_per_session"] =
        static_cast<double>(transcripts.costs().attributeReads - before.attributeReads) / perSession;
    state.counters["bytes"] = static_cast<double>(transcripts.costs().bytes - before.bytes);
}

void readEnd(const QByteArray &path, qint64 length)
{
    const int file = ::open(path.constData(), O_RDONLY | O_CLOEXEC);
    struct stat info { };
    ::fstat(file, &info);
    QByteArray bytes(length, Qt::Uninitialized);
    benchmark::DoNotOptimize(::pread(file, bytes.data(), static_cast<size_t>(length), info.st_size - length));
    ::close(file);
}

void firstRead(benchmark::State &state)
{
    const Sample sample(1);
    const QByteArray lines = QByteArray(1023, 'x').append('\n').repeated(100) + newestLines;
    write(sample.transcript(0), lines, state.range(0) * 1'000'000 - lines.size());
    const QByteArray path = QFile::encodeName(sample.transcript(0));
    qint64 bytes = 0;
    const auto work = [&] {
        Transcripts transcripts({sample.projectsFolder()});
        transcripts.update(sample.sessions(), false, TimePoint());
        bytes += transcripts.costs().bytes;
    };
    compare(state, work, [&] { readEnd(path, 256 * 1024); });
    state.counters["bytes_read"] =
        benchmark::Counter(static_cast<double>(bytes), benchmark::Counter::kAvgIterations);
}

void incrementalRead(benchmark::State &state)
{
    const Sample sample(1);
    write(sample.transcript(0), newestLines, 500'000'000);
    const QByteArray path = QFile::encodeName(sample.transcript(0));
    Transcripts transcripts({sample.projectsFolder()});
    transcripts.update(sample.sessions(), false, TimePoint());
    const qint64 before = transcripts.costs().bytes;
    const QByteArray line = QByteArray(1023, 'x') + '\n';
    const int writer = ::open(path.constData(), O_WRONLY | O_APPEND | O_CLOEXEC);
    double spent = 0, spentBare = 0;
    while (state.KeepRunning()) {
        if (::write(writer, line.constData(), static_cast<size_t>(line.size())) != line.size())
            qFatal("cannot append");
        const double once = seconds([&] { transcripts.update(sample.sessions(), true, TimePoint()); });
        spent += once;
        spentBare += seconds([&] {
            struct stat info { };
            ::stat(path.constData(), &info);
            readEnd(path, line.size());
        });
        state.SetIterationTime(once);
    }
    ::close(writer);
    state.counters["ratio"] = spent / spentBare;
    state.counters["read_per_appended"] = static_cast<double>(transcripts.costs().bytes - before)
        / static_cast<double>(state.iterations() * line.size());
}

BENCHMARK(pollUnchanged)
    ->Arg(10)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(10000)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(updateUnchanged)->Arg(10)->Arg(100)->Arg(1000)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(firstRead)->Arg(1)->Arg(100)->Arg(500)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(incrementalRead)->UseManualTime()->Unit(benchmark::kMicrosecond);

} // namespace

} // namespace nubble

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

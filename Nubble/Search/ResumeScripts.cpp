#include "Search/ResumeScripts.h"

#include <QFile>
#include <QUuid>

#include <algorithm>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "Platform/MainThread.h"
#include "Platform/PrivateFolder.h"
#include "Platform/RegularFile.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr std::chrono::milliseconds kept = 24h;
constexpr int filesAtOnce = 10'000; // are looked at; takes some 0.1 s
constexpr std::chrono::milliseconds untilTheRest = 1h;

const auto prefix = "yarnbin-"_ba;
const auto suffix = ".command"_ba;

bool isOurs(QByteArrayView name)
{
    return name.startsWith(prefix) && name.endsWith(suffix);
}

// Removes it if it is an old script. How long it is to be kept yet, if it is a young one.
std::optional<std::chrono::milliseconds> treat(int folder, const char *name, TimePoint now)
{
    struct stat info { };
    if (::fstatat(folder, name, &info, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISREG(info.st_mode))
        return std::nullopt;
    const auto age = now - std::chrono::floor<std::chrono::milliseconds>(fileTimeOf(info.st_mtim));
    if (age < kept)
        return kept - age;
    ::unlinkat(folder, name, 0);
    return std::nullopt;
}

// How long after that there is something to remove; none when nothing is left to wait for.
std::optional<std::chrono::milliseconds> sweepFolder(
    const QString &path, TimePoint now, const std::stop_token &stop)
{
    PrivateFolder folder(path);
    const int listed = folder.open().isDone() ? ::openat(folder.descriptor(), ".", O_RDONLY | O_CLOEXEC) : -1;
    const std::unique_ptr<DIR, int (*)(DIR *)> listing(
        listed < 0 ? nullptr : ::fdopendir(listed), &::closedir);
    std::optional<std::chrono::milliseconds> next;
    int count = 0;
    while (const dirent *entry = listing && !stop.stop_requested() ? ::readdir(listing.get()) : nullptr) {
        if (!isOurs(entry->d_name))
            continue;
        if (++count > filesAtOnce)
            return untilTheRest;
        if (const auto span = treat(folder.descriptor(), entry->d_name, now))
            next = std::min(next.value_or(kept), *span);
    }
    return next;
}

struct Script {
    Outcome outcome;
    QString path;
};

Script writeScript(const QString &path, const QByteArray &text)
{
    PrivateFolder folder(path);
    const QByteArray name = prefix + QUuid::createUuid().toByteArray(QUuid::WithoutBraces) + suffix;
    Outcome outcome = folder.make();
    if (outcome.isDone())
        outcome = folder.create(name, text, 0755);
    if (outcome.isDone() && ::faccessat(folder.descriptor(), name.constData(), X_OK, AT_EACCESS) != 0) {
        ::unlinkat(folder.descriptor(), name.constData(), 0);
        outcome = Outcome::failed(u"nothing may be run from the folder %1"_s.arg(path));
    }
    return {outcome, path + u'/' + QFile::decodeName(name)};
}

} // namespace

ResumeScripts::ResumeScripts(const Home &home, const Clock &clock, QObject *parent)
    : QObject(parent), m_folder(folder(home)), m_clock(clock), m_worker(u"scripts"_s)
{
    m_sweeping.setSingleShot(true);
    m_sweeping.setTimerType(Qt::VeryCoarseTimer);
    m_sweeping.callOnTimeout(this, &ResumeScripts::sweep);
    sweep();
}

// In the home folder: the shared temporary one and the session's own are often mounted so that nothing in
// them can be run, and a home for trials keeps this to itself as well.
QString ResumeScripts::folder(const Home &home)
{
    return home.file(u".nubble/resume"_s);
}

void ResumeScripts::write(const QByteArray &text, Written written)
{
    assertMainThread("Nubble/Search/ResumeScripts");
    m_worker.add(
        [folder = m_folder, text](const std::stop_token &) { return writeScript(folder, text); },
        [this, written = std::move(written)](const Script &script) {
            if (script.outcome.isDone() && !m_sweeping.isActive())
                sweepAfter(kept);
            written(script.outcome, script.path);
        });
}

void ResumeScripts::sweep()
{
    m_worker.add(
        [folder = m_folder, now = m_clock.now()](const std::stop_token &stop) {
            return sweepFolder(folder, now, stop);
        },
        [this](const std::optional<std::chrono::milliseconds> &next) {
            if (next)
                sweepAfter(*next);
        });
}

// A clock that has been set back does not make it wait for longer than a day.
void ResumeScripts::sweepAfter(std::chrono::milliseconds span)
{
    m_sweeping.start(std::min(span, kept));
}

} // namespace nubble

#include "Meeting/MeetingNotes.h"

#include <QDateTime>
#include <QFileInfo>
#include <QProcessEnvironment>
#include <QTimer>
#include <QUrl>

#include <algorithm>
#include <csignal>
#include <unistd.h>

#include "Meeting/MeetingLog.h"
#include "Meeting/MeetingTexts.h"
#include "Meeting/RecorderLine.h"
#include "Platform/MainThread.h"
#include "Shell/Addon.h"
#include "Shell/ChildProcess.h"
#include "Shell/Defaults.h"
#include "Shell/Tools.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

using Phase = MeetingState::Phase;

constexpr qsizetype longestLink = 8192; // characters; what is longer is no link

QString linkKey()
{
    return u"meetingNotes.link"_s;
}

QString truth(bool value)
{
    return value ? u"true"_s : u"false"_s;
}

QString bracketed(const QList<pid_t> &pids)
{
    return u'[' + pidList(pids) + u']';
}

QString inUtc(TimePoint time)
{
    return QDateTime::fromMSecsSinceEpoch(time.time_since_epoch().count(), Qt::UTC)
        .toString(u"yyyy-MM-dd hh:mm:ss '+0000'"_s);
}

} // namespace

MeetingNotes::MeetingNotes(
    const Home &home, Defaults &defaults, const Clock &clock, Surroundings surroundings, Pace pace,
    QObject *parent)
    : QObject(parent), m_home(home), m_defaults(&defaults), m_clock(&clock),
      m_surroundings(std::make_unique<const Surroundings>(std::move(surroundings))),
      m_pace(pace), m_state{.link = defaults.string(linkKey()).value_or(QString())}, m_told(m_state),
      m_mic(m_surroundings->microphone, clock), m_worker(u"MeetingNotes"_s)
{
    assertMainThread("Nubble/Meeting/MeetingNotes");
    connect(&m_mic, &MicLevel::failed, this, [this](const QString &why) {
        trace(u"mic level unavailable: "_s + why);
    });
}

MeetingNotes::MeetingNotes(MeetingState sample, float level, QObject *parent)
    : QObject(parent), m_home(QString()), m_defaults(nullptr), m_clock(nullptr), m_state(std::move(sample)),
      m_told(m_state), m_mic(level), m_worker(u"MeetingNotes"_s)
{
}

MeetingNotes::~MeetingNotes() = default;

void MeetingNotes::watch()
{
    if (isSample())
        return;
    scan();
    auto *poll = new QTimer(this);
    poll->callOnTimeout(this, [this] { scan(); });
    poll->start(m_pace.poll);
}

bool MeetingNotes::isRecorderRunning() const
{
    return m_process && m_process->isRunning();
}

bool MeetingNotes::canUpdateNow() const
{
    return m_state.phase == Phase::Recording && (isSample() || isRecorderRunning()) && !m_state.updating;
}

QString MeetingNotes::script() const
{
    return recorderScript(m_home, *m_defaults);
}

QString MeetingNotes::logFile() const
{
    return QFileInfo(script()).path() + u"/notch.log";
}

void MeetingNotes::trace(const QString &line) const
{
    if (!isSample())
        appendToLog(logFile(), line.toUtf8() + '\n');
}

void MeetingNotes::pasteLink()
{
    if (isSample() || m_state.phase != Phase::Idle)
        return;
    QString text = m_surroundings->clipboardText();
    text = text.size() > longestLink ? QString() : text.trimmed();
    if (isDocTabLink(text)) {
        m_state.link = text;
        m_state.tabTitle.reset();
        m_state.status = u"Link set. Press Start when the meeting begins."_s;
        m_defaults->set(linkKey(), text);
    } else if (isDocLink(text)) {
        m_state.status = u"That link has no tab — open the week's tab and copy the link again."_s;
    } else {
        m_state.status = u"Copy the agenda tab's Google Doc link first."_s;
    }
    tell();
}

void MeetingNotes::openDoc() const
{
    const QUrl url(m_state.link, QUrl::StrictMode);
    if (!isSample() && url.isValid() && !url.isEmpty())
        m_surroundings->openLink(url);
}

void MeetingNotes::start()
{
    if (isSample())
        return;
    const bool scanned = scanNow();
    trace(
        u"start pressed: phase="_s + phaseName(m_state.phase) + u" others=" + bracketed(m_state.others)
        + u" link=" + m_state.link);
    if (const std::optional<QString> why = whyNotToStart(scanned)) {
        m_state.status = *why;
        tell();
        return;
    }
    const std::optional<QString> node = Tools::find(u"node"_s, m_home);
    if (!node) {
        m_state.status = u"Node.js isn't installed — the `node` command wasn't found."_s;
    } else if (const Outcome outcome = launch(*node); outcome.isDone()) {
        setPhase(Phase::Recording);
        m_state.startedAt = m_clock->now();
        m_state.status = u"Starting…"_s;
        trace(u"---- start "_s + inUtc(*m_state.startedAt) + u' ' + m_state.link);
    } else {
        failToStart(outcome.why());
    }
    tell();
}

// Logs what is no mere lack.
std::optional<QString> MeetingNotes::whyNotToStart(bool scanned) const
{
    if (m_state.isRunning()) {
        trace(u"start refused: already running "_s + bracketed(m_state.others));
        return u"Already running — stop it first."_s;
    }
    if (!scanned) {
        trace(u"start refused: pgrep gives no answer"_s);
        return u"Couldn't find out whether one is running — try again."_s;
    }
    if (!isDocTabLink(m_state.link)) {
        trace(u"start refused: no tab link"_s);
        return u"Paste the agenda tab's link first."_s;
    }
    if (const QString path = script(); !QFileInfo::exists(path))
        return u"The recorder isn't installed ("_s + path + u").";
    return std::nullopt;
}

Outcome MeetingNotes::launch(const QString &node)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"PATH"_s, Tools::searchPath(m_home));
    m_output = RecorderOutput();
    m_process = std::make_unique<ChildProcess>(
        Command{
            .program = node,
            .arguments = {script(), m_state.link, u"--resume"_s},
            .environment = environment,
            .folder = QFileInfo(script()).path(),
            .joinsErrors = true},
        CommandLimits(), ChildProcess::Delivery::Chunks, ChildProcess::Lifetime::ItsOwn);
    connect(m_process.get(), &ChildProcess::output, this, &MeetingNotes::receive);
    connect(m_process.get(), &ChildProcess::ended, this, &MeetingNotes::handleEnd);
    Outcome outcome = m_process->startNow();
    if (!outcome.isDone())
        m_process.reset();
    return outcome;
}

void MeetingNotes::failToStart(const QString &why)
{
    m_state.status = u"Couldn't start node: "_s + why;
    trace(u"start failed: "_s + why);
}

void MeetingNotes::stop()
{
    if (isSample())
        return;
    trace(
        u"stop pressed: phase="_s + phaseName(m_state.phase) + u" running=" + truth(isRecorderRunning())
        + u" others=" + bracketed(m_state.others));
    if (isRecorderRunning()) {
        setPhase(Phase::Finishing);
        m_state.status = u"Finishing — last transcription and notes pass…"_s;
        m_process->signal(SIGINT);
    }
    for (const RecorderProcess &each : std::as_const(m_others))
        m_surroundings->processes.signal(each.pid, each.info->birth, SIGINT);
    if (!m_others.isEmpty() && !m_process)
        m_state.status = u"Stopping the copy started outside the notch…"_s;
    tell();
    QTimer::singleShot(m_pace.firstLook, this, [this, remembered = m_others] {
        scan([this, remembered] { killOrphans(remembered); });
        QTimer::singleShot(m_pace.secondLook, this, [this] { scan(); });
    });
}

void MeetingNotes::killOrphans(const QList<RecorderProcess> &remembered)
{
    const auto isSame = [](const RecorderProcess &a, const RecorderProcess &b) {
        return a.pid == b.pid && a.info->birth == b.info->birth;
    };
    for (const RecorderProcess &each : std::as_const(m_others)) {
        const bool wasThere =
            std::any_of(remembered.begin(), remembered.end(), [&](const RecorderProcess &before) {
                return isSame(before, each);
            });
        if (wasThere && isOrphanRecorder(*each.info))
            m_surroundings->processes.signal(each.pid, each.info->birth, SIGKILL);
    }
}

void MeetingNotes::updateNow()
{
    trace(u"update now pressed: updating="_s + truth(m_state.updating));
    if (isSample() || !canUpdateNow())
        return;
    m_process->signal(SIGUSR1);
    m_state.updating = true;
    m_state.status = u"Transcribing and writing the Doc now…"_s;
    tell();
}

void MeetingNotes::interruptRecorder() const
{
    if (isRecorderRunning())
        m_process->signal(SIGINT);
}

void MeetingNotes::receive(const QByteArray &chunk)
{
    if (const QByteArray text = m_output.append(chunk); !text.isEmpty())
        appendToLog(logFile(), text);
    while (const std::optional<QString> line = m_output.takeLine())
        handle(*line);
    tell();
}

void MeetingNotes::handle(const QString &line)
{
    const RecorderReport report = readRecorderLine(line);
    if (report.tabTitle)
        m_state.tabTitle = report.tabTitle;
    if (report.nextUpdate)
        m_state.nextUpdate = report.nextUpdate;
    m_state.updating = report.updating.value_or(m_state.updating);
    if (report.hasUpdated)
        m_state.lastUpdate = m_clock->now();
    m_state.status = report.status.value_or(m_state.status);
}

void MeetingNotes::handleEnd(const CommandEnd &end)
{
    const bool failed = end.code != 0 && m_state.phase != Phase::Finishing;
    m_process.release()->deleteLater();
    setPhase(Phase::Idle);
    m_state.startedAt.reset();
    m_state.nextUpdate.reset();
    m_state.updating = false;
    if (end.kind == CommandEnd::Kind::NotStarted) {
        failToStart(end.whyNotStarted);
    } else if (failed && !m_state.status.contains("already running"_L1, Qt::CaseInsensitive)) {
        const QString status =
            m_state.status.isEmpty() ? u"exit "_s + QString::number(end.code) : m_state.status;
        m_state.status = u"Couldn't start: "_s + status;
    }
    tell();
    scan();
}

void MeetingNotes::setPhase(Phase phase)
{
    m_state.phase = phase;
    if (phase == Phase::Recording)
        m_mic.start();
    else
        m_mic.stop();
}

bool MeetingNotes::scanNow()
{
    const auto found = findRecorders(m_surroundings->pgrep, m_surroundings->processes, m_pace.patience);
    if (found)
        accept(*found, ++m_scans);
    return found.has_value();
}

void MeetingNotes::scan(std::function<void()> then)
{
    m_worker.add(
        [this](const std::stop_token &stop) {
            return findRecorders(
                m_surroundings->pgrep, m_surroundings->processes, 10 * m_pace.patience, stop);
        },
        [this, number = ++m_scans,
         then = std::move(then)](const std::optional<QList<RecorderProcess>> &found) {
            if (found)
                accept(*found, number);
            tell();
            then();
        });
}

void MeetingNotes::accept(const QList<RecorderProcess> &found, quint64 scan)
{
    if (scan < m_newest)
        return;
    m_newest = scan;
    const std::optional<pid_t> started = m_process ? std::optional(m_process->pid()) : std::nullopt;
    m_others = othersAmong(found, ::getpid(), started);
    QList<pid_t> pids;
    for (const RecorderProcess &each : std::as_const(m_others))
        pids.append(each.pid);
    m_state.others = pids;
}

void MeetingNotes::tell()
{
    if (m_state == m_told)
        return;
    m_told = m_state;
    Q_EMIT changed();
}

} // namespace nubble

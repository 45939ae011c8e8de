#pragma once

#include <QJsonDocument>
#include <QJsonObject>

#include "support/TemporaryHome.h"

namespace nubble {

// A recorder of a home's own that a real `node` runs: JavaScript, with these words.
//   say(TEXT)         a line by console.log; write(TEXT) is its process.stdout.write
//   keep(NAME, TEXT)  adds a line to a file beside the script
//   finish            what it does when it is interrupted; by itself it says and keeps "final notes" and ends
// How it was started is kept in "started", as JSON. A `pgrep` of the home's own finds the home's recorders
// only, for others run beside it, and counts how often it is asked.
class RecorderStandIn {
public:
    explicit RecorderStandIn(const TemporaryHome &home) : m_home(home)
    {
        m_home.writeScript(
            pgrepFile(),
            "#!/bin/sh\necho x >> \"${0%/*}/scans\"\nfor each in $(/usr/bin/pgrep \"$@\"); do\n"
            "line=; read -r line </proc/$each/cmdline; case $line in *\"${0%/*}\"*) echo $each; esac\n"
            "done 2>/dev/null; exit 0\n");
        follow({});
    }

    void follow(const QByteArray &script) const { m_home.write(file("quib-live.mjs"), words + script); }
    [[nodiscard]] qsizetype scans() const { return kept("scans").count('x'); } // that have begun
    [[nodiscard]] QString pgrep() const { return m_home.path(pgrepFile()); }
    [[nodiscard]] QByteArray kept(const char *name) const { return m_home.read(file(name)); }
    [[nodiscard]] QJsonObject started() const { return QJsonDocument::fromJson(kept("started")).object(); }
    [[nodiscard]] pid_t pid() const { return started()[u"pid"].toInt(); } // of the one started last
    // The log without the lines' ends; what is different each time has a sign instead.
    [[nodiscard]] QStringList log() const
    {
        return QString::fromUtf8(kept("notch.log")).split(u'\n', Qt::SkipEmptyParts);
    }

private:
    static QString file(const char *name) { return u".quib-live/" + QString::fromLatin1(name); }
    static QString pgrepFile() { return QStringLiteral(".quib-live/pgrep"); }

    static constexpr char words[] = R"(
import fs from 'node:fs';
const keep = (name, text) => fs.appendFileSync(name, text + '\n');
const say = text => console.log(text);
const write = text => process.stdout.write(text + '\n');
let finish = () => { say('final notes'); keep('notes', 'final notes'); process.exit(0); };
process.on('SIGINT', () => finish());
process.on('SIGUSR1', () => { keep('signals', 'USR1'); say('pass'); });
setInterval(() => {}, 1000);
fs.writeFileSync('/proc/self/comm', 'MainThread'); // as a recent node calls itself
fs.writeFileSync('started.new', JSON.stringify({ pid: process.pid, arguments: process.argv.slice(1),
    folder: process.cwd(), path: process.env.PATH, input: fs.readlinkSync('/proc/self/fd/0') }));
fs.renameSync('started.new', 'started');
)";

    const TemporaryHome &m_home;
};

} // namespace nubble

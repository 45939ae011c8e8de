#include <QList>

#include "Meeting/RecorderLine.h"
#include "Meeting/RecorderOutput.h"

using namespace nubble;

namespace {

// What the output's lines tell, when it comes in two pieces.
QList<RecorderReport> reports(const QByteArray &first, const QByteArray &second)
{
    RecorderOutput output;
    QList<RecorderReport> all;
    for (const QByteArray &chunk : {first, second}) {
        const QByteArray logged = output.append(chunk);
        if (!QByteArrayView(logged).isValidUtf8())
            qFatal("no text is logged");
        while (const auto line = output.takeLine())
            all.append(readRecorderLine(*line));
    }
    return all;
}

} // namespace

// Whatever the recorder writes: as long as it is text, its lines tell the same wherever it is cut. The first
// byte tells where.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    const QByteArray bytes(reinterpret_cast<const char *>(data) + 1, static_cast<qsizetype>(size) - 1);
    const qsizetype cut = bytes.size() * data[0] / 255;
    const QList<RecorderReport> cutReports = reports(bytes.first(cut), bytes.sliced(cut));
    if (QByteArrayView(bytes).isValidUtf8() && cutReports != reports(bytes, {}))
        qFatal("other lines in two pieces");
    for (const RecorderReport &each : cutReports)
        if (each.nextUpdate && each.status)
            qFatal("a time that is a status as well");
    return 0;
}

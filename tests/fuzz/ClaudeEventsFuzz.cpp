#include <QJsonDocument>
#include <QList>

#include "Ask/ClaudeProtocol.h"
#include "Shell/LineBuffer.h"

using namespace nubble;

namespace {

constexpr qsizetype longest = 512;

QList<QByteArray> lines(LineBuffer &buffer)
{
    QList<QByteArray> taken;
    while (const auto line = buffer.takeLine()) {
        if (line->size() > longest || line->contains('\n'))
            qFatal("more than a line");
        taken.append(*line);
    }
    return taken;
}

} // namespace

// Whatever the claude command writes, and wherever that is interrupted, the lines are the same, and an event
// is made only of what is an object. The first byte tells where.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    const QByteArray bytes(reinterpret_cast<const char *>(data) + 1, static_cast<qsizetype>(size) - 1);
    LineBuffer whole(longest);
    whole.append(bytes);
    const QList<QByteArray> all = lines(whole);
    const qsizetype cut = bytes.size() * data[0] / 255;
    LineBuffer pieces(longest);
    pieces.append(bytes.first(cut));
    QList<QByteArray> joined = lines(pieces);
    pieces.append(bytes.sliced(cut));
    joined += lines(pieces);
    if (joined != all)
        qFatal("other lines in two pieces");
    for (const QByteArray &line : all)
        if (ClaudeProtocol::decode(line) && !QJsonDocument::fromJson(line).isObject())
            qFatal("an event that is no object");
    return 0;
}

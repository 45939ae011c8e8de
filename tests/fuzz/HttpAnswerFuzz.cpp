#include "Review/HttpAnswer.h"

#include <algorithm>

using namespace nubble;

namespace {

constexpr qsizetype largestBody = 64;

HttpAnswer put(QByteArrayView bytes, qsizetype pieces)
{
    HttpAnswer answer(largestBody);
    for (qsizetype at = 0; at < bytes.size(); at += pieces)
        answer.append(bytes.sliced(at, std::min(pieces, bytes.size() - at)));
    return answer;
}

} // namespace

// Whatever a server answers, it is the same in whatever pieces it arrives, and no larger than it may be.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArrayView bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    HttpAnswer whole = put(bytes, std::max<qsizetype>(bytes.size(), 1));
    HttpAnswer slow = put(bytes, 1);
    for (int i = 0; i < 2; ++i) {
        if (whole.state() != slow.state())
            qFatal("the pieces make a difference");
        const bool isWhole = whole.state() == HttpAnswer::State::Whole;
        if (isWhole && (whole.body() != slow.body() || whole.status() != slow.status()))
            qFatal("the pieces make another answer");
        if (isWhole && (whole.body().size() > largestBody || whole.status() < 200 || whole.status() > 999))
            qFatal("an answer that cannot be");
        whole.end();
        slow.end();
    }
    return 0;
}

#include "Sessions/TranscriptLines.h"

using namespace nubble;

// Whatever a transcript holds, its texts are trimmed lines, or none.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    TranscriptValues values;
    findNewest(QByteArrayView(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)), values);
    for (const auto &text : {values.title, values.lastPrompt})
        if (text && (text->isEmpty() || text->contains(u'\n') || text->trimmed() != *text))
            qFatal("a text that is not one trimmed line");
    if (values.lastPrompt && values.lastPrompt->size() > 4096)
        qFatal("a prompt that is too long");
    return 0;
}

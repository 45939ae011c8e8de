#include "Usage/CacheEntry.h"

using namespace nubble;

// The parts of an entry lie inside it, whatever its bytes are.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArrayView bytes(data, static_cast<qsizetype>(size));
    const auto key = CacheEntry::keyOf(bytes);
    const auto body = CacheEntry::compressedBodyOf(bytes);
    if (key && (key->begin() != bytes.begin() + CacheEntry::headerSize || key->end() > bytes.end()))
        qFatal("a key outside its entry");
    if (body && (!key || body->begin() != key->end() || body->end() != bytes.end()))
        qFatal("a body outside its entry");
    const QByteArrayView anyKey = key.value_or(bytes);
    if (CacheEntry::isUsageKey(anyKey, "claude.ai") && !anyKey.contains("/usage"))
        qFatal("a false usage key");
    return 0;
}

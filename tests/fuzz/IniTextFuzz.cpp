#include "Shell/IniText.h"

using namespace nubble;

// Whatever a file of preferences holds, a value put into it is read again, and all others are as they were.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray file(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    auto values = IniText::valuesIn(file);
    for (const QByteArray &value : std::as_const(values)) {
        const std::optional<QString> text = IniText::textOf(value);
        if (text && text->isValidUtf16() && IniText::textOf(IniText::valueOf(*text)) != text)
            qFatal("a text that is read as another one");
    }
    const QString text = QString::fromLatin1(file.left(9));
    const QByteArray key = values.isEmpty() || size % 2 == 0 ? "a.key" : values.lastKey();
    const QByteArray changed = IniText::withValue(file, key, IniText::valueOf(text));
    values.insert(key, IniText::valueOf(text));
    if (IniText::valuesIn(changed) != values || IniText::textOf(values.value(key)) != text)
        qFatal("a change that cannot be read");
    return 0;
}

#pragma once

#include <QImage>

#include "Preview/PreviewSample.h"

namespace nubble {

// The sample as the panel shows it, cropped to what is to be seen, over a plain background, at the program's
// scale. `folder` is an empty one for preferences that nobody reads. Needs a QApplication.
[[nodiscard]] QImage drawPreview(const PreviewSample &sample, const QString &folder);

} // namespace nubble

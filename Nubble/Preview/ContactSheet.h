#pragma once

#include <QImage>
#include <QList>

#include "Preview/PreviewSample.h"

namespace nubble {

struct PreviewPicture {
    PreviewSample sample;
    QImage image;
};

// All pictures on one sheet, each below its name, a heading above those of each card. They are of one scale,
// which is the sheet's, too. Needs a QApplication.
[[nodiscard]] QImage contactSheet(const QList<PreviewPicture> &pictures);

} // namespace nubble

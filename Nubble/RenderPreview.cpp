#include "RenderPreview.h"

#include <QApplication>
#include <QDir>
#include <QFontDatabase>
#include <QHashSeed>
#include <QPalette>
#include <QRawFont>
#include <QTemporaryDir>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

#include "Commands/CommandLine.h"
#include "Platform/Outcome.h"
#include "Preview/ContactSheet.h"
#include "Preview/PreviewPanel.h"
#include "Widgets/Palette.h"

using namespace Qt::StringLiterals;

namespace nubble::RenderPreview {

namespace {

constexpr std::array scales{1, 2};
constexpr std::array families{u"Inter", u"DejaVu Sans"}; // the second for what the first has no signs for

// Of all installed fonts these alone, drawn the same whatever the desktop prefers. The system's own cache
// spares reading them; what it lacks goes to the temporary folder.
QByteArray fontConfiguration(const QByteArray &folder)
{
    return R"(<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "urn:fontconfig:fonts.dtd">
<fontconfig>
  <dir>/usr/share/fonts</dir>
  <dir>/usr/local/share/fonts</dir>
  <cachedir>)"
        + folder + R"(/fonts</cachedir>
  <cachedir>/var/cache/fontconfig</cachedir>
  <selectfont>
    <rejectfont>
      <pattern><patelt name="scalable"><bool>true</bool></patelt></pattern>
      <pattern><patelt name="scalable"><bool>false</bool></patelt></pattern>
    </rejectfont>
    <acceptfont>
      <pattern><patelt name="family"><string>Inter</string></patelt></pattern>
      <pattern><patelt name="family"><string>DejaVu Sans</string></patelt></pattern>
    </acceptfont>
  </selectfont>
  <match target="font">
    <edit name="antialias" mode="assign"><bool>true</bool></edit>
    <edit name="hinting" mode="assign"><bool>false</bool></edit>
    <edit name="autohint" mode="assign"><bool>false</bool></edit>
    <edit name="hintstyle" mode="assign"><const>hintnone</const></edit>
    <edit name="rgba" mode="assign"><const>none</const></edit>
  </match>
</fontconfig>
)";
}

Outcome write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    const bool isWritten = file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    return isWritten ? Outcome::done()
                     : Outcome::failed(u"cannot write %1: %2"_s.arg(path, file.errorString()));
}

// Of the surroundings nothing is left but where Qt's own files are.
Outcome fixSurroundings(int scale, const QString &folder)
{
    const std::array kept{"QT_PLUGIN_PATH", "QT_QPA_PLATFORM_PLUGIN_PATH"};
    std::array<QByteArray, kept.size()> values;
    for (std::size_t i = 0; i < kept.size(); ++i)
        values.at(i) = qgetenv(kept.at(i));
    ::clearenv();
    for (std::size_t i = 0; i < kept.size(); ++i)
        if (!values.at(i).isEmpty())
            qputenv(kept.at(i), values.at(i));
    const QString fonts = folder + u"/fonts.conf";
    qputenv("HOME", QFile::encodeName(folder));
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(folder));
    qputenv("FONTCONFIG_FILE", QFile::encodeName(fonts));
    qputenv("LC_ALL", "C.UTF-8");
    qputenv("TZ", "UTC");
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_SCALE_FACTOR", QByteArray::number(scale));
    QHashSeed::setDeterministicGlobalSeed();
    return write(fonts, fontConfiguration(QFile::encodeName(folder)));
}

// Tells the fonts from other releases of theirs, with which the pictures would not be the same.
std::optional<QString> fontFingerprint()
{
    QString fingerprint;
    for (const auto *const name : families) {
        const QString family = QString::fromUtf16(name);
        if (!QFontDatabase::hasFamily(family))
            return std::nullopt;
        const QByteArray head = QRawFont::fromFont(QFont(family)).fontTable("head");
        fingerprint += family + u' ' + QString::fromLatin1(head.mid(4, 8).toHex()) + u' ';
    }
    return fingerprint.trimmed();
}

Outcome save(QImage image, const QString &path, const QString &fonts)
{
    image.setText(u"Fonts"_s, fonts);
    constexpr int quickly = 70; // the smallest files take four times as long as all the drawing
    return image.save(path, "PNG", quickly) ? Outcome::done() : Outcome::failed(u"cannot write "_s + path);
}

Outcome drawAll(int scale, const QString &folder, const QString &temporary)
{
    const std::optional<QString> fonts = fontFingerprint();
    if (!fonts)
        return Outcome::failed(u"the pictures need the fonts Inter and DejaVu Sans "
                               "(fonts-inter and fonts-dejavu-core on Debian and Ubuntu)"_s);
    QList<PreviewPicture> pictures;
    for (const PreviewSample &sample : previewSamples()) {
        pictures.append({sample, drawPreview(sample, temporary)});
        const QString path = folder + u'/' + sample.fileName(scale);
        if (Outcome outcome = save(pictures.last().image, path, *fonts); !outcome.isDone())
            return outcome;
    }
    const QString sheet = scale == 1 ? u"/cards.png"_s : u"/cards@%1x.png"_s.arg(scale);
    return save(contactSheet(pictures), folder + sheet, *fonts);
}

// In a process of its own: the toolkit takes the scale when it starts, and for good.
[[noreturn]] void runScale(int scale, const QString &folder, const QString &temporary, char *program)
{
    Outcome outcome = fixSurroundings(scale, temporary);
    if (outcome.isDone()) {
        int count = 1;
        std::array<char *, 2> arguments{program, nullptr};
        const QApplication application(count, arguments.data());
        QApplication::setPalette(Palette::widgets());
        outcome = drawAll(scale, folder, temporary);
    }
    const int status = outcome.isDone() ? ExitDone : fail(ExitFailed, outcome.why().toStdString());
    std::fflush(nullptr);
    std::_Exit(status); // what the parent made is the parent's to clean up
}

int runScales(const QString &folder, char *program)
{
    for (const int scale : scales) {
        const QTemporaryDir temporary;
        const pid_t child = temporary.isValid() ? ::fork() : -1;
        if (child == 0)
            runScale(scale, folder, temporary.path(), program);
        int status = 0;
        if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status))
            return fail(ExitFailed, "there is no process to draw in, or it broke off");
        if (WEXITSTATUS(status) != ExitDone)
            return WEXITSTATUS(status);
    }
    return ExitDone;
}

} // namespace

std::optional<int> runIfAsked(int argc, char *argv[])
{
    if (argc < 2 || std::string_view(argv[1]) != "--render-quenwick")
        return std::nullopt;
    if (argc > 3)
        return fail(ExitWrongUsage, "--render-quenwick takes one folder.");
    const QDir folder(argc == 3 ? QFile::decodeName(argv[2]) : u"nubble-cards"_s);
    if (!folder.mkpath(u"."_s))
        return fail(ExitFailed, "cannot make the folder " + folder.path().toStdString());
    const int status = runScales(folder.absolutePath(), argv[0]);
    if (status == ExitDone)
        std::puts(QFile::encodeName(folder.absolutePath()).constData());
    return status;
}

} // namespace nubble::RenderPreview

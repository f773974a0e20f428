#pragma once

// Fixtures shared by the metadata, collection, command-line and services tests: images made by
// libvips and tagged by exiftool.

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <vips/vips8>

#include "imaging/VipsRuntime.h"
#include "support/TestSupport.h"

namespace metafixtures {

// A small grey image; the extension picks the format, `options` go to the saver ("strip",
// "profile=p3") in libvips' "[...]" file-name syntax.
inline QString makeImage(const QString& path, int width = 40, int height = 30,
                         const QString& options = {}) {
    VipsRuntime::ensureStarted();
    const QString target = options.isEmpty() ? path : path + u'[' + options + u']';
    (vips::VImage::black(width, height, vips::VImage::option()->set("bands", 3)) + 120)
        .cast(VIPS_FORMAT_UCHAR)
        .write_to_file(target.toUtf8().constData());
    return path;
}

// Runs exiftool in place on the file (IPTC text as UTF-8).
inline void tag(const QString& file, QStringList arguments) {
    arguments += {"-q", "-overwrite_original", "-charset", "iptc=UTF8", file};
    QString err;
    EXPECT_EQ(testsupport::runProgram("exiftool", arguments, nullptr, &err), 0) << qPrintable(err);
}

// exiftool's values of the tags (names as `exiftool -TAG` takes them, separated by spaces), "-"
// for a missing one, joined with "|".
inline std::string tags(const QString& file, const QString& names) {
    QStringList arguments{"-f", "-s3"};
    for (const QString& name : names.split(u' ')) arguments << u'-' + name;
    QString out;
    testsupport::runProgram("exiftool", arguments << file, &out);
    out.chop(out.endsWith(u'\n') ? 1 : 0);
    return out.replace(u'\n', u'|').toStdString();
}

using testsupport::readFile;
using testsupport::writeFile;

}  // namespace metafixtures

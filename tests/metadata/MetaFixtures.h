#pragma once

// Fixture images for the metadata tests: made by libvips, tagged by exiftool.

#include <gtest/gtest.h>

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QStringList>

#include "support/TestSupport.h"

namespace metafixtures {

// A small image of that size made by libvips; the extension picks the format. Options go to the
// saver (such as "strip" or "profile=p3") in libvips' "[...]" file-name syntax.
QString makeImage(const QString& path, int width = 40, int height = 30,
                  const QString& options = QString(), int bands = 3);

// Runs exiftool in place on the file; fails the test when exiftool reports an error.
inline void tag(const QString& file, const QStringList& assignments) {
    QString out, err;
    const int code = testsupport::runProgram(
        QStringLiteral("exiftool"),
        QStringList{QStringLiteral("-q"), QStringLiteral("-overwrite_original"),
                    QStringLiteral("-charset"), QStringLiteral("iptc=UTF8")} +
            assignments + QStringList{file},
        &out, &err);
    ASSERT_EQ(code, 0) << err.toStdString();
}

inline QByteArray bytes(const QString& file) {
    QFile f(file);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

inline void writeBytes(const QString& file, const QByteArray& data) {
    QFile f(file);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    ASSERT_EQ(f.write(data), data.size());
}

}  // namespace metafixtures

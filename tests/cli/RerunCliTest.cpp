// `orvella generate KIND ... --clean` run again into the folder of an earlier run, on real camera
// photos, as the user runs it.
#include <gtest/gtest.h>

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include "support/TestSupport.h"

using testsupport::freshDir;
using testsupport::orvella;
using testsupport::readFile;
using testsupport::runProgram;
using testsupport::writeFile;

namespace {

// Three small camera photos copied as a.jpg, b.jpg and c.jpg.
QStringList copyPhotos(const QString& dir) {
    QStringList copies;
    for (const QString& jpeg : testsupport::mateBackgroundJpegs()) {
        if (QFileInfo(jpeg).size() >= 400000 || copies.size() == 3) continue;
        copies.append(dir + QChar(char16_t(u'a' + copies.size())) + ".jpg");
        EXPECT_TRUE(QFile::copy(jpeg, copies.last()));
    }
    EXPECT_EQ(copies.size(), 3);
    return copies;
}

}  // namespace

// A run with fewer photos (and, for one-page kinds, a new page name) leaves the earlier run's files
// alone; with --clean it removes them first, and never a file the user put there.
TEST(RerunCli, CleanRemovesWhatTheRunNoLongerWrites) {
    const struct {
        const char* kind;
        QStringList set;        // for every run
        QStringList secondSet;  // for the runs after the first
        int secondPhotos;       // the first photos the later runs take
        QString imageFolder;    // where the user's own image sits
        QStringList gone;       // with --clean
        QStringList kept;
    } cases[] = {
        {"gallery",
         {"tfSmallCropWidth=40", "pubPhotoRatio=Free", "tfSmallCropHeight=30", "tfBigCropWidth=80",
          "ifNumberOfColumns=2", "ifNumberOfRows=1"},
         {},
         1,
         "KLimages_b/",
         {"KLimages_s/b.jpeg", "KLimages_b/b.jpeg", "KLimages_s/c.jpeg", "KLimages_b/c.jpeg",
          "myIndex2.html"},
         {"KLimages_s/a.jpeg", "KLimages_b/a.jpeg", "myIndex.html", "index.html",
          "KLcss/klGScss.css", "KLovlightbox/jquery.lightbox.js"}},
        {"slideshow",
         {"tfSsImageWidth=60", "tfSsImageHeight=40"},
         {"tfSsPageName=renamed"},
         2,
         "KLSsImages/",
         {"KLSsImages/c.jpeg", "slideshow.html"},
         {"KLSsImages/a.jpeg", "KLSsImages/b.jpeg", "renamed.html",
          "KLSlideShowcss/klovlSlideshow.css"}},
        {"grid",
         {},
         {"tfRgPageName=renamed"},
         2,
         "KLovImages/",
         {"KLovImages/c.jpeg", "index.html"},
         {"KLovImages/a.jpeg", "KLovImages/b.jpeg", "renamed.html", "KLovlightbox/next.png"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.kind);
        const QStringList photos = copyPhotos(freshDir("cli-rerun-src"));
        const QString out = freshDir("cli-rerun-out");
        QStringList sets, secondSets;
        for (const QString& s : c.set) sets << "--set" << s;
        for (const QString& s : c.secondSet) secondSets << "--set" << s;
        const QStringList base = QStringList{"generate", c.kind, "--out", out} + sets;
        QString stdOut, stdErr;
        ASSERT_EQ(orvella(base + photos, &stdOut, &stdErr), 0) << stdErr.toStdString();
        for (const QString& file : c.gone)
            ASSERT_TRUE(QFile::exists(out + file)) << file.toStdString();
        // The record is uploaded with the site: it names the photos, not the user's folders.
        const QByteArray record = readFile(out + ".orvella-manifest");
        EXPECT_TRUE(record.contains("\"a.jpg#"));
        EXPECT_FALSE(record.contains(QFileInfo(photos[0]).absolutePath().toUtf8()));
        writeFile(out + "notes.txt", "the user's notes");
        writeFile(out + c.imageFolder + "mine.jpeg", readFile(photos[0]));

        const QStringList later = base + secondSets + photos.mid(0, c.secondPhotos);
        ASSERT_EQ(orvella(later, &stdOut, &stdErr), 0) << stdErr.toStdString();
        for (const QString& file : c.gone + c.kept)
            EXPECT_TRUE(QFile::exists(out + file)) << "without --clean: " << file.toStdString();

        ASSERT_EQ(orvella(later + QStringList{"--clean"}, &stdOut, &stdErr), 0)
            << stdErr.toStdString();
        EXPECT_FALSE(stdErr.contains("orvella") || stdErr.contains("warning"))
            << stdErr.toStdString();
        for (const QString& file : c.gone)
            EXPECT_FALSE(QFile::exists(out + file)) << "with --clean: " << file.toStdString();
        for (const QString& file : c.kept + QStringList{"notes.txt", c.imageFolder + "mine.jpeg"})
            EXPECT_TRUE(QFile::exists(out + file)) << "with --clean: " << file.toStdString();
    }
}

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>

#include "metadata/MetaFixtures.h"
#include "services/cNSFileHandling.h"

using metafixtures::bytes;
using metafixtures::writeBytes;

TEST(FileHandling, CreateDirectoryReportsExistsOkFailed) {
    const QString dir = testsupport::freshDir("files/create");
    const cNSFileHandling files;
    EXPECT_EQ(files.hCreateDirectory(dir + "a/b/c/"), "OK");
    writeBytes(dir + "a/b/c/keep.txt", "x");
    EXPECT_EQ(files.hCreateDirectory(dir + "a/b/c/"), "EXISTS");
    EXPECT_TRUE(QFileInfo::exists(dir + "a/b/c/keep.txt"));
    EXPECT_EQ(files.hCreateDirectory(dir + "a/b/c/keep.txt/sub/"), "FAILED");
}

TEST(FileHandling, TextFilesAreReplacedAtomicallyInUtf8) {
    const QString dir = testsupport::freshDir("files/write");
    const cNSFileHandling files;
    writeBytes(dir + "index.html", QByteArray(5000, 'z'));
    files.hWritHTMLFile(dir + "index.html", "<p>Zürich – 東京</p>\n");
    EXPECT_EQ(bytes(dir + "index.html"),
              "<p>Z\xC3\xBCrich \xE2\x80\x93 \xE6\x9D\xB1\xE4\xBA\xAC</p>\n");
    files.hWriteTextFile(dir + "index.html", "");
    EXPECT_EQ(QFileInfo(dir + "index.html").size(), 0);
    files.hWritHTMLFile(dir + "missing/index.html", "x");  // no folder: nothing written
    EXPECT_EQ(QDir(dir).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList{"index.html"});  // and no temporary file left
}

TEST(FileHandling, CopiesReportOkOrFailed) {
    const QString dir = testsupport::freshDir("files/copy");
    const cNSFileHandling files;
    writeBytes(dir + "new.txt", "new");
    writeBytes(dir + "old.txt", "old content");
    EXPECT_EQ(files.hCopyFileTo(dir + "new.txt", dir + "old.txt"), "OK");
    EXPECT_EQ(bytes(dir + "old.txt"), "new");
    EXPECT_EQ(files.hCopyFileTo(dir + "new.txt", dir + "deep/er/x.txt"), "OK");
    EXPECT_EQ(bytes(dir + "deep/er/x.txt"), "new");
    EXPECT_EQ(files.hCopyFileTo(dir + "absent.txt", dir + "y.txt"), "Failed");
    // The destination is made a folder first, so the copy onto it always fails.
    EXPECT_EQ(files.hCopyFileToDest(dir + "new.txt", dir + "b.txt"), "Failed");
    EXPECT_TRUE(QFileInfo(dir + "b.txt").isDir());
    EXPECT_EQ(files.hCopyFolderTo(dir + "deep", dir + "copy"), "Success");
    EXPECT_EQ(bytes(dir + "copy/er/x.txt"), "new");
    EXPECT_EQ(files.hCopyFolderTo(dir + "deep", dir + "copy"), "Failed");  // exists already
}

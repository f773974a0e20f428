#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>

#include "services/cNSFileHandling.h"
#include "support/TestSupport.h"

using testsupport::readFile;
using testsupport::writeFile;

TEST(FileHandling, CreateDirectoryReportsExistsOkFailed) {
    const QString dir = testsupport::freshDir("files/create");
    const cNSFileHandling files;
    EXPECT_EQ(files.hCreateDirectory(dir + "a/b/c/"), "OK");
    writeFile(dir + "a/b/c/keep.txt", "x");
    EXPECT_EQ(files.hCreateDirectory(dir + "a/b/c/"), "EXISTS");
    EXPECT_TRUE(QFileInfo::exists(dir + "a/b/c/keep.txt"));
    EXPECT_EQ(files.hCreateDirectory(dir + "a/b/c/keep.txt/sub/"), "FAILED");
}

TEST(FileHandling, TextFilesAreReplacedAtomicallyInUtf8) {
    const QString dir = testsupport::freshDir("files/write");
    const cNSFileHandling files;
    writeFile(dir + "index.html", QByteArray(5000, 'z'));
    files.hWritHTMLFile(dir + "index.html", "<p>Zürich – 東京</p>\n");
    EXPECT_EQ(readFile(dir + "index.html"),
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
    writeFile(dir + "new.txt", "new");
    writeFile(dir + "old.txt", "old content");
    EXPECT_EQ(files.hCopyFileTo(dir + "new.txt", dir + "old.txt"), "OK");
    EXPECT_EQ(readFile(dir + "old.txt"), "new");
    EXPECT_EQ(files.hCopyFileTo(dir + "new.txt", dir + "deep/er/x.txt"), "OK");
    EXPECT_EQ(readFile(dir + "deep/er/x.txt"), "new");
    EXPECT_EQ(files.hCopyFileTo(dir + "absent.txt", dir + "y.txt"), "Failed");
    // The destination is made a folder first, so the copy onto it always fails.
    EXPECT_EQ(files.hCopyFileToDest(dir + "new.txt", dir + "b.txt"), "Failed");
    EXPECT_TRUE(QFileInfo(dir + "b.txt").isDir());
    EXPECT_EQ(files.hCopyFolderTo(dir + "deep", dir + "copy"), "Success");
    EXPECT_EQ(readFile(dir + "copy/er/x.txt"), "new");
    EXPECT_EQ(files.hCopyFolderTo(dir + "deep", dir + "copy"), "Failed");  // exists already
}

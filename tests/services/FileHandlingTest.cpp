#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "services/cNSFileHandling.h"
#include "support/TestSupport.h"

namespace {

QByteArray readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeBytes(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

TEST(FileHandling, CreateDirectoryReportsExistsOkFailed) {
    const QString dir = testsupport::freshDir("files/create");
    const cNSFileHandling files;
    EXPECT_EQ(files.hCreateDirectory(dir + "a/b/c/"), "OK");
    EXPECT_TRUE(QFileInfo(dir + "a/b/c").isDir());
    writeBytes(dir + "a/b/c/keep.txt", "x");
    EXPECT_EQ(files.hCreateDirectory(dir + "a/b/c/"), "EXISTS");
    EXPECT_TRUE(QFileInfo::exists(dir + "a/b/c/keep.txt"));
    writeBytes(dir + "plain", "x");
    EXPECT_EQ(files.hCreateDirectory(dir + "plain"), "EXISTS");  // any existing item
    EXPECT_EQ(files.hCreateDirectory(dir + "plain/sub/"), "FAILED");
}

TEST(FileHandling, WriteHtmlReplacesContentInUtf8) {
    const QString dir = testsupport::freshDir("files/write");
    const cNSFileHandling files;
    const QString path = dir + "index.html";
    writeBytes(path, QByteArray(5000, 'z'));
    files.hWritHTMLFile(path, QStringLiteral("<p>Zürich – 東京</p>\n"));
    EXPECT_EQ(readAll(path),
              QByteArray("<p>Z\xC3\xBCrich \xE2\x80\x93 \xE6\x9D\xB1\xE4\xBA\xAC</p>\n"));
    files.hWriteTextFile(path, "");
    EXPECT_TRUE(QFileInfo::exists(path));
    EXPECT_EQ(QFileInfo(path).size(), 0);
    EXPECT_EQ(QDir(dir).entryList(QDir::Files), QStringList{"index.html"});  // no temporary left
    files.hWritHTMLFile(dir + "missing/index.html", "x");  // no folder: nothing written, no crash
    EXPECT_FALSE(QFileInfo::exists(dir + "missing/index.html"));
}

TEST(FileHandling, CopyFileToMakesParentsAndReplaces) {
    const QString dir = testsupport::freshDir("files/copy");
    const cNSFileHandling files;
    writeBytes(dir + "new.txt", "new");
    QDir().mkpath(dir + "out");
    writeBytes(dir + "out/old.txt", "old content");
    EXPECT_EQ(files.hCopyFileTo(dir + "new.txt", dir + "out/old.txt"), "OK");
    EXPECT_EQ(readAll(dir + "out/old.txt"), "new");
    EXPECT_EQ(files.hCopyFileTo(dir + "new.txt", dir + "deep/er/x.txt"), "OK");
    EXPECT_EQ(readAll(dir + "deep/er/x.txt"), "new");
    EXPECT_EQ(files.hCopyFileTo(dir + "absent.txt", dir + "out/y.txt"), "Failed");
    EXPECT_EQ(files.hCopyFileTo(dir + "new.txt", dir + "new.txt/under/file"), "Failed");
}

TEST(FileHandling, CopyFileToDestMakesAFolderAndFails) {
    const QString dir = testsupport::freshDir("files/dest");
    const cNSFileHandling files;
    writeBytes(dir + "a.txt", "a");
    EXPECT_EQ(files.hCopyFileToDest(dir + "a.txt", dir + "b.txt"), "Failed");
    EXPECT_TRUE(QFileInfo(dir + "b.txt").isDir());
}

TEST(FileHandling, CopyFolderToCopiesTheTree) {
    const QString dir = testsupport::freshDir("files/folder");
    const cNSFileHandling files;
    QDir().mkpath(dir + "src/sub");
    writeBytes(dir + "src/one.css", "1");
    writeBytes(dir + "src/sub/two.js", "2");
    EXPECT_EQ(files.hCopyFolderTo(dir + "src", dir + "dst"), "Success");
    EXPECT_EQ(readAll(dir + "dst/sub/two.js"), "2");
    EXPECT_EQ(files.hCopyFolderTo(dir + "src", dir + "dst"), "Failed");  // exists already
    EXPECT_EQ(files.hCopyFolderTo(dir + "none", dir + "dst2"), "Failed");
}

TEST(FileHandling, FileSizeInDecimalUnits) {
    const QString dir = testsupport::freshDir("files/size");
    const std::vector<std::pair<qint64, QString>> cases = {
        {0, "Zero KB"},   {1, "1 byte"},       {999, "999 bytes"},
        {1000, "1 KB"},   {12345, "12 KB"},    {999499, "999 KB"},
        {999999, "1 MB"}, {1234567, "1.2 MB"}, {2000000, "2 MB"}};
    cNSFileHandling files;
    for (const auto& [size, text] : cases) {
        const QString path = dir + QString::number(size);
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.resize(size);
        file.close();
        EXPECT_EQ(files.getFileSize(path), text) << size;
        EXPECT_EQ(files.fileSize, text);
    }
}

TEST(FileHandling, PlistRoundTrip) {
    const QString dir = testsupport::freshDir("files/plist");
    const cNSFileHandling files;
    const QVariantMap photo{{"myPhotoName", "IMG_1.jpg"}, {"myPhotoSelect", "1"}};
    const QVariantMap map{
        {"destination", "/tmp/site/"},
        {"count", qlonglong(-42)},
        {"ratio", 0.1},
        {"on", true},
        {"off", false},
        {"blob", QByteArray("\x00\x01\xFF<&>", 6)},
        {"when", QDateTime(QDate(2024, 2, 29), QTime(13, 5, 9), Qt::UTC)},
        {"list", QVariantList{"a & <b>", qlonglong(2), QVariantList{}}},
        {"photo0", photo},
        {"empty", QVariantMap{}},
        {"text", QStringLiteral("  Ünïcode\nline ")},
    };
    ASSERT_TRUE(files.writeToPlist(dir + "a.plist", map));
    const QByteArray xml = readAll(dir + "a.plist");
    EXPECT_TRUE(xml.startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>"))
        << xml.left(60).data();
    EXPECT_TRUE(xml.contains("<plist version=\"1.0\">"));
    EXPECT_TRUE(xml.contains("<real>0.1</real>"));
    EXPECT_TRUE(xml.contains("<date>2024-02-29T13:05:09Z</date>"));
    EXPECT_EQ(files.readPlist(dir + "a.plist"), map);
}

TEST(FileHandling, PlistReadsHandWrittenAndRejectsJunk) {
    const QString dir = testsupport::freshDir("files/plist2");
    const cNSFileHandling files;
    writeBytes(
        dir + "hand.plist",
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n"
        "\t<key>mySqlVal0</key>\n\t<string>My preset</string>\n"
        "\t<key>n</key><integer> 7 </integer>\n\t<key>d</key><data>\n\tT3J2\n\tZWxsYQ==\n</data>\n"
        "</dict>\n</plist>\n");
    const QVariantMap map = files.readPlist(dir + "hand.plist");
    EXPECT_EQ(map.value("mySqlVal0").toString(), "My preset");
    EXPECT_EQ(map.value("n").toLongLong(), 7);
    EXPECT_EQ(map.value("d").toByteArray(), "Orvella");
    writeBytes(dir + "junk.plist", "\x89PNG garbage <<<");
    EXPECT_TRUE(files.readPlist(dir + "junk.plist").isEmpty());
    writeBytes(dir + "cut.plist",
               "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>a</key><str");
    EXPECT_TRUE(files.readPlist(dir + "cut.plist").isEmpty());
    EXPECT_TRUE(files.readPlist(dir + "missing.plist").isEmpty());
}

TEST(FileHandling, ThinWrappers) {
    const QString dir = testsupport::freshDir("files/thin");
    const cNSFileHandling files;
    ASSERT_TRUE(files.writeNSDataToFile(dir + "d.bin", QByteArray("a\nb\r\nc", 6)));
    EXPECT_EQ(files.readNSDataFromFile(dir + "d.bin"), QByteArray("a\nb\r\nc", 6));
    EXPECT_EQ(files.hReadTextFileLbyL(dir + "d.bin"), (QStringList{"a", "b", "c"}));
    EXPECT_TRUE(files.hCheckIfFileExist(dir + "d.bin"));
    EXPECT_EQ(files.hGetFileType(dir + "d.bin"), "NSFileTypeRegular");
    EXPECT_EQ(files.hGetFileType(dir), "NSFileTypeDirectory");
    EXPECT_TRUE(files.hGetModificationDateFile(dir + "d.bin").isValid());
    EXPECT_TRUE(files.hGetCreationDateFile(dir + "d.bin").isValid());
    EXPECT_TRUE(files.hRenameFile(dir + "d.bin", dir + "e.bin"));
    EXPECT_TRUE(files.hMoveFileTo(dir + "e.bin", dir + "f.bin"));
    EXPECT_FALSE(files.hCheckIfFileExist(dir + "e.bin"));
    EXPECT_TRUE(files.hAliasFileTo(dir + "f.bin", dir + "link.bin"));
    EXPECT_EQ(files.hGetFileType(dir + "link.bin"), "NSFileTypeSymbolicLink");
    EXPECT_TRUE(files.hDeleteFiles(dir + "f.bin"));
    EXPECT_FALSE(files.hDeleteFiles(dir + "f.bin"));
    EXPECT_TRUE(files.readNSDataFromFile(dir + "f.bin").isEmpty());
}

}  // namespace

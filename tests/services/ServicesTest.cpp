#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <climits>

#include "services/KLbookmarks.h"
#include "services/TextValues.h"
#include "services/cColorWellHandling.h"
#include "services/cNSColorHandling.h"
#include "services/cNSFileHandling.h"
#include "services/cNSStringHandling.h"
#include "services/cToolBox.h"
#include "support/TestSupport.h"

using testsupport::readFile;
using testsupport::writeFile;

TEST(Texts, SplitKeepsEveryEmptyPartBase64AndLeadingNumbers) {
    const std::pair<QString, QStringList> cases[] = {
        {"a;b;", {"a", "b", ""}}, {";a;;b", {"", "a", "", "b"}}, {"", {""}}};
    for (const auto& [text, parts] : cases)
        EXPECT_EQ(cNSStringHandling::hSplitString(text, ";"), parts) << text;
    // Long texts without line breaks: through the bookmarks' text below.
    EXPECT_EQ(cNSStringHandling::hConvertNSdToNSstr("Orvella"), "T3J2ZWxsYQ==");
    for (const QString bad : {"T3J2*ZWxsYQ==", "T3J2\nZWxsYQ==", "not base64!"})
        EXPECT_TRUE(cNSStringHandling::hConvertNSstrToNSd(bad).isEmpty()) << bad;
    const std::pair<QString, int> numbers[] = {
        {"12", 12}, {"  -7px", -7},          {"+3", 3}, {"", 0}, {"abc", 0},
        {"3.9", 3}, {"99999999999", INT_MAX}};
    for (const auto& [text, value] : numbers) EXPECT_EQ(TextValues::intValue(text), value) << text;
    EXPECT_DOUBLE_EQ(TextValues::doubleValue(" -1.5e1x"), -15.0);
}

TEST(ToolBox, PercentEncodesExactlyFourCharacters) {
    EXPECT_EQ(cToolBox::percentEncode("file:///a b/x?y=1&z+2%é#;.html"),
              "file:///a b/x%3Fy%3D1%26z%2B2%é#;.html");
    RecordingUserInterface ui;
    cToolBox(ui).hShowURL2("file:///tmp/My Site/R&D+1/index.html");
    EXPECT_EQ(ui.opened, QStringList{"file:///tmp/My Site/R%26D%2B1/index.html"});
    EXPECT_EQ(cToolBox::hNSStrToUrl("file:///tmp/a?b.html").toLocalFile(), "/tmp/a?b.html");
}

// Folders report OK, EXISTS or FAILED; text files are replaced whole in UTF-8 (never into a
// missing folder, no temporary file left); copies report OK or Failed.
TEST(FileHandling, FoldersTextFilesAndCopies) {
    const QString dir = testsupport::freshDir("files");
    const cNSFileHandling files;
    EXPECT_EQ(files.hCreateDirectory(dir + "a/b/c/"), "OK");
    writeFile(dir + "a/b/c/keep.txt", "x");
    EXPECT_EQ(files.hCreateDirectory(dir + "a/b/c/"), "EXISTS");
    EXPECT_TRUE(QFileInfo::exists(dir + "a/b/c/keep.txt"));
    EXPECT_EQ(files.hCreateDirectory(dir + "a/b/c/keep.txt/sub/"), "FAILED");

    writeFile(dir + "index.html", QByteArray(5000, 'z'));
    files.hWritHTMLFile(dir + "index.html", "<p>Zürich – 東京</p>\n");
    EXPECT_EQ(readFile(dir + "index.html"),
              "<p>Z\xC3\xBCrich \xE2\x80\x93 \xE6\x9D\xB1\xE4\xBA\xAC</p>\n");
    files.hWriteTextFile(dir + "index.html", "");
    EXPECT_EQ(QFileInfo(dir + "index.html").size(), 0);
    files.hWritHTMLFile(dir + "missing/index.html", "x");
    EXPECT_EQ(QDir(dir).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              (QStringList{"a", "index.html"}));

    writeFile(dir + "new.txt", "new");
    EXPECT_EQ(files.hCopyFileTo(dir + "new.txt", dir + "index.html"), "OK");
    EXPECT_EQ(readFile(dir + "index.html"), "new");
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

// A bookmark resolves while its file or folder exists, through its base64 text too; data made
// elsewhere and vanished paths give nothing.
TEST(Bookmarks, ResolveOnlyWhatStillExists) {
    const QString dir = testsupport::freshDir("bookmarks");
    const QString folder = dir + "folder with space/ünïcode";
    ASSERT_TRUE(QDir().mkpath(folder));
    const QString file = dir + "pattern.png";
    QFile(file).open(QIODevice::WriteOnly);

    for (const QString& path : {folder, file}) {
        SCOPED_TRACE(path);
        const QByteArray bookmark = KLbookmarks::bookmarkForURL(QUrl::fromLocalFile(path));
        const QString text = cNSStringHandling::hConvertNSdToNSstr(bookmark);
        EXPECT_FALSE(text.contains(u'\''));
        EXPECT_EQ(KLbookmarks::urlForBookmark(cNSStringHandling::hConvertNSstrToNSd(text)),
                  QUrl::fromLocalFile(path));
    }
    // A folder given with its separator is the same folder.
    EXPECT_EQ(KLbookmarks::bookmarkForURL(QUrl::fromLocalFile(folder + "/")),
              KLbookmarks::bookmarkForURL(QUrl::fromLocalFile(folder)));

    const QByteArray gone = KLbookmarks::bookmarkForURL(QUrl::fromLocalFile(file));
    ASSERT_TRUE(QFile::remove(file));
    EXPECT_TRUE(KLbookmarks::urlForBookmark(gone).isEmpty());  // stale
    EXPECT_EQ(KLbookmarks::pathInBookmark(gone), file);

    const QByteArray foreign[] = {"",
                                  "book\0mark",
                                  "KLbookmark/1\n",
                                  "KLbookmark/1\nrelative",
                                  QByteArray("KLbookmark/1\n/tmp\0/x", 20),
                                  "KLbookmark/1\n/\xff\xfe",
                                  QByteArray(4096, 'x')};
    for (const QByteArray& data : foreign) EXPECT_TRUE(KLbookmarks::urlForBookmark(data).isEmpty());
    EXPECT_TRUE(KLbookmarks::bookmarkForURL(QUrl("https://example.org/a")).isEmpty());
}

// Hex text truncates each component; a colour from text scans one hex number, while setting a
// hex value needs six leading digits.
TEST(ColorHandling, HexTextColourFromTextAndSetHexValue) {
    EXPECT_EQ(cNSColorHandling::getHEXValue(QColor::fromRgbF(1.0f, 0.5f, 0.0f)), "FF7F00");
    EXPECT_EQ(cNSColorHandling::getHEXValue(QColor::fromHsv(0, 0, 255)), "FFFFFF");  // made RGB
    const std::pair<QString, QString> scans[] = {
        {"ff8800", "FF8800"},   {"  0x00ff00", "00FF00"}, {"#FF0000", "000000"},
        {"", "000000"},         {"zz", "000000"},         {"12", "000012"},
        {"ABCDEFzz", "ABCDEF"}, {"1234567", "234567"},  // bits above blue-green-red are ignored
    };
    for (const auto& [text, hex] : scans) {
        const QColor color = cNSColorHandling().colorFromHexToRGB(text);
        EXPECT_EQ(cNSColorHandling::getHEXValue(color), hex) << text;
        EXPECT_EQ(color.alphaF(), 1.0f);
    }
    const std::pair<QString, QString> sets[] = {
        // "" when nothing changes
        {"#ff8800", "FF8800"}, {"ff8800zz", "FF8800"}, {"ff88", ""}, {"#ff88000", ""},
        {"##ff8800", ""},      {" ff8800", ""},        {"", ""}};
    for (const auto& [text, hex] : sets) {
        const auto color = cNSColorHandling::setHEXValue(text);
        EXPECT_EQ(color ? cNSColorHandling::getHEXValue(*color) : QString(), hex) << text;
    }
}

// The two tag tables are not mirror images of each other (kept on purpose); a tag outside them, or
// without a well, changes nothing.
TEST(ColorWellHandling, TagsChooseFieldsAndWells) {
    using H = cColorWellHandling;
    EXPECT_EQ(H::hCallHEXfromColorwell(1, Qt::red).value().fieldName, "tfNSColorWellObjBGCc");
    EXPECT_EQ(H::hCallHEXfromColorwell(13, Qt::red).value().fieldName,
              "tfNSColorWellObjRGLightboxBgColor");
    EXPECT_EQ(H::controlTextDidEndEditing(1, "00FF80").value().wellName, "ascNSColorWellObjTCt");
    EXPECT_EQ(H::controlTextDidEndEditing(21, "00FF80").value().wellName,
              "ascNSColorWellObjRGLightboxBgColor");
    EXPECT_EQ(H::hCallHEXfromColorwell(0, QColor(255, 127, 0)).value().hex, "FF7F00");
    EXPECT_FALSE(H::hCallHEXfromColorwell(14, Qt::red));
    EXPECT_EQ(H::controlTextDidEndEditing(2, "00FF80").value().color, QColor(0, 255, 128));
    for (int tag : {3, 10, 22}) EXPECT_FALSE(H::controlTextDidEndEditing(tag, "00FF80")) << tag;
    EXPECT_EQ(H::boxRadius(1, "10", "5", "3"), "50");
    EXPECT_EQ(H::boxRadius(0, "10", "5", "3"), "23");
}

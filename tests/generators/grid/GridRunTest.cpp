// Whole Responsive Grid runs on small photos made here, checked against the page format, the image
// files (read back with vipsheader, vips and exiftool) and the alerts.
#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <tuple>

#include "generators/grid/cResponsiveGrid.h"
#include "support/TestSupport.h"

using testsupport::filesUnder;
using testsupport::freshDir;
using testsupport::runProgram;

namespace {

// A small RGB photo of w x h (a gradient, so encoders have something to do).
QString makePhoto(const QString& dir, const QString& name, int w, int h) {
    runProgram("vips", {"grey", dir + "g.v", QString::number(w), QString::number(h), "--uchar"});
    runProgram("vips", {"bandjoin_const", dir + "g.v", dir + name, "40 200"});
    QFile::remove(dir + "g.v");
    return dir + name;
}

// Latin-1 maps every byte to one character, so binary files compare exactly too.
QString readText(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.readAll()) : "<missing>";
}

// "WxH loader" as vipsheader reads the file.
QString header(const QString& path) {
    QString out;
    runProgram("vipsheader", {path}, &out);
    const QString info = out.trimmed().section(": ", -1);
    return info.section(' ', 0, 0) + " " + info.section(", ", -1);
}

SettingsStore store(const QStringList& set) {
    std::vector<std::pair<QString, QString>> overrides;
    for (const QString& s : set) overrides.push_back({s.section('=', 0, 0), s.section('=', 1)});
    return testsupport::settingsWith(overrides);
}

// The published photos of a collection of `paths`, as a run receives them.
QList<PhotoEntry> published(const QStringList& paths, const QList<int>& highlighted,
                            const QList<int>& unpublished = {},
                            const QStringList& descriptions = {}) {
    PhotoCollection collection;
    collection.setCellImageSize(0);
    EXPECT_EQ(collection.appendPhotos(paths), paths.size());
    for (const int row : highlighted) collection.setHighlight(row, true);
    for (const int row : unpublished) collection.setSelect(row, false);
    for (int row = 0; row < descriptions.size(); ++row)
        collection.setDescription(row, descriptions[row]);
    return collection.hGetPhotosFromArrayController();
}

// "|" stands for a line feed.
const QString kPrologue =
    R"(<!DOCTYPE html PUBLIC "-//W3C//DTD XHTML 1.0 Transitional//EN" )"
    R"("http://www.w3.org/TR/xhtml1/DTD/xhtml1-transitional.dtd">|)"
    R"(<html xmlns="http://www.w3.org/1999/xhtml">|<head>|)"
    R"(<meta http-equiv="Content-Type" content="text/html; charset=UTF-8" />|)"
    R"(<meta name="viewport" content="width=device-width, initial-scale=1.0" />|)";
// %1 the title line, %2 the font family, %3 the description block, %4 the cells.
const QString kPage =
    kPrologue +
    R"(%1<!-- Keldra: Responsive grid creation - Begin -->|<link href="KLResponsiveGridCss/)"
    R"(klovlResponsiveGrid.css" rel="stylesheet" type="text/css">|<!-- Keldra: Responsive grid )"
    R"(creation - End -->|<link href="https://fonts.googleapis.com/css?family=%2:300,400,500,700,)"
    R"(900" rel="stylesheet">|<!-- Keldra: lightbox - Begin -->|<script type="text/javascript" )"
    R"(src="https://ajax.googleapis.com/ajax/libs/jquery/1.9.1/jquery.min.js"></script>)"
    R"(<script type="text/javascript" src="KLovlightbox/jquery.lightbox.js">|</script>|)"
    R"(<script>|$(function() {|$('.klovlImage a').lightbox();|});|</script>|)"
    R"(<script>|$(function() {|$('.klovlImage4 a').lightbox();|});|</script>|)"
    R"(<!-- Keldra: lightbox - End -->|</head>|<body>|<!-- Keldra: Pattern background: Begin -->|)"
    R"(<div class="klSsPatternBox">|<!-- Keldra: Responsive Grid container: Begin -->|)"
    R"(<div class="klovlResponsiveGrid-container">|%3<!-- Keldra: Responsive photo grid - )"
    R"(begins -->|<div class="klovlGrid"> |%4</div>||</div>||<!-- Keldra: Responsive grid )"
    R"(container: End-->|</div>|<!-- Keldra: Pattern background: End -->|<br>|</body>|</html>|)";

QString page(const QString& title, const QString& family, const QString& description,
             const QString& cells) {
    return QString(kPage).arg(title, family, description, cells).replace('|', '\n');
}

QString cell(const QString& cls, const QString& href, const QString& title) {
    return QStringLiteral(
               "<div class=\"%1\"> \n<a href=\"KLovImages/%2\" rel=\"klOVlightbox\" title=\"%3\"> "
               "<img src=\"KLovImages/%2\" style=\"width:100%\">\n</a>\n</div>\n\n")
        .arg(cls, href, title);
}

}  // namespace

// One collection, written twice: title, description and captions on (metadata text escaped in the
// title attribute, the description not), then all three off. Cells by highlight and orientation;
// the unpublished photo is absent, highlighted as it is.
TEST(GridRun, PageTextsCellsAndFiles) {
    const QString src = freshDir("grid-page-src");
    const QStringList paths = {
        makePhoto(src, "wide.png", 400, 300),   makePhoto(src, "tall.png", 300, 400),
        makePhoto(src, "square.png", 200, 200), makePhoto(src, "plain.png", 400, 300),
        makePhoto(src, "hidden.png", 400, 300), makePhoto(src, "my photo#1.png", 300, 400)};
    const QList<PhotoEntry> photos =
        published(paths, {0, 1, 2, 4}, {4}, {R"(<i> & "q")", "", "", "", "", ""});
    ASSERT_EQ(photos.size(), 5);

    const QString on = freshDir("grid-page-on");
    RecordingUserInterface ui;
    const RunResult result = cResponsiveGrid::hCreateResponsiveGrid(
        on, photos,
        store({"cbRgWebPageTitle=1", "tfRgWebPageTitle=T & T", "cbRgDescription=1",
               "tvRgDescription=<b>Hi</b>", "cbRgExifUC=1",
               "tfRgMetaDataToShow=Show Filename;EXIF User Comment", "tfRgMetaDataValueSep= / ",
               "pubRgHTMLDescriptionFontFamily=Kanit", "tfRGMaxColumns=4"}),
        ui, 2, true);
    ASSERT_TRUE(result.ok && result.failures.isEmpty()) << result.failures.join('\n').toStdString();
    EXPECT_EQ(result.firstPage, on + "index.html");
    EXPECT_EQ(ui.opened, QStringList{"file:///" + on + "index.html"});
    EXPECT_TRUE(ui.alerts.empty());
    const QString cellsOn =
        cell("klovlImage4", "wide.jpeg", "wide / &lt;i&gt; &amp; &quot;q&quot;") +
        cell("klovlImage klovlImageVertical", "tall.jpeg", "tall") +
        cell("klovlImage klovlImageVertical", "square.jpeg", "square") +
        cell("klovlImage", "plain.jpeg", "plain") +
        cell("klovlImage", "my%20photo%231.jpeg", "my photo#1");
    EXPECT_EQ(readText(on + "index.html").toStdString(),
              page("<title>T &amp; T</title>\n", "Kanit",
                   "<div class=\"klovlRgDescription\"><b>Hi</b></div>\n", cellsOn)
                  .toStdString());
    EXPECT_TRUE(readText(on + "KLResponsiveGridCss/klovlResponsiveGrid.css")
                    .contains("minmax(300px, 1fr));\ngrid-template-rows: repeat(auto-fill, "
                              "minmax(225px, 1fr));"));
    // Grid images 960 wide, JPEG, named by base name; the nine lightbox files; nothing else.
    EXPECT_EQ(header(on + "KLovImages/wide.jpeg") + ", " + header(on + "KLovImages/tall.jpeg") +
                  ", " + header(on + "KLovImages/square.jpeg"),
              "960x720 jpegload, 960x1280 jpegload, 960x960 jpegload");
    QStringList expected = {"KLResponsiveGridCss/klovlResponsiveGrid.css",
                            "KLovImages/my photo#1.jpeg",
                            "KLovImages/plain.jpeg",
                            "KLovImages/square.jpeg",
                            "KLovImages/tall.jpeg",
                            "KLovImages/wide.jpeg",
                            "index.html"};
    for (const char* name :
         {"close.gif", "loading.gif", "klOrvella.png", "overlay.png", "jquery.lightbox.js",
          "jquery02.lightbox.js", "next.png", "close.png", "previous.png"})
        expected.append(QStringLiteral("KLovlightbox/") + name);
    expected.sort();
    EXPECT_EQ(filesUnder(on), expected);
    EXPECT_TRUE(QDir(on + "KLovPatterns").exists());

    const QString off = freshDir("grid-page-off");
    ASSERT_TRUE(cResponsiveGrid::hCreateResponsiveGrid(
                    off, photos,
                    store({"cbRgWebPageTitle=0", "cbRgDescription=0", "cbRgShowMetaData=0",
                           "tfPageName=start", "pubRgHTMLDescriptionFontFamily=Libre Franklin"}),
                    ui, 1)
                    .ok);
    const QString cellsOff = cell("klovlImage4", "wide.jpeg", "") +
                             cell("klovlImage klovlImageVertical", "tall.jpeg", "") +
                             cell("klovlImage klovlImageVertical", "square.jpeg", "") +
                             cell("klovlImage", "plain.jpeg", "") +
                             cell("klovlImage", "my%20photo%231.jpeg", "");
    EXPECT_EQ(readText(off + "start.html").toStdString(),
              page("", "Libre+Franklin", "", cellsOff).toStdString());
}

// No photo, column counts that are not whole numbers from 1 to 1200, and page names that would
// leave the folder are refused with one alert, before anything is written.
TEST(GridRun, RefusalsWriteNothing) {
    const QString photo = makePhoto(freshDir("grid-refused-src"), "a.png", 40, 30);
    const std::vector<std::tuple<QStringList, QStringList, QString>> cases = {
        {{photo}, {"tfRGMaxColumns=0"}, "Sorry, the grid layout is not possible.|"},
        {{photo}, {"tfRGMaxColumns=-3"}, "Sorry, the grid layout is not possible.|"},
        {{photo}, {"tfRGMaxColumns=four"}, "Sorry, the grid layout is not possible.|"},
        {{photo}, {"tfRGMaxColumns=2.5"}, "Sorry, the grid layout is not possible.|"},
        {{photo}, {"tfRGMaxColumns="}, "Sorry, the grid layout is not possible.|"},
        {{photo}, {"tfRGMaxColumns=1201"}, "Sorry, the grid layout is not possible.|"},
        {{photo}, {"tfRgPageName=../up"}, "Sorry, the page name is not possible.|"},
        {{photo}, {"tfRgPageName= "}, "Sorry, the page name is not possible.|"},
    };
    for (const auto& [paths, settings, alert] : cases) {
        const QString dir = freshDir("grid-refused");
        QList<PhotoEntry> photos;
        for (const QString& path : paths) photos.append({QUrl::fromLocalFile(path), {}, "H", 0});
        RecordingUserInterface ui;
        EXPECT_FALSE(cResponsiveGrid::hCreateResponsiveGrid(dir, photos, store(settings), ui).ok);
        ASSERT_EQ(ui.alerts.size(), 1u) << settings.join(' ').toStdString();
        const auto& a = ui.alerts.front();
        EXPECT_TRUE((a.title + "|" + a.description).startsWith(alert) && a.stopsRun)
            << (a.title + "|" + a.description).toStdString();
        EXPECT_TRUE(ui.stops == 1 && QDir(dir).isEmpty() && ui.opened.isEmpty());
    }
}

// The grid image's height comes from a whole-percent scale: 960 / 4096 is 23 %, so 3072 rows give
// 706, not 720. Always JPEG, named by the base name, whatever the source type.
TEST(GridImages, WholePercentStepFormatAndName) {
    const QString src = freshDir("grid-images-src");
    const QString out = freshDir("grid-images");
    const std::tuple<const char*, int, int, const char*> cases[] = {
        {"a.jpg", 4000, 3000, "960x720"},  {"b.png", 3999, 2000, "960x480"},
        {"c.tif", 4096, 3072, "960x706"},  {"d.e.png", 1000, 3000, "960x2880"},
        {"small.png", 100, 70, "960x672"},
    };
    for (const auto& [name, w, h, size] : cases) {
        const QString path = makePhoto(src, name, w, h);
        const QString output = cResponsiveGrid::outputName(path);
        EXPECT_EQ(output, QFileInfo(name).completeBaseName() + ".jpeg");
        EXPECT_TRUE(cResponsiveGrid::hMakeGridImage(path, out, output).isEmpty()) << name;
        EXPECT_EQ(header(out + output), QString(size) + " jpegload") << name;
    }
}

// A photo stored on its side with an EXIF orientation: its cell is that of its upright shape and
// its grid image is upright (its left half, red, on top), no longer tagged as turned.
TEST(GridRun, ExifOrientedPhotoIsUpright) {
    const QString src = freshDir("grid-exif-src");
    runProgram("vips", {"black", src + "b.v", "200", "300", "--bands", "3"});
    runProgram("vips", {"linear", src + "b.v", src + "red.v", "1 1 1", "220 0 0", "--uchar"});
    runProgram("vips", {"linear", src + "b.v", src + "blue.v", "1 1 1", "0 0 220", "--uchar"});
    runProgram("vips", {"join", src + "red.v", src + "blue.v", src + "turned.jpg", "horizontal"});
    ASSERT_EQ(
        runProgram("exiftool", {"-overwrite_original", "-Orientation#=6", src + "turned.jpg"}), 0);
    const QList<PhotoEntry> photos = published({src + "turned.jpg"}, {0});
    ASSERT_EQ(photos.size(), 1);
    EXPECT_EQ(cResponsiveGrid::cellClass(photos[0]), "klovlImage klovlImageVertical");

    const QString dir = freshDir("grid-exif");
    RecordingUserInterface ui;
    ASSERT_TRUE(
        cResponsiveGrid::hCreateResponsiveGrid(dir, photos, store({}), ui).failures.isEmpty());
    EXPECT_TRUE(
        readText(dir + "index.html").contains("<div class=\"klovlImage klovlImageVertical\">"));
    const QString image = dir + "KLovImages/turned.jpeg";
    EXPECT_EQ(header(image), "960x1280 jpegload");  // 300 x 400 upright: 320 %
    auto colour = [&](int x, int y) {
        QString out;
        runProgram("vips", {"getpoint", image, QString::number(x), QString::number(y)}, &out);
        const QStringList v = out.simplified().split(' ');
        return v.size() < 3                              ? QString("?")
               : v[0].toInt() > 150 && v[2].toInt() < 70 ? "red"
               : v[2].toInt() > 150 && v[0].toInt() < 70 ? "blue"
                                                         : out;
    };
    EXPECT_EQ(colour(480, 100) + " " + colour(480, 1180), "red blue");
    const QString orientation = testsupport::exiftool(image, "Orientation");
    EXPECT_TRUE(orientation.isEmpty() || orientation == "Horizontal (normal)")
        << orientation.toStdString();
}

TEST(GridRun, CellClasses) {
    const std::tuple<QString, int, const char*> cases[] = {
        {"H", 1, "klovlImage4"}, {"V", 1, "klovlImage klovlImageVertical"},
        {"H", 0, "klovlImage"},  {"V", 0, "klovlImage"},
        {"V", 2, "klovlImage"},
    };
    for (const auto& [orientation, highlight, cls] : cases)
        EXPECT_EQ(cResponsiveGrid::cellClass({QUrl(), {}, orientation, highlight}), cls);
}

// Whole Photo Gallery runs on small photos made here, checked against the page format, the image
// files (read back with vipsheader) and the alerts.
#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>

#include "generators/gallery/cResponsiveDesign.h"
#include "metadata/mMeta.h"
#include "support/TestSupport.h"

using testsupport::freshDir;
using testsupport::runProgram;

namespace {

// A small RGB photo of w x h (a gradient, so encoders have something to do).
QString makePhoto(const QString& dir, const QString& name, int w, int h) {
    const QString tmp = dir + "_grey.v";
    EXPECT_EQ(runProgram("vips", {"grey", tmp, QString::number(w), QString::number(h), "--uchar"}),
              0);
    EXPECT_EQ(runProgram("vips", {"bandjoin_const", tmp, dir + name, "40 200"}), 0);
    QFile::remove(tmp);
    return dir + name;
}

QList<PhotoEntry> entries(const QStringList& paths, const QStringList& descriptions = {}) {
    QList<PhotoEntry> list;
    for (int i = 0; i < paths.size(); ++i)
        list.append({QUrl::fromLocalFile(paths[i]), descriptions.value(i)});
    return list;
}

QString readText(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : "<missing>";
}

// "WxH loader" as vipsheader reads the file.
QString header(const QString& path) {
    QString out;
    runProgram("vipsheader", {path}, &out);
    const QString info = out.trimmed().section(": ", -1);
    return info.section(' ', 0, 0) + " " + info.section(", ", -1);
}

QStringList filesUnder(const QString& dir) {
    QStringList files;
    for (QDirIterator it(dir, QDir::Files, QDirIterator::Subdirectories); it.hasNext();)
        files.append(it.next().mid(dir.size()));
    files.sort();
    return files;
}

// The defaults plus "name=value" overrides; small images keep the runs fast unless `small` is off.
SettingsStore with(QStringList set, bool small = true) {
    if (small)
        set = QStringList{"tfSmallCropWidth=40", "pubPhotoRatio=0", "tfSmallCropHeight=30",
                          "tfBigCropWidth=80", "tfBigCropHeight=0"} +
              set;
    std::vector<std::pair<QString, QString>> overrides;
    for (const QString& s : set) overrides.push_back({s.section('=', 0, 0), s.section('=', 1)});
    return testsupport::settingsWith(overrides);
}

GalleryResult run(const QString& dir, const QList<PhotoEntry>& photos,
                  const SettingsStore& settings, RecordingUserInterface& ui, int threads = 2,
                  bool open = false) {
    return cResponsiveDesign::hCreateResponsiveHTML(dir, photos, settings, ui, threads, open);
}

// "|" stands for a line feed.
QString nl(const char* text) {
    return QString::fromUtf8(text).replace('|', '\n');
}

const char* const kPrologue =
    R"(<!DOCTYPE html PUBLIC "-//W3C//DTD XHTML 1.0 Transitional//EN" )"
    R"("http://www.w3.org/TR/xhtml1/DTD/xhtml1-transitional.dtd">|)"
    R"(<html xmlns="http://www.w3.org/1999/xhtml">|<head>|)"
    R"(<meta http-equiv="Content-Type" content="text/html; charset=UTF-8" />|)"
    R"(<meta name="viewport" content="width=device-width, initial-scale=1.0" />|)";
const char* const kCssAndJquery =
    R"(<link href="KLcss/klGScss.css" rel="stylesheet" type="text/css">|<!-- Keldra: lightbox -->|)"
    R"(<script src="https://ajax.googleapis.com/ajax/libs/jquery/1.9.1/jquery.min.js"></script>|)"
    R"(<script type="text/javascript" src="KLovlightbox/)";
const char* const kLightboxCall =
    R"(.lightbox.js"></script>||<script>|$(function() {|$('.klOVimg a').lightbox();|});|)"
    R"(</script>||)";
const char* const kBodyStart =
    R"(rel="stylesheet">|</head>|<body>|<!-- Keldra: responsive design main container - Begin -->|)"
    R"(<div class="KLovTableBased-container">|<!-- Keldra: Background pattern - Begin -->|)"
    R"(<div class="klSsPatternBox">|)";
const char* const kLogo =
    R"(<div style="width:100%;padding:6px;float:left;">|<div style="float:left;padding:6px;">)"
    R"(<a href="%1://www.keldra.com/orvella"><img src="KLovlightbox/klOrvella.png" )"
    R"(alt="klOrvella" width="auto" height="auto"></a></div>|)";
const char* const kEnd =
    R"(</div><!-- Keldra: responsive design main container - End -->|</body>|</html>)";

}  // namespace

TEST(GalleryRun, IndexRedirectText) {
    const QString dir = freshDir("gallery-index");
    cResponsiveDesign::hCreateIndexRedirectHTML("myIndex", dir);
    EXPECT_EQ(readText(dir + "index.html"),
              nl(kPrologue) +
                  R"(<head>/n<meta http-equiv="Content-Type" content="text/html; charset=UTF-8" />)"
                  R"(/n<meta name="viewport" content="width=device-width, initial-scale=1.0" />)"
                  R"(/n<title>my first responsive designed picture gallery</title>/n<script>)"
                  "window.location.href = \"myIndex.html\"</script>\n</head>\n<body></body>");
}

// Caption and file name on, plain lightbox script; metadata text is escaped, the heading is not.
TEST(GalleryRun, TableModelPageText) {
    const QString src = freshDir("gallery-table-src");
    const QString dir = freshDir("gallery-table");
    const QStringList photos = {makePhoto(src, "a.png", 80, 60), makePhoto(src, "b.png", 60, 80)};
    RecordingUserInterface ui;
    const GalleryResult result = run(
        dir, entries(photos, {R"(<i> & "q")", ""}),
        with({"pubPhotoGalleryModel=0", "cbCaptionStatus=0", "pbFontFamily=Kanit", "tfGridWidth=80",
              "tfPageTitle=T & T", "tvTitle=<b>Hi</b>", "btShowFileName=1", "cbPgShowMetaData=1",
              "tfPgMetaDataToShow=EXIF User Comment;Show Filename", "tfPgMetaDataValueSep= / ",
              "pbTitleFontWeight=Bold", "pbFileNameFontWeight=Bold"}),
        ui);
    ASSERT_TRUE(result.ok);
    EXPECT_EQ(result.firstPage, dir + "myIndex.html");
    EXPECT_TRUE(ui.alerts.empty());
    EXPECT_TRUE(ui.opened.isEmpty());
    const QString expected =
        nl(kPrologue) + nl("<title>T & T</title>|<!-- Keldra: responsive design - Begin -->|") +
        nl(kCssAndJquery) + "jquery" + nl(kLightboxCall) +
        nl(R"(<!-- Keldra: responsive design - End -->|<!-- Keldra: Roboto, from Google fonts -->|)"
           R"(<link href="https://fonts.googleapis.com/css?family=Kanit:300,400,500,700,900" )") +
        nl(kBodyStart) +
        nl(R"(<div style="width:80%;margin: auto;"><!-- Keldra: responsive design grid - )"
           R"(Begin -->|<div class="klOVtitle"><b>Hi</b></div>|)"
           R"(<div class="klOVresponsive">|<div class="klOVimg">|<a href="KLimages_b/a.jpeg" )"
           R"(rel="klOVlightbox" title="a; &lt;i&gt; &amp; &quot;q&quot; / a.png">|)"
           R"(<img src="KLimages_s/a.jpeg" alt="a" width="auto" height="auto">|</a>|</div>|)"
           R"(<div class="klOVphotoname">a</div>|)"
           R"(<div class="klOVdescription">&lt;i&gt; &amp; &quot;q&quot; / a.png</div>|</div>|)"
           R"(<div class="klOVresponsive">|<div class="klOVimg">|<a href="KLimages_b/b.jpeg" )"
           R"(rel="klOVlightbox" title="b; b.png">|)"
           R"(<img src="KLimages_s/b.jpeg" alt="b" width="auto" height="auto">|</a>|</div>|)"
           R"(<div class="klOVphotoname">b</div>|)"
           R"(<div class="klOVdescription">b.png</div>|</div>|)") +
        nl(kLogo).arg("http") +
        nl("</div>|</div><!-- Keldra: grid - End -->|</div><!-- Keldra: Background pattern - End "
           "-->|") +
        nl(kEnd);
    EXPECT_EQ(readText(dir + "myIndex.html").toStdString(), expected.toStdString());
    const QString css = readText(dir + "KLcss/klGScss.css");
    EXPECT_TRUE(css.contains("(max-width: 6000px)"));
    // Heading and file-name weights both "Bold": the heading gets 700, the file name 900.
    EXPECT_TRUE(css.contains("font-size:32px;\nfont-weight:700;\n"));
    EXPECT_TRUE(css.contains("font-size:14px;\nfont-weight:900;\n"));
}

TEST(GalleryRun, GridModelPageText) {
    const QString src = freshDir("gallery-grid-src");
    const QString dir = freshDir("gallery-grid");
    RecordingUserInterface ui;
    ASSERT_TRUE(run(dir, entries({makePhoto(src, "a.png", 80, 60)}),
                    with({"pubPhotoGalleryModel=2", "cbCaptionStatus=1", "pbFontFamily=Exo 2",
                          "tfHTMLfileName=page", "tfGridWidth=90", "tfPageTitle=G",
                          "tvTitle=Heading", "btShowFileName=0", "cbPgShowMetaData=0",
                          "pbImageFormat=png", "pbBIGImageFormat=tiff"}),
                    ui, 1, true)
                    .ok);
    EXPECT_EQ(ui.opened, QStringList{"file:///" + dir + "page.html"});
    const QString expected =
        nl(kPrologue) + nl("<title>G</title>|<!-- Keldra: responsive design -->|") +
        nl(kCssAndJquery) + "jquery02" + nl(kLightboxCall) +
        nl(R"(<!-- Keldra: Roboto, from Google fonts -->|)"
           R"(<link href="https://fonts.googleapis.com/css?family=Exo+2:300,400,500,700,900" )") +
        nl(kBodyStart) +
        nl(R"(<div style="width:90%;margin: auto;"><!-- Keldra: grid - Begin -->|)"
           R"(<div class="klOVtitle">Heading<br><br></div>|<div class="klOVimages">|)"
           R"(<div class="klOVimg">|<a href="KLimages_b/a.tiff" rel="klOVlightbox" title="a">|)"
           R"(<img src="KLimages_s/a.png" alt="a" width="auto" height="auto">|</a>|</div>|)"
           R"(</div><!-- Keldra: grid - End -->|)") +
        nl(kLogo).arg("https") + nl("</div><!-- Keldra: Background pattern - End -->|") + nl(kEnd);
    EXPECT_EQ(readText(dir + "page.html").toStdString(), expected.toStdString());
    EXPECT_TRUE(readText(dir + "KLcss/klGScss.css").contains("@media (min-width: 400px)"));
    EXPECT_EQ(header(dir + "KLimages_s/a.png"), "40x30 pngload");
    EXPECT_EQ(header(dir + "KLimages_b/a.tiff"), "80x60 tiffload");
    // The working copies in the photo's own type are gone when the format differs.
    EXPECT_FALSE(QFile::exists(dir + "KLimages_b/a.png"));
}

// An exact multiple of the page size gives no page at all, kept on purpose.
TEST(GalleryRun, PageCounts) {
    const QString src = freshDir("gallery-pages-src");
    QStringList photos;
    for (int i = 0; i < 13; ++i)
        photos.append(makePhoto(src, QStringLiteral("p%1.png").arg(i, 2, 10, QChar('0')), 24, 18));
    const QString nav =
        R"(<div id="navBar" class="klOVpageNav" style="width:100%;padding:6px;text-align:left;">)"
        R"(<a href="myIndex.html"> 1 </a><a href="myIndex2.html">2 </a></div>)"
        R"(<div class="klOVtitle">)";
    struct Case {
        int photos;
        QStringList layout;
        std::vector<int> perPage;
    };
    for (const Case& c : {Case{5, {"ifNumberOfColumns=3", "ifNumberOfRows=2"}, {5}},
                          Case{13, {"ifNumberOfColumns=4", "ifNumberOfRows=3"}, {12, 1}},
                          Case{12, {"ifNumberOfColumns=4", "ifNumberOfRows=3"}, {}}}) {
        const QString dir = freshDir("gallery-pages");
        RecordingUserInterface ui;
        EXPECT_TRUE(run(dir, entries(photos.mid(0, c.photos)),
                        with(QStringList{"pbImageFormat=png"} + c.layout), ui, 0, true)
                        .ok);
        for (int page = 1; page <= int(c.perPage.size()) + 1; ++page) {
            const QString text = readText(dir + cResponsiveDesign::pageFileName("myIndex", page));
            const int expected = page <= int(c.perPage.size()) ? c.perPage[page - 1] : 0;
            EXPECT_EQ(text.count(R"(<div class="klOVimg">)"), expected) << c.photos << " " << page;
            EXPECT_EQ(text.contains(nav), expected && c.perPage.size() == 2) << c.photos;
        }
        EXPECT_TRUE(readText(dir + "myIndex2.html").contains("KLimages_s/p12.png") ==
                    (c.photos == 13));
        EXPECT_TRUE(QFile::exists(dir + "index.html") && QFile::exists(dir + "KLcss/klGScss.css"));
        EXPECT_EQ(filesUnder(dir + "KLimages_s/").size(), c.photos);
        EXPECT_EQ(ui.opened, QStringList{"file:///" + dir + "myIndex.html"});
    }
}

TEST(GalleryRun, Alerts) {
    const QString src = freshDir("gallery-alerts-src");
    const QList<PhotoEntry> photo = entries({makePhoto(src, "a.png", 300, 200)});
    struct Case {
        QList<PhotoEntry> photos;
        QStringList settings;
        const char* title;
        const char* description;
        bool stops = true;
    };
    const Case cases[] = {
        {{}, {}, "Sorry, you forgot to select photos.", "Please choose the photos."},
        {photo, {"ifNumberOfColumns=0"}, "Sorry, the page layout is not possible.", nullptr},
        {photo, {"ifNumberOfRows=0"}, "Sorry, the page layout is not possible.", nullptr},
        // Big size 200 equals thumbnail size 200: a warning, and the run goes on.
        {photo,
         {"pubPhotoRatio=0", "tfSmallCropWidth=200", "tfSmallCropHeight=150", "tfBigCropWidth=200",
          "tfBigCropHeight=100"},
         "Sorry, some wrong properties",
         "\r- Lightbox images are smaller than your thumbnails. (Thumbnail size: 200)",
         false},
    };
    for (const Case& c : cases) {
        const QString dir = freshDir("gallery-alert");
        RecordingUserInterface ui;
        EXPECT_EQ(run(dir, c.photos, with(c.settings, false), ui).ok, !c.stops);
        ASSERT_EQ(ui.alerts.size(), 1u) << c.title;
        EXPECT_EQ(ui.alerts[0].title, c.title);
        EXPECT_TRUE(!c.description || ui.alerts[0].description == c.description) << c.title;
        EXPECT_EQ(ui.alerts[0].stopsRun, c.stops) << c.title;
        EXPECT_EQ(ui.stops, 1) << c.title;
        EXPECT_EQ(QDir(dir).isEmpty(), c.stops) << c.title;
        EXPECT_TRUE(c.stops || header(dir + "KLimages_b/a.jpeg") == "200x100 jpegload");
    }
}

TEST(GalleryRun, CaptionRules) {
    const QString src = freshDir("gallery-captions-src");
    const QString photo = makePhoto(src, "shot.jpg", 40, 30);
    ASSERT_EQ(runProgram("exiftool",
                         {"-q", "-overwrite_original", "-IPTC:City=Lyon", "-IPTC:Headline=Sunset",
                          "-EXIF:DateTimeOriginal=2019:07:14 18:03:22", photo}),
              0);
    const QString bare = makePhoto(src, "bare.jpg", 40, 30);
    struct Case {
        const char *show, *items, *separator;
        QString path;
        const char *description, *caption;
    };
    const Case cases[] = {
        {"1", "IPTC City;Show Filename", " - ", bare, "", "bare.jpg"},
        {"1", "IPTC City;Show Filename", " - ", photo, "", "Lyon - shot.jpg"},
        {"1", "EXIF User Comment;Nonsense;IPTC Headline", "|", photo, "Hello", "Hello|Sunset"},
        {"1", "EXIF User Comment;EXIF Creation Date", ", ", photo, "", "2019:07:14 18:03:22"},
        {"1", "", " - ", photo, "desc", ""},
        {"1", "Show Filename;Show Filename", "", bare, "", "bare.jpgbare.jpg"},
        {"0", "Show Filename", "", bare, "x", ""},
    };
    for (const Case& c : cases) {
        mMeta meta;
        const SettingsStore settings =
            testsupport::settingsWith({{"cbPgShowMetaData", c.show},
                                       {"tfPgMetaDataToShow", c.items},
                                       {"tfPgMetaDataValueSep", c.separator}});
        EXPECT_EQ(cResponsiveDesign::caption({QUrl::fromLocalFile(c.path), c.description}, settings,
                                             meta),
                  c.caption)
            << c.items;
    }
}

TEST(GalleryRun, DerivativeFiles) {
    const QString src = freshDir("gallery-derivatives-src");
    const QStringList photos = {makePhoto(src, "wide.png", 400, 300),
                                makePhoto(src, "tall.jpg", 300, 400)};
    struct Case {
        QStringList settings;
        const char *wideThumb, *tallThumb, *wideBig, *tallBig;
    };
    const Case cases[] = {
        // Defaults: 200 x 150 cut at the centre, lightbox 1200 on the longest side.
        {{}, "200x150", "200x150", "1200x900", "900x1200"},
        // Scale by width and by height: only the height step stays.
        {{"pubThumbAction=1", "pubPhotoRatio=0", "tfSmallCropWidth=100", "tfSmallCropHeight=120"},
         "160x120",
         "90x120",
         "1200x900",
         "900x1200"},
        // Big crop box (as wide as the landscape photo is scaled; "" = not checked).
        {{"tfBigCropWidth=500", "tfBigCropHeight=250", "scImageCropBigPos=0"},
         "200x150",
         "200x150",
         "500x250",
         ""},
        // Frames keep the size.
        {{"tfSmallFramingThickness=10", "tfBigFramingThickness=6", "cwNSColorWellObjBsImage=FF0000",
          "tfBigCropWidth=320"},
         "200x150",
         "200x150",
         "320x240",
         "240x320"},
    };
    for (const Case& c : cases) {
        const QString dir = freshDir("gallery-derivatives");
        RecordingUserInterface ui;
        ASSERT_TRUE(run(dir, entries(photos), with(c.settings, false), ui).ok);
        const std::string label = c.settings.join(' ').toStdString();
        EXPECT_EQ(header(dir + "KLimages_s/wide.jpeg"), c.wideThumb + QString(" jpegload"))
            << label;
        EXPECT_EQ(header(dir + "KLimages_s/tall.jpeg"), c.tallThumb + QString(" jpegload"))
            << label;
        EXPECT_EQ(header(dir + "KLimages_b/wide.jpeg"), c.wideBig + QString(" jpegload")) << label;
        EXPECT_TRUE(!*c.tallBig ||
                    header(dir + "KLimages_b/tall.jpeg") == c.tallBig + QString(" jpegload"))
            << label;
        EXPECT_EQ(filesUnder(dir + "KLimages_s/"), (QStringList{"tall.jpeg", "wide.jpeg"}))
            << label;
    }
}

TEST(GalleryRun, SameOutputWhateverTheThreads) {
    const QString src = freshDir("gallery-threads-src");
    QStringList photos;
    for (int i = 0; i < 6; ++i)
        photos.append(makePhoto(src, QStringLiteral("t%1.png").arg(i), 60 + 10 * i, 50));
    // Two photos whose outputs share a name must still come out as a single run makes them.
    QDir().mkpath(src + "other");
    photos.append(makePhoto(src + "other/", "t0.png", 90, 90));
    photos += testsupport::mateBackgroundJpegs().mid(0, 1);
    const SettingsStore settings =
        with({"tfSmallCropWidth=48", "tfSmallCropHeight=32", "tfBigCropWidth=160",
              "ifNumberOfColumns=2", "ifNumberOfRows=2", "cbPgShowMetaData=1",
              "tfPgMetaDataToShow=Show Filename;EXIF Creation Date"});
    const QString one = freshDir("gallery-threads-1");
    const QString all = freshDir("gallery-threads-all");
    RecordingUserInterface ui1, uiAll;
    run(one, entries(photos), settings, ui1, 1);
    run(all, entries(photos), settings, uiAll, 0);
    const QStringList files = filesUnder(one);
    ASSERT_EQ(files, filesUnder(all));
    EXPECT_GT(files.size(), 15);
    for (const QString& f : files) {
        QFile a(one + f), b(all + f);
        ASSERT_TRUE(a.open(QIODevice::ReadOnly) && b.open(QIODevice::ReadOnly));
        EXPECT_TRUE(a.readAll() == b.readAll()) << f.toStdString();
    }
    EXPECT_EQ(ui1.steps, uiAll.steps);
}

TEST(GalleryRun, BadPhotosDoNotStopTheRun) {
    const QString src = freshDir("gallery-bad-src");
    ASSERT_TRUE(QFile(src + "empty.jpg").open(QIODevice::WriteOnly));
    QFile corrupt(src + "corrupt.jpg");
    ASSERT_TRUE(corrupt.open(QIODevice::WriteOnly));
    corrupt.write(QByteArray("\xFF\xD8\xFF\xE0 not really a jpeg", 23).repeated(20));
    corrupt.close();
    QDir().mkpath(src + "folder.png");
    QStringList photos = {makePhoto(src, "good1.png", 40, 30)};
    for (const char* bad : {"empty.jpg", "corrupt.jpg", "folder.png", "missing.png"})
        photos.append(src + bad);
    photos.append(makePhoto(src, "good2.jpg", 40, 30));
    const QString dir = freshDir("gallery-bad");
    RecordingUserInterface ui;
    EXPECT_TRUE(run(dir, entries(photos), with({}), ui, 3).ok);
    EXPECT_EQ(header(dir + "KLimages_s/good1.jpeg"), "40x30 jpegload");
    EXPECT_EQ(header(dir + "KLimages_s/good2.jpeg"), "40x30 jpegload");
    EXPECT_EQ(header(dir + "KLimages_b/good2.jpeg"), "80x60 jpegload");
    EXPECT_EQ(readText(dir + "myIndex.html").count(R"(<div class="klOVimg">)"), 6);
}

// Files left by an earlier run into the same folder are kept; index.html is rewritten.
TEST(GalleryRun, SecondRunKeepsSupportFiles) {
    const QString src = freshDir("gallery-twice-src");
    const QList<PhotoEntry> photo = entries({makePhoto(src, "a.png", 40, 30)});
    const QString pattern = makePhoto(src, "dots.png", 8, 8);
    const QString dir = freshDir("gallery-twice");
    const SettingsStore settings =
        with({"cbTbRdShowPatternImage=1", QString("tfTbRdPatternPath=") + pattern});
    RecordingUserInterface ui;
    run(dir, photo, settings, ui);
    const QStringList kept = {"KLovlightbox/jquery.lightbox.js", "KLovlightbox/close.gif",
                              "KLovPatterns/dots.png"};
    for (const QString& name : kept) {
        QFile copy(dir + name);
        ASSERT_TRUE(copy.size() > 0 && copy.open(QIODevice::WriteOnly | QIODevice::Truncate));
        copy.write("kept");
    }
    QFile::remove(dir + "index.html");
    run(dir, photo, settings, ui);
    for (const QString& name : kept) EXPECT_EQ(readText(dir + name), "kept") << name.toStdString();
    EXPECT_TRUE(QFile::exists(dir + "index.html"));
}

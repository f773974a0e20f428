// Whole slideshow runs on photos made here: the files written, the slide images read back with
// libvips, the alerts, and the caption weight an object carries from run to run.
#include <gtest/gtest.h>

#include <QDirIterator>

#include "generators/slideshow/cSlideshow.h"
#include "imaging/ImagingFixtures.h"
#include "support/TestSupport.h"

using fixtures::Pixel;
using fixtures::Size;
using testsupport::filesUnder;
using testsupport::freshDir;

namespace {

QString readText(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : "<missing>";
}

// A photo in one colour.
QString solidPhoto(const QString& dir, const QString& name, int w, int h, Pixel rgb) {
    fixtures::save(fixtures::solid(w, h, rgb), dir + name);
    return dir + name;
}

// Red, green and blue across the long side: a quarter, a half and a quarter of it.
QString bandedPhoto(const QString& dir, const QString& name, int w, int h) {
    const vips::VImage xy = vips::VImage::xyz(w, h);
    const vips::VImage t = w > h ? xy[0] * 4.0 / w : xy[1] * 4.0 / h;
    fixtures::save(fixtures::srgb((t < 1).ifthenelse(
                       Pixel{255, 0, 0}, (t < 3).ifthenelse(Pixel{0, 255, 0}, Pixel{0, 0, 255}))),
                   dir + name);
    return dir + name;
}

// The strongest of red, green and blue at a point: "r", "g" or "b".
std::string colourAt(const QString& path, int x, int y) {
    const Pixel p = fixtures::pixel(path, x, y);
    const size_t band = size_t(std::max_element(p.begin(), p.begin() + 3) - p.begin());
    return std::string(1, "rgb"[band]);
}

QString alerts(const RecordingUserInterface& ui) {
    QString text;
    for (const auto& a : ui.alerts)
        text += a.title + "|" + a.description + (a.stopsRun ? "|stops\n" : "\n");
    return text;
}

// A run with a 40 x 30 box plus "name=value" overrides, after a panel's run that left `carried`.
RunResult run(const QString& dir, const QStringList& paths, const QStringList& set,
              RecordingUserInterface& ui, int threads = 2, const QStringList& descriptions = {},
              const QHash<QString, QString>& carried = {}) {
    std::vector<std::pair<QString, QString>> overrides = {{"tfSsImageWidth", "40"},
                                                          {"tfSsImageHeight", "30"}};
    for (const QString& s : set) overrides.push_back({s.section('=', 0, 0), s.section('=', 1)});
    QList<PhotoEntry> photos;
    for (int i = 0; i < paths.size(); ++i)
        photos.append({QUrl::fromLocalFile(paths[i]), descriptions.value(i)});
    return cSlideshow::hCreateSlideShow(
        photos, testsupport::settingsWith(overrides), ui,
        RunOptions{
            .destination = dir, .threads = threads, .openFirstPage = true, .carried = carried});
}

// The caption and heading weights of a stylesheet: "caption/heading".
QString weights(const QString& dir) {
    const QString css = readText(dir + "KLSlideShowcss/klovlSlideshow.css");
    const auto after = [&](const QString& rule) {
        const qsizetype at = css.indexOf("font-weight:", css.indexOf(rule)) + 12;
        return css.mid(at, css.indexOf(';', at) - at);
    };
    return after(".klSsText {") + "/" + after(".klSstitle {");
}

}  // namespace

// A caption weight of "Light" goes into the heading weight and leaves the caption weight of the
// panel's previous run (none on its first run), in both page kinds.
TEST(SlideshowRun, LightCaptionWeightKeepsThePreviousOne) {
    const QString src = freshDir("slideshow-light-src");
    const QStringList photo = {solidPhoto(src, "a.png", 80, 60, {10, 20, 30})};
    QHash<QString, QString> carried;
    const struct {
        QString caption, heading, kind, expected;
    } runs[] = {
        {"Light", "Bold", "0", "/300"},       {"Medium", "Bold", "2", "500/700"},
        {"Light", "Black", "2", "500/300"},   {"Bold", "Regular", "1", "700/400"},
        {"Light", "Regular", "0", "700/300"},
    };
    for (const auto& r : runs) {
        const QString dir = freshDir("slideshow-light");
        RecordingUserInterface ui;
        const RunResult result =
            run(dir, photo,
                {"pubSsFileNameWeight=" + r.caption, "pubSsHTMLTitleFontStyle=" + r.heading,
                 "pubSsTemplateChoice=" + r.kind},
                ui, 2, {}, carried);
        ASSERT_TRUE(result.ok);
        carried = result.carried;
        EXPECT_EQ(weights(dir), r.expected) << r.caption.toStdString() << r.kind.toStdString();
    }
    // A run without the panel's previous one starts afresh.
    const QString dir = freshDir("slideshow-light");
    RecordingUserInterface ui;
    ASSERT_TRUE(run(dir, photo, {"pubSsFileNameWeight=Light"}, ui).ok);
    EXPECT_EQ(weights(dir), "/300");
}

// Templates 0 and 1 write the same files; 2 the slider; any other index writes nothing.
TEST(SlideshowRun, TemplateChoice) {
    const QString src = freshDir("slideshow-templates-src");
    const QStringList photos = {solidPhoto(src, "a.png", 80, 60, {200, 0, 0}),
                                solidPhoto(src, "b.jpg", 60, 80, {0, 0, 200})};
    QStringList pages;
    for (const char* kind : {"0", "1", "2"}) {
        const QString dir = freshDir(QStringLiteral("slideshow-template-%1").arg(kind));
        RecordingUserInterface ui;
        const RunResult result = run(
            dir, photos, {QStringLiteral("pubSsTemplateChoice=") + kind, "tfSsPageName=show"}, ui);
        EXPECT_TRUE(result.ok && result.failures.isEmpty() && ui.alerts.empty());
        EXPECT_EQ(result.firstPage, dir + "show.html");
        EXPECT_EQ(ui.opened, QStringList{"file:///" + dir + "show.html"});
        EXPECT_EQ(filesUnder(dir),
                  QStringList({"KLSlideShowcss/klovlSlideshow.css", "KLSsImages/a.jpeg",
                               "KLSsImages/b.jpeg", "show.html"}));
        pages << readText(dir + "show.html") + readText(dir + "KLSlideShowcss/klovlSlideshow.css");
    }
    EXPECT_EQ(pages[0], pages[1]);
    EXPECT_TRUE(pages[2].contains(R"(<div class="slideProp slide1">)"));

    SettingsStore odd = testsupport::settingsWith();
    odd.setText("pubSsTemplateChoice", "3");
    const QString dir = freshDir("slideshow-template-3");
    RecordingUserInterface ui;
    EXPECT_FALSE(cSlideshow::hCreateSlideShow({{QUrl::fromLocalFile(photos[0]), {}}}, odd, ui,
                                              RunOptions{dir, 1, true})
                     .ok);
    EXPECT_TRUE(QDir(dir).isEmpty() && ui.alerts.empty() && ui.starts == 0);
}

// The box is covered and its centre kept: 4000 x 2000 is scaled to 1200 x 600 and cut at x = 200
// (red ends at 100, blue starts at 700); 3000 x 4000 to 800 x 1066 and cut at y = 233 (red ends
// at 33, blue starts at 567). Slides are JPEGs named after the base name, whatever the source.
TEST(SlideshowRun, SlidesCoverTheBoxAndKeepItsCentre) {
    const QString src = freshDir("slideshow-geometry-src");
    const QStringList photos = {bandedPhoto(src, "wide.jpg", 4000, 2000),
                                bandedPhoto(src, "tall.png", 3000, 4000)};
    const QString dir = freshDir("slideshow-geometry");
    RecordingUserInterface ui;
    ASSERT_TRUE(run(dir, photos, {"tfSsImageWidth=800", "tfSsImageHeight=600"}, ui).ok);
    const struct {
        QString file;
        bool wide;
        std::array<int, 4> probes;  // red, green, green, blue along the long side
    } cases[] = {{"wide.jpeg", true, {90, 110, 690, 710}},
                 {"tall.jpeg", false, {25, 42, 558, 575}}};
    for (const auto& c : cases) {
        const QString slide = dir + "KLSsImages/" + c.file;
        EXPECT_EQ(fixtures::sizeOf(slide), Size(800, 600));
        EXPECT_EQ(fixtures::loader(slide), "jpegload");
        std::string found;
        for (const int at : c.probes)
            found += c.wide ? colourAt(slide, at, 300) : colourAt(slide, 400, at);
        EXPECT_EQ(found, "rggb") << c.file.toStdString();
    }
}

// A photo turned by its EXIF orientation gives an upright slide; names holding "#", "%" or a blank
// keep their file name and are encoded in the page.
TEST(SlideshowRun, UprightSlidesAndOddNames) {
    const QString src = freshDir("slideshow-upright-src");
    // Stored 60 x 40, red on the left; turned a quarter clockwise for viewing: red on top.
    const vips::VImage x = vips::VImage::xyz(60, 40)[0];
    fixtures::save(fixtures::srgb((x < 30).ifthenelse(Pixel{255, 0, 0}, Pixel{0, 0, 255})),
                   src + "turned.jpg");
    testsupport::runProgram(
        "exiftool", {"-q", "-overwrite_original", "-n", "-Orientation=6", src + "turned.jpg"});
    ASSERT_EQ(testsupport::exiftool(src + "turned.jpg", "Orientation"), "Rotate 90 CW");
    const QString odd = solidPhoto(src, "50% off #1.png", 60, 40, {0, 200, 0});
    const QString dir = freshDir("slideshow-upright");
    RecordingUserInterface ui;
    ASSERT_TRUE(
        run(dir, {src + "turned.jpg", odd}, {"tfSsImageWidth=40", "tfSsImageHeight=60"}, ui).ok);
    const QString slide = dir + "KLSsImages/turned.jpeg";
    EXPECT_EQ(fixtures::sizeOf(slide), Size(40, 60));
    EXPECT_EQ(colourAt(slide, 20, 5) + colourAt(slide, 20, 55), "rb");
    const QString orientation = testsupport::exiftool(slide, "Orientation");
    EXPECT_TRUE(orientation.isEmpty() || orientation == "Horizontal (normal)")
        << orientation.toStdString();
    EXPECT_EQ(fixtures::sizeOf(dir + "KLSsImages/50% off #1.jpeg"), Size(40, 60));
    EXPECT_TRUE(readText(dir + "slideshow.html")
                    .contains(R"(<img src="KLSsImages/50%25%20off%20%231.jpeg" style=)"));
}

// Captions from the caption items: empty values and unknown names skipped, the separator between
// values, metadata holding markup escaped; off, every slide still has its empty caption block.
TEST(SlideshowRun, Captions) {
    const QString src = freshDir("slideshow-captions-src");
    const QString tagged = solidPhoto(src, "shot.jpg", 60, 40, {90, 90, 90});
    testsupport::runProgram(
        "exiftool", {"-q", "-overwrite_original", "-IPTC:Headline=<b>Sun & sea</b>", tagged});
    const QString bare = solidPhoto(src, "bare.jpg", 60, 40, {90, 90, 90});
    const QString items = "Show Filename;IPTC City;Nonsense;IPTC Headline;EXIF User Comment";
    const struct {
        QStringList set;
        QString captions;
    } cases[] = {
        {{"cbSsExifUC=1", "tfSsMetaDataToShow=" + items, "tfSsMetaDataValueSep= / "},
         "shot / &lt;b&gt;Sun &amp; sea&lt;/b&gt;|bare / Hi &lt;3|"},
        {{"cbSsExifUC=1", "tfSsMetaDataToShow=IPTC City;EXIF User Comment"}, "|Hi &lt;3|"},
        {{"cbSsExifUC=0", "tfSsMetaDataToShow=" + items}, "||"},
    };
    for (const auto& c : cases) {
        const QString dir = freshDir("slideshow-captions");
        RecordingUserInterface ui;
        ASSERT_TRUE(run(dir, {tagged, bare}, c.set, ui, 1, {"", "Hi <3"}).ok);
        const QString page = readText(dir + "slideshow.html");
        QString found;
        for (qsizetype at = 0; (at = page.indexOf("<div class=\"klSsText\">", at)) >= 0;) {
            at += 22;
            found += page.mid(at, page.indexOf("</div>", at) - at) + "|";
        }
        EXPECT_EQ(found, c.captions) << c.set.join(' ').toStdString();
    }
}

// Runs that cannot be made are refused before anything is written; a show that neither runs by
// itself nor has buttons is made with a warning. The pattern is copied when it is shown.
TEST(SlideshowRun, RefusalsWarningsAndPattern) {
    const QString src = freshDir("slideshow-refusals-src");
    const QString photo = solidPhoto(src, "a.png", 40, 30, {1, 2, 3});
    const struct {
        QStringList photos, set;
        QString alert;
    } refused[] = {
        {{photo}, {"tfSsPageName=../up"}, "Sorry, the page name is not possible.|"},
        {{photo}, {"tfSsPageName="}, "Sorry, the page name is not possible.|"},
        {{photo}, {"tfSsImageWidth=0"}, "Sorry, the photo box is not possible.|"},
        {{photo}, {"cbSsAutorun=1", "tfSsInterval=4);alert(1"}, "Sorry, the interval is not"},
        {{photo}, {"pubSsTemplateChoice=2", "cbSsAutorun=0", "tfSsInterval="}, "Sorry, the inte"},
    };
    for (const auto& r : refused) {
        const QString dir = freshDir("slideshow-refused");
        RecordingUserInterface ui;
        EXPECT_FALSE(run(dir, r.photos, r.set, ui).ok);
        EXPECT_TRUE(alerts(ui).startsWith(r.alert) && alerts(ui).endsWith("|stops\n") &&
                    ui.alerts.size() == 1)
            << alerts(ui).toStdString();
        EXPECT_TRUE(ui.stops == 1 && QDir(dir).isEmpty() && ui.opened.isEmpty());
    }

    const QString pattern = solidPhoto(src, "dots.png", 8, 8, {9, 9, 9});
    const struct {
        QStringList set;
        QString alert;
    } warned[] = {
        {{"cbSsAutorun=0", "cbSsShowNavigationBtn=0", "cbSsShowDots=1", "tfSsInterval=x"},
         "The slides do not change by themselves|Autorun and the previous and next buttons are "
         "off: only the dots move between the slides.\n"},
        {{"cbSsAutorun=0", "cbSsShowNavigationBtn=0", "cbSsShowDots=0"},
         "The slides do not change by themselves|Autorun, the buttons and the dots are off: the "
         "show stays on its first slide.\n"},
        {{"cbSsAutorun=0", "cbSsShowNavigationBtn=0", "pubSsTemplateChoice=2"}, ""},
        {{"cbSsShowPatternImage=1", "tfSsPatternPath=" + pattern}, ""},
    };
    for (const auto& w : warned) {
        const QString dir = freshDir("slideshow-warned");
        RecordingUserInterface ui;
        EXPECT_TRUE(run(dir, {photo}, w.set, ui).ok);
        EXPECT_EQ(alerts(ui), w.alert);
        EXPECT_TRUE(QFile::exists(dir + "slideshow.html"));
        EXPECT_EQ(
            fixtures::bytesOf(dir + "KLovPatterns/dots.png"),
            w.set.contains("cbSsShowPatternImage=1") ? fixtures::bytesOf(pattern) : QByteArray());
    }
}

// Turning the buttons or the timer off keeps the other way of moving between slides on; nothing
// turns a box off.
TEST(SlideshowRun, EditsKeepAWayToMoveBetweenSlides) {
    const struct {
        const char* edited;
        const char* before;  // buttons, autorun
        const char* after;
    } edits[] = {
        {"cbSsShowNavigationBtn", "00", "01"}, {"cbSsShowNavigationBtn", "10", "10"},
        {"cbSsAutorun", "00", "10"},           {"cbSsAutorun", "01", "01"},
        {"cbSsShowDots", "00", "00"},          {"cbSsAutorun", "11", "11"},
    };
    for (const auto& e : edits) {
        SettingsStore s =
            testsupport::settingsWith({{"cbSsShowNavigationBtn", QString(e.before[0])},
                                       {"cbSsAutorun", QString(e.before[1])}});
        cSlideshow::settingEdited(s, e.edited);
        EXPECT_EQ(s.text("cbSsShowNavigationBtn") + s.text("cbSsAutorun"), e.after)
            << e.edited << " " << e.before;
    }
}

// Whole slideshow runs on photos made here, the slides read back with libvips.
#include <QRegularExpression>

#include "generators/GeneratorFixtures.h"
#include "generators/slideshow/cSlideshow.h"

using namespace gen;

namespace {

// Red, green and blue across the long side: a quarter, a half and a quarter of it.
QString bandedPhoto(const QString& dir, const QString& name, int w, int h) {
    const vips::VImage xy = vips::VImage::xyz(w, h);
    const vips::VImage t = w > h ? xy[0] * 4.0 / w : xy[1] * 4.0 / h;
    fixtures::save(fixtures::srgb((t < 1).ifthenelse(
                       fixtures::Pixel{255, 0, 0},
                       (t < 3).ifthenelse(fixtures::Pixel{0, 255, 0}, fixtures::Pixel{0, 0, 255}))),
                   dir + name);
    return dir + name;
}

}  // namespace

// Slides cover the box and keep its centre: 4000 x 2000 is scaled to 1200 x 600 and cut at x = 200
// (red ends at 100, blue starts at 700); 3000 x 4000 to 800 x 1066 and cut at y = 233 (red ends at
// 33, blue starts at 567). A next run with a "Light" caption weight keeps the weight this one
// carries; the logo and the controls' script are written only while buttons or dots show.
TEST(SlideshowRun, SlidesCaptionsFilesAndTheNextRuns) {
    const QString src = freshDir("slideshow-run-src"), dir = freshDir("slideshow-run");
    const QStringList photos = {bandedPhoto(src, "wide.jpg", 4000, 2000),
                                bandedPhoto(src, "tall.png", 3000, 4000),
                                makePhoto(src, "50% off #1.png", 60, 40)};
    const QString pattern = makePhoto(src, "dots.png", 8, 8);
    RecordingUserInterface ui;
    const RunResult result = cSlideshow::hCreateSlideShow(
        entries(photos, {"Hi <3"}),
        store("tfSsImageWidth=800, tfSsImageHeight=600, tfSsPageName=show, cbSsExifUC=1, "
              "tfSsMetaDataToShow=Show Filename;IPTC City;EXIF User Comment, "
              "tfSsMetaDataValueSep= / , cbSsShowPatternImage=1, pubSsFileNameWeight=Medium, "
              "tfSsPatternPath=" +
              pattern),
        ui, {dir, 2, true});
    ASSERT_TRUE(result.ok && result.failures.isEmpty() && ui.alerts.empty());
    EXPECT_EQ(ui.opened, QStringList{"file:///" + dir + "show.html"});
    EXPECT_EQ(filesUnder(dir),
              QStringList({"KLSlideShowcss/klOrvella.png", "KLSlideShowcss/klovlSlideshow.css",
                           "KLSlideShowcss/klovlSlideshow.js", "KLSsImages/50% off #1.jpeg",
                           "KLSsImages/tall.jpeg", "KLSsImages/wide.jpeg", "KLovPatterns/dots.png",
                           "show.html"}));
    EXPECT_EQ(testsupport::readFile(dir + "KLovPatterns/dots.png"), testsupport::readFile(pattern));
    const std::tuple<QString, bool, std::array<int, 4>> slides[] = {
        {"wide.jpeg", true, {90, 110, 690, 710}}, {"tall.jpeg", false, {25, 42, 558, 575}}};
    for (const auto& [file, wide, probes] : slides) {  // along the long side
        const QString slide = dir + "KLSsImages/" + file;
        EXPECT_EQ(header(slide), "800x600 jpegload");
        QString found;
        for (const int at : probes)
            found += wide ? colourAt(slide, at, 300) : colourAt(slide, 400, at);
        EXPECT_EQ(found, "rggb") << file;
    }
    QStringList captions;
    for (const QRegularExpressionMatch& m :
         QRegularExpression(R"(<div class="klSsText">(.*?)</div>)")
             .globalMatch(readText(dir + "show.html")))
        captions << m.captured(1);
    EXPECT_EQ(captions, QStringList({"wide / Hi &lt;3", "tall", "50% off #1"}));

    const QString next = freshDir("slideshow-carried");
    EXPECT_TRUE(
        cSlideshow::hCreateSlideShow(entries(photos.mid(2), {"Hi"}),
                                     store("pubSsFileNameWeight=Light, cbSsExifUC=0, "
                                           "tfSsMetaDataToShow=EXIF User Comment, cbSsAutorun=0, "
                                           "cbSsShowNavigationBtn=0, cbSsShowDots=0"),
                                     ui, {.destination = next, .carried = result.carried})
            .ok);
    const QString css = readText(next + "KLSlideShowcss/klovlSlideshow.css");
    EXPECT_EQ(css.section(".klSsText {", 1).section("font-weight:", 1, 1).section(';', 0, 0),
              "500");
    EXPECT_TRUE(readText(next + "slideshow.html").contains("<div class=\"klSsText\"></div>"));
    EXPECT_EQ(filesUnder(next + "KLSlideShowcss/"), QStringList{"klovlSlideshow.css"});

    const QString none = freshDir("slideshow-template-3");
    SettingsStore odd = store();
    odd.setText("pubSsTemplateChoice", "3");
    RecordingUserInterface quiet;
    EXPECT_FALSE(cSlideshow::hCreateSlideShow(entries(photos), odd, quiet, {none, 1, true}).ok);
    EXPECT_TRUE(QDir(none).isEmpty() && quiet.alerts.empty() && quiet.starts == 0);
}

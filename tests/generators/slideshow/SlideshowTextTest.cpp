// The pages and stylesheets of both slideshow kinds, written out here from the rules of the format.
#include <QRegularExpression>

#include "generators/GeneratorFixtures.h"
#include "generators/slideshow/cSlideshow.h"

using namespace gen;

namespace {

SlideshowSettings settings(const QString& set) {
    return cSlideshow::readSettings(store(set), "/out/");
}

// The stylesheet and the page of a run's texts, in the order they are written.
std::pair<QString, QString> split(const QList<PageFile>& files) {
    EXPECT_EQ(files.value(0).path + " " + files.value(1).path + " " + QString::number(files.size()),
              "KLSlideShowcss/klovlSlideshow.css slideshow.html 2");
    return {files.value(0).text, files.value(1).text};
}

// Every switch on; the classic page with dots, buttons and a timer.
const QString kAllOn =
    "pubSsTemplateChoice=0, cbSsWebPageTitle=1, tfSsWebPageTitle=Trip & Co, cbSsTitle=1, "
    "tfSsTitle=<b>Hi</b>, pubSsHTMLTitleFontFamily=Exo 2, cbSsShowPatternImage=1, "
    "tfSsPatternPath=/patterns/dots.png, tfSsPatternScale=30, pubSsPatternOpacity=0.4, "
    "cbSsShowShadow=1, cbSsFadeInOut=1, cbSsResponsive=1, cbSsShowPhotoCount=1, "
    "cbSsShowNavigationBtn=1, cbSsShowDots=1, cbSsAutorun=1, tfSsInterval=3, tfSsImageWidth=800, "
    "tfSsImageHeight=600, pubSsHTMLTitleFontSize=32px, pubSsHTMLTitleFontStyle=Bold, "
    "tfSsHTMLTitleFontColor=112233, scSsHTMLTitleTxtAlign=1, pubSsFileNameWeight=Medium, "
    "pubSsFileNameSize=14px, scSsFileNameTxtAlign=2, tfSsFileNameFontColor=445566, "
    "tfSsBackgroundColor=778899, tfSsHTMLDotColor=ABCDEF, pubSsDotAppearance=0, ";
const QString kAllOff =
    "cbSsWebPageTitle=0, cbSsTitle=0, cbSsShowPatternImage=0, cbSsShowShadow=0, cbSsFadeInOut=0, "
    "cbSsResponsive=0, cbSsShowPhotoCount=0, cbSsShowNavigationBtn=0, cbSsShowDots=0, "
    "cbSsAutorun=0, pubSsDotAppearance=1, ";

const char* const kStylesheetLink =
    R"(<!-- Keldra: Slideshow creation -->|<link href="KLSlideShowcss/klovlSlideshow.css" )"
    R"(rel="stylesheet" type="text/css">|)";
const char* const kFontLink =
    R"(<link href="https://fonts.googleapis.com/css?family=%1:300,400,500,700,900" )"
    R"(rel="stylesheet">|</head>|<body>|)";
const char* const kBeforeSlides =
    R"(<div class="klSsPatternBox">|<div class="klSstitle"><b>Hi</b></div>|)"
    R"(<!-- Slideshow container: Begin -->|<div class="klSsSlideshow-container">|)";

// The functions that move between slides, with dots: %1 the one that shows a slide, %2 the class
// that is taken off the dots.
const QString kMoves =
    R"(function plusSlides(n) {|%1(slideIndex += n);|}||function currentSlide(n) {|)"
    R"(%1(slideIndex = n);|}||function %1(n) {|var i;|)"
    R"(var slides = document.getElementsByClassName("klSsSlides");|)"
    R"(var dots = document.getElementsByClassName("klSsDot");|)"
    R"(if (n > slides.length) {slideIndex = 1}|if (n < 1) {slideIndex = slides.length}|)"
    R"(for (i = 0; i < slides.length; i++) {|slides[i].style.display = "none";|}|)"
    R"(for (i = 0; i < dots.length; i++) {|)"
    R"(dots[i].className = dots[i].className.replace("%2", "");|}|)"
    R"(slides[slideIndex-1].style.display = "block";|dots[slideIndex-1].className += " klSsActive";|)"
    R"(}|</script>|)";
// The timer variant with dots; the interval "3" is written "3000".
const QString kAutorunScript =
    R"(<!-- Slideshow: scripts -->|<script>|var slideIndex = 0;|showSlides();||)"
    R"(function showSlides() {|var i;|var slides = document.getElementsByClassName("klSsSlides");|)"
    R"(var dots = document.getElementsByClassName("klSsDot");|)"
    R"(for (i = 0; i < slides.length; i++) {|slides[i].style.display = "none";|}|slideIndex++;|)"
    R"(if (slideIndex > slides.length) {slideIndex = 1}|for (i = 0; i < dots.length; i++) {|)"
    R"(dots[i].className = dots[i].className.replace("klSsActive", "");|}|)"
    R"(slides[slideIndex-1].style.display = "block";|dots[slideIndex-1].className += " klSsActive";|)"
    R"(setTimeout(showSlides, 3000); // Change image every 2 seconds|}||)"
    R"(showSlidesM(slideIndex);)" +
    kMoves.arg("showSlidesM", "klSsActive");
// The manual variant with dots: the class is taken off with its leading blank.
const QString kManualScript = "<script>|var slideIndex = 1;|showSlides(slideIndex);||" +
                              kMoves.arg("showSlides", " klSsActive");

// Without dots: no dots lines, and the display line alone where the dots group stood.
QString withoutDots(QString script) {
    return script.remove(QRegularExpression(R"(var dots = .*?\||for \(i = 0; i < dots.*?\|}\||)"
                                            R"(dots\[slideIndex-1\].*?\|)"));
}

const char* const kClassicCss =
    R"(* {box-sizing:border-box;| margin: 0;| padding: 0; | border: 0;|}||)"
    R"(/* Slideshow container */|.klSsSlideshow-container {|background-color: #000000;|)"
    R"(box-shadow: 3px 3px 10px black;|max-width: 800px;|position: relative;|margin: auto;|)"
    R"(z-index: 2;|}||.klSsSlideshow-container::after {|content: "";|top: 0;|left: 0;|)"
    R"(position: fixed;|z-index: -10;|width: 100%;|height: 100%;|}||)"
    R"(body, html {|height: 100%;|background-color:#778899;}||)"
    R"([pattern]/* Hide the images by default */|.klSsSlides {|display: none;|}||)"
    R"(/* Next & previous buttons */|.klSsPrev, .klSsNext {|cursor: pointer;|position: absolute;|)"
    R"(top: 50%;|width: auto;|margin-top: -22px;|padding: 16px;|color: white;|)"
    R"(font-weight: bold;|font-size: 18px;|transition: 0.6s ease;|border-radius: 0 3px 3px 0;|)"
    R"(z-index: 2;|}||/* Position the "next button" to the right */|.klSsNext {|right: 0;|)"
    R"(border-radius: 3px 0 0 3px;|z-index: 2;|}||)"
    R"(/* On hover, add a black background color with a little bit see-through */|)"
    R"(.klSsPrev:hover, .klSsNext:hover {|background-color: rgba(0,0,0,0.8);|z-index: 2;|}|)"
    R"([caption]z-index: 2;|}||)"
    R"(/* Number text (1/3 etc) */|.klSsNumbertext {|[f]text-shadow: 1px 1px 3px #000000;|)"
    R"(color: #f2f2f2;|font-size: 12px;|padding: 8px 12px;|position: absolute;|top: 0;|)"
    R"(z-index: 2;|}||/* The dots/bullets/indicators */|.klSsDot {|cursor: pointer;|height: 15px;|)"
    R"(width: 15px;|margin: 0 2px;|background-color: #ABCDEF;|z-index: 10;|border-radius: 50%;|)"
    R"(display: inline-block;|transition: background-color 0.6s ease;|}||)"
    R"(.klSsActive, .klSsDot:hover {|background-color: #717171;|z-index: 10;|}||)"
    R"(/* Fading animation */|.fade {|-webkit-animation-name: fade;|)"
    R"(-webkit-animation-duration: 2.5s;|animation-name: fade;|animation-duration: 2.5s;|}||)"
    R"(.klSsRef {|position: absolute;|bottom: -30px;|right: 0;|z-index: 2;|}||)"
    R"(@-webkit-keyframes fade {|from {opacity: .4}|to {opacity: 1}|}||)"
    R"(@keyframes fade {|from {opacity: .4}|to {opacity: 1}|}||)"
    R"([heading]z-index: 10;|}||)";
const char* const kPatternRule =
    R"(.klSsPatternBox::before {|content: "";|top: 0;|left: 0;|position: absolute;|z-index: 0;|)"
    R"(display: block;|width: 100%;|height: 100%;|background-image: url(../KLovPatterns/dots.png);|)"
    R"(background-repeat: repeat;|background-size: 30%;|opacity: 0.4;|}||)";
// Caption weight "Medium", heading weight "Bold".
const char* const kCaptionRule =
    R"(/* Caption text */|.klSsText {|[f]font-weight:500;|color: #445566;|font-size: 14px;|)"
    R"(padding: 8px 12px;|position: absolute;|bottom: 8px;|width: 100%;|text-align: right;|)";
const char* const kHeadingRule =
    R"(.klSstitle {|[f]font-size:32px;|font-weight:700;|color:#112233;|text-align:center;|)"
    R"(max-width: 800px;|position: relative;|margin: auto;|margin-top: 20px;|)"
    R"(margin-bottom: 20px;|)";

QString classicCss() {
    return text(QString(kClassicCss)
                    .replace("[pattern]", kPatternRule)
                    .replace("[caption]", kCaptionRule)
                    .replace("[heading]", kHeadingRule));
}

}  // namespace

// Everything on: title (escaped), heading (as it stands), pattern box, counter, reference, full
// width images, captions (escaped), buttons, dots, the timer; photo names that need it encoded.
TEST(SlideshowText, ClassicPageWithEverythingOn) {
    const auto [css, page] = split(cSlideshow::classicTexts(
        settings(kAllOn), entries({"/photos/a.png", "/other/b c%#1.jpg"}), {"x < y & z", ""}));
    const QString slide =
        R"(<!-- Full-width images with number and caption text -->|)"
        R"(<div class="klSsSlides fade">|<div class="klSsNumbertext">%1 / 2</div>|)"
        R"(<div class="klSsRef"><a href="https://www.keldra.com/orvella"><img )"
        R"(src="KLSlideShowcss/klOrvella.png" alt="Orvella" width="60"></a>%4</div>|)"
        R"(<img src="KLSsImages/%2" style="width:100%">|<div class="klSsText">%3</div>|</div>||)";
    EXPECT_TEXT(
        page,
        text(kPrologue + "<title>Trip &amp; Co</title>|" + kStylesheetLink +
             QString(kFontLink).arg("Exo+2") + kBeforeSlides +
             slide.arg("1", "a.jpeg", "x &lt; y &amp; z",
                       R"(<script src="KLSlideShowcss/klovlSlideshow.js"></script>)") +
             slide.arg("2", "b%20c%25%231.jpeg", "", "") +
             R"(<!-- Slideshow container: End-->|<!-- Slideshow: Next and previous buttons -->|)"
             R"~(<a class="klSsPrev" onclick="plusSlides(-1)">&#10094;</a>|)~"
             R"~(<a class="klSsNext" onclick="plusSlides(1)">&#10095;</a>|</div>|<br>|)~"
             R"(<!-- Slideshow: the dots/circles -->|<div style="text-align:center">|)"
             R"~(<span class="klSsDot" onclick="currentSlide(1)"></span>|)~"
             R"~(<span class="klSsDot" onclick="currentSlide(2)"></span>|</div>|)~" +
             kAutorunScript + "</div>|</body>|</html>|"));
    EXPECT_TEXT(css, classicCss());
}

// Everything off: no title, heading, pattern, counter, reference, buttons or dots; images of the
// box size; the manual script; a plain font family is Trirong. The stylesheet loses the shadow,
// the pattern rule and the round dots, and nothing else.
TEST(SlideshowText, ClassicPageWithEverythingOff) {
    const auto [css, page] = split(
        cSlideshow::classicTexts(settings(kAllOn + kAllOff + "pubSsHTMLTitleFontFamily=Trirong"),
                                 entries({"/p/a.b.png"}), {}));
    EXPECT_TEXT(
        page,
        text(
            kPrologue + kStylesheetLink + QString(kFontLink).arg("Trirong") +
            R"(<!-- Slideshow container: Begin -->|<div class="klSsSlideshow-container">|)"
            R"(<!-- Full-width images with number and caption text -->|<div class="klSsSlides">|)"
            R"(<img src="KLSsImages/a.b.jpeg" style="width:800px;height:600px">|)"
            R"(<div class="klSsText"></div>|</div>||<!-- Slideshow container: End-->|</div>|<br>|)" +
            withoutDots(kManualScript) + "</body>|</html>|"));
    EXPECT_TEXT(
        css, classicCss()
                 .remove("box-shadow: 3px 3px 10px black;\n")
                 .remove(text(kPatternRule))
                 .remove("border-radius: 50%;\n")
                 .replace("font-family: 'Exo 2', sans-serif;", "font-family: 'Trirong', serif;"));
}

TEST(SlideshowText, ScriptsAndReferenceForEachCombination) {
    const std::tuple<QString, QString, bool> cases[] = {
        {"cbSsAutorun=1, cbSsShowDots=0, cbSsShowNavigationBtn=1", withoutDots(kAutorunScript),
         true},
        {"cbSsAutorun=0, cbSsShowDots=1, cbSsShowNavigationBtn=0", kManualScript, true},
        {"cbSsAutorun=1, cbSsShowDots=0, cbSsShowNavigationBtn=0", withoutDots(kAutorunScript),
         false},
        // 2.5 seconds are written 2.5000: milliseconds by text, kept on purpose.
        {"cbSsAutorun=1, cbSsShowDots=1, cbSsShowNavigationBtn=1, tfSsInterval=2.5",
         QString(kAutorunScript).replace("3000)", "2.5000)"), true},
    };
    for (const auto& [set, script, reference] : cases) {
        const QString page =
            split(cSlideshow::classicTexts(settings(kAllOn + set), entries({"/a.jpg"}), {})).second;
        EXPECT_TRUE(page.endsWith(text(script + "</div>|</body>|</html>|"))) << set << page;
        EXPECT_EQ(page.contains("klSsRef"), reference) << set;
        EXPECT_EQ(page.contains("plusSlides(-1)"), set.contains("cbSsShowNavigationBtn=1"));
    }
}

// The slider: empty blocks slide0.. in the page, one rule per photo timed by the whole seconds of
// the interval; the caption and heading rules with their own z-index spelling.
TEST(SlideshowText, SliderPageAndStylesheet) {
    const auto [stylesheet, page] =
        split(cSlideshow::sliderTexts(settings(kAllOn + "pubSsTemplateChoice=2, tfSsInterval=2.5"),
                                      entries({"/p/a.jpg", "/p/b c.png", "/q/c.tif"})));
    const QString block = R"(<div class="slideProp slide%1">|</div>||)";
    EXPECT_TEXT(page, text(kPrologue + "<title>Trip &amp; Co</title>|" + kStylesheetLink +
                           QString(kFontLink).arg("Exo+2") + kBeforeSlides + block.arg(0) +
                           block.arg(1) + block.arg(2) +
                           "</div>||<!-- Slideshow container: End-->|</div>|</body>|</html>|"));
    const QString css =
        R"(@charset "UTF-8";|*,|*::before,|*::after { box-sizing: border-box; }||)"
        R"(/* Slideshow container */||.klSsSlideshow-container {|box-shadow: 3px 3px 10px black;|)"
        R"(width: 800px;|height: 600px;|position: relative;|overflow: hidden;|margin: auto;|}||)"
        R"(.klSsSlideshow-container::after {|content: "";|top: 0;|left: 0;|position: absolute;|)"
        R"(z-index: -2;|display: block;|width: 100%;|height: 100%;|}||)"
        R"(body, html {|background-color:#778899;|}||)" +
        QString(kPatternRule) + kCaptionRule + "z-index:2;|}||" + kHeadingRule + "z-index:10;|}||" +
        R"(.slideProp {|position: absolute;|top: 0;|left: 0;|z-index: 3;|display: flex;|)"
        R"(align-items: center;|width: 100%;|height: 100%;|transform: translateX( 800px );|)"
        R"(background-image: url( ../KLSsImages/a.jpeg);|)"
        R"(animation: opaqTransition 8s cubic-bezier(0, 0, 0, 0.97) infinite;|}||)"
        R"(.slideProp.slide1 {|z-index: 2;|background-image: url( ../KLSsImages/b%20c.jpeg);|)"
        R"(animation-delay: 2s;|}||)"
        R"(.slideProp.slide2 {|z-index: 1;|background-image: url( ../KLSsImages/c.jpeg);|)"
        R"(animation-delay: 4s;|}||)"
        R"(@keyframes opaqTransition {|3% { transform: translateX( 0 ); }|)"
        R"(25% { transform: translateX( 0 ); }|28% { transform: translateX( -800px ); }|)"
        R"(100% { transform: translateX( -800px ); }|}||)";
    EXPECT_TEXT(stylesheet, text(css));
}

// Slide rules for one photo, for a zero interval and for products past 32 bits (they wrap): the
// cycle first, then the delays.
TEST(SlideshowText, SliderTimings) {
    const std::tuple<QString, int, QString> cases[] = {
        {"7", 1, "14"}, {"0", 2, "0 0"}, {"1073741824", 3, "0 1073741824 -2147483648"}};
    const QRegularExpression timing(R"((?:opaqTransition |animation-delay: )(-?\d+)s)");
    for (const auto& [interval, count, seconds] : cases) {
        const QString css = split(cSlideshow::sliderTexts(settings("tfSsInterval=" + interval),
                                                          entries(QStringList(count, "/a.jpg"))))
                                .first;
        QStringList found;
        for (auto it = timing.globalMatch(css); it.hasNext();) found << it.next().captured(1);
        EXPECT_EQ(found.join(' '), seconds) << interval;
    }
}

// Templates 0 and 1 make the classic page, 2 the slider. A caption weight of "Light" goes into the
// heading weight and leaves the caption weight of the panel's previous run (none on its first
// run), in both page kinds: "caption/heading".
TEST(SlideshowText, TemplatesAndTheLightCaptionWeight) {
    const std::tuple<QString, QString, QString, QString> runs[] = {
        {"Light", "Bold", "0", "/300"},       {"Medium", "Bold", "2", "500/700"},
        {"Light", "Black", "2", "500/300"},   {"Bold", "Regular", "1", "700/400"},
        {"Light", "Regular", "0", "700/300"},
    };
    const QList<PhotoEntry> photos = entries({"/p/a.png"});
    QHash<QString, QString> carried;
    for (const auto& [caption, heading, kind, expected] : runs) {
        const SitePlan plan = cSlideshow::plan(
            store("pubSsFileNameWeight=" + caption + ", pubSsHTMLTitleFontStyle=" + heading +
                  ", pubSsTemplateChoice=" + kind),
            photos, {.destination = "/out/", .carried = carried});
        carried = plan.carried;
        const auto [css, page] = split(plan.pages(photos, {}));
        const auto weight = [&](const QString& rule) {
            return css.section(rule, 1).section("font-weight:", 1, 1).section(';', 0, 0);
        };
        EXPECT_EQ(weight(".klSsText {") + "/" + weight(".klSstitle {"), expected)
            << caption << kind;
        EXPECT_EQ(page.contains("slideProp"), kind == u"2");
    }
}

// Runs that cannot be made, and shows that neither run by themselves nor have buttons.
TEST(SlideshowText, RefusalsAndWarnings) {
    const QString interval = "stops Sorry, the interval is not possible.";
    const std::pair<QString, QString> cases[] = {
        {"", ""},
        {"tfSsPageName=../up", "stops Sorry, the page name is not possible."},
        {"tfSsPageName=", "stops Sorry, the page name is not possible."},
        {"tfSsImageWidth=0", "stops Sorry, the photo box is not possible."},
        {"cbSsAutorun=1, tfSsInterval=4);alert(1", interval},
        {"pubSsTemplateChoice=2, cbSsAutorun=0, tfSsInterval=", interval},
        // With the dots on: tests/cli.
        {"cbSsAutorun=0, cbSsShowNavigationBtn=0, cbSsShowDots=0, tfSsInterval=x",
         "The slides do not change by themselves|Autorun, the buttons and the dots are off: the "
         "show stays on its first slide."},
        {"cbSsAutorun=0, cbSsShowNavigationBtn=0, pubSsTemplateChoice=2", ""},
    };
    for (const auto& [set, expected] : cases)
        EXPECT_EQ(planAlerts(cSlideshow::plan(store(set), entries({"/p/a.png"}), {"/out/"})),
                  expected)
            << set;
}

// Turning the buttons or the timer off keeps the other way of moving between slides on; nothing
// turns a box off. Edited setting, then buttons and autorun before and after.
TEST(SlideshowText, EditsKeepAWayToMoveBetweenSlides) {
    const std::tuple<const char*, QString, QString> edits[] = {
        {"cbSsShowNavigationBtn", "00", "01"}, {"cbSsShowNavigationBtn", "10", "10"},
        {"cbSsAutorun", "00", "10"},           {"cbSsAutorun", "01", "01"},
        {"cbSsShowDots", "00", "00"},          {"cbSsAutorun", "11", "11"},
    };
    for (const auto& [edited, before, after] : edits) {
        SettingsStore s =
            store("cbSsShowNavigationBtn=" + before.left(1) + ", cbSsAutorun=" + before.right(1));
        cSlideshow::settingEdited(s, edited);
        EXPECT_EQ(s.text("cbSsShowNavigationBtn") + s.text("cbSsAutorun"), after)
            << edited << " " << before;
    }
}

// The pages and stylesheets of both slideshow kinds, written out here from the rules of the
// format: whole texts for settings that switch everything on and everything off, then the pieces
// each remaining branch changes.
#include <gtest/gtest.h>

#include <QRegularExpression>
#include <QUrl>

#include "generators/slideshow/cSlideshow.h"
#include "support/TestSupport.h"

namespace {

// "|" stands for a line feed and "[f]" for the font line of the family "Exo 2".
QString text(QString t) {
    return t.replace('|', '\n').replace("[f]", "font-family: 'Exo 2', sans-serif;\n");
}

SlideshowSettings settings(const QStringList& set) {
    std::vector<std::pair<QString, QString>> overrides;
    for (const QString& s : set) overrides.push_back({s.section('=', 0, 0), s.section('=', 1)});
    return cSlideshow::readSettings(testsupport::settingsWith(overrides), "/out/");
}

// The page and the stylesheet of a run's texts (the stylesheet is written first).
struct Texts {
    QString page;
    QString stylesheet;
};
Texts split(const QList<PageFile>& files) {
    EXPECT_EQ(files.size(), 2);
    EXPECT_EQ(files.value(0).path, "KLSlideShowcss/klovlSlideshow.css");
    return {files.value(1).text, files.value(0).text};
}

QList<PhotoEntry> photos(const QStringList& paths) {
    QList<PhotoEntry> list;
    for (const QString& path : paths) list.append({QUrl::fromLocalFile(path), QString()});
    return list;
}

// Every switch on; the classic page with dots, buttons and a timer.
const QStringList kAllOn = {"pubSsTemplateChoice=0",
                            "cbSsWebPageTitle=1",
                            "tfSsWebPageTitle=Trip & Co",
                            "cbSsTitle=1",
                            "tfSsTitle=<b>Hi</b>",
                            "pubSsHTMLTitleFontFamily=Exo 2",
                            "cbSsShowPatternImage=1",
                            "tfSsPatternPath=/patterns/dots.png",
                            "tfSsPatternScale=30",
                            "pubSsPatternOpacity=0.4",
                            "cbSsShowShadow=1",
                            "cbSsFadeInOut=1",
                            "cbSsResponsive=1",
                            "cbSsShowPhotoCount=1",
                            "cbSsShowNavigationBtn=1",
                            "cbSsShowDots=1",
                            "cbSsAutorun=1",
                            "tfSsInterval=3",
                            "tfSsImageWidth=800",
                            "tfSsImageHeight=600",
                            "pubSsHTMLTitleFontSize=32px",
                            "pubSsHTMLTitleFontStyle=Bold",
                            "tfSsHTMLTitleFontColor=112233",
                            "scSsHTMLTitleTxtAlign=1",
                            "pubSsFileNameWeight=Medium",
                            "pubSsFileNameSize=14px",
                            "scSsFileNameTxtAlign=2",
                            "tfSsFileNameFontColor=445566",
                            "tfSsBackgroundColor=778899",
                            "tfSsHTMLDotColor=ABCDEF",
                            "pubSsDotAppearance=0"};
const QStringList kAllOff = {
    "cbSsWebPageTitle=0", "cbSsTitle=0",      "cbSsShowPatternImage=0", "cbSsShowShadow=0",
    "cbSsFadeInOut=0",    "cbSsResponsive=0", "cbSsShowPhotoCount=0",   "cbSsShowNavigationBtn=0",
    "cbSsShowDots=0",     "cbSsAutorun=0",    "pubSsDotAppearance=1"};

const char* const kPrologue =
    R"(<!DOCTYPE html PUBLIC "-//W3C//DTD XHTML 1.0 Transitional//EN" )"
    R"("http://www.w3.org/TR/xhtml1/DTD/xhtml1-transitional.dtd">|)"
    R"(<html xmlns="http://www.w3.org/1999/xhtml">|<head>|)"
    R"(<meta http-equiv="Content-Type" content="text/html; charset=UTF-8" />|)"
    R"(<meta name="viewport" content="width=device-width, initial-scale=1.0" />|)";
const char* const kStylesheetLink =
    R"(<!-- Keldra: Slideshow creation -->|<link href="KLSlideShowcss/klovlSlideshow.css" )"
    R"(rel="stylesheet" type="text/css">|)";
const char* const kFontLink =
    R"(<link href="https://fonts.googleapis.com/css?family=%1:300,400,500,700,900" )"
    R"(rel="stylesheet">|</head>|<body>|)";
const char* const kBeforeSlides =
    R"(<div class="klSsPatternBox">|<div class="klSstitle"><b>Hi</b></div>|)"
    R"(<!-- Slideshow container: Begin -->|<div class="klSsSlideshow-container">|)";
const char* const kReference =
    R"(<div class="klSsRef"><a href="https://www.keldra.com/orvella"><img )"
    R"(src="https://www.keldra.com/orvella/klOrvella.png" alt="Orvella"></a></div>|)";

// The timer variant with dots; the interval "3" is written "3000".
const char* const kAutorunScript =
    R"(<!-- Slideshow: scripts -->|<script>|var slideIndex = 0;|showSlides();||)"
    R"(function showSlides() {|var i;|var slides = document.getElementsByClassName("klSsSlides");|)"
    R"(var dots = document.getElementsByClassName("klSsDot");|)"
    R"(for (i = 0; i < slides.length; i++) {|slides[i].style.display = "none";|}|slideIndex++;|)"
    R"(if (slideIndex > slides.length) {slideIndex = 1}|for (i = 0; i < dots.length; i++) {|)"
    R"(dots[i].className = dots[i].className.replace("klSsActive", "");|}|)"
    R"(slides[slideIndex-1].style.display = "block";|dots[slideIndex-1].className += " klSsActive";|)"
    R"(setTimeout(showSlides, 3000); // Change image every 2 seconds|}||)"
    R"(showSlidesM(slideIndex);function plusSlides(n) {|showSlidesM(slideIndex += n);|}||)"
    R"(function currentSlide(n) {|showSlidesM(slideIndex = n);|}||function showSlidesM(n) {|var i;|)"
    R"(var slides = document.getElementsByClassName("klSsSlides");|)"
    R"(var dots = document.getElementsByClassName("klSsDot");|)"
    R"(if (n > slides.length) {slideIndex = 1}|if (n < 1) {slideIndex = slides.length}|)"
    R"(for (i = 0; i < slides.length; i++) {|slides[i].style.display = "none";|}|)"
    R"(for (i = 0; i < dots.length; i++) {|)"
    R"(dots[i].className = dots[i].className.replace("klSsActive", "");|}|)"
    R"(slides[slideIndex-1].style.display = "block";|dots[slideIndex-1].className += " klSsActive";|)"
    R"(}|</script>|)";
// The manual variant with dots: the class is taken off with its leading blank.
const char* const kManualScript =
    R"(<script>|var slideIndex = 1;|showSlides(slideIndex);||function plusSlides(n) {|)"
    R"(showSlides(slideIndex += n);|}||function currentSlide(n) {|showSlides(slideIndex = n);|}||)"
    R"(function showSlides(n) {|var i;|var slides = document.getElementsByClassName("klSsSlides");|)"
    R"(var dots = document.getElementsByClassName("klSsDot");|)"
    R"(if (n > slides.length) {slideIndex = 1}|if (n < 1) {slideIndex = slides.length}|)"
    R"(for (i = 0; i < slides.length; i++) {|slides[i].style.display = "none";|}|)"
    R"(for (i = 0; i < dots.length; i++) {|)"
    R"(dots[i].className = dots[i].className.replace(" klSsActive", "");|}|)"
    R"(slides[slideIndex-1].style.display = "block";|dots[slideIndex-1].className += " klSsActive";|)"
    R"(}|</script>|)";

// Without dots: no dots lines, and the display line alone where the dots group stood.
QString withoutDots(QString script) {
    const QString display = R"(slides[slideIndex-1].style.display = "block";|)";
    for (const char* active : {"klSsActive", " klSsActive"})
        script.replace(R"(for (i = 0; i < dots.length; i++) {|dots[i].className = )"
                       R"(dots[i].className.replace(")" +
                           QString(active) + R"(", "");|}|)" + display +
                           R"(dots[slideIndex-1].className += " klSsActive";|)",
                       display);
    return script.remove(R"(var dots = document.getElementsByClassName("klSsDot");|)");
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
    const SlideshowSettings p = settings(kAllOn);
    const Texts texts = split(cSlideshow::classicTexts(
        p, photos({"/photos/a.png", "/other/b c#1.jpg"}), {"x < y & z", ""}));
    const QString slide =
        R"(<!-- Full-width images with number and caption text -->|)"
        R"(<div class="klSsSlides fade">|<div class="klSsNumbertext">%1 / 2</div>|)" +
        QString(kReference) +
        R"(<img src="KLSsImages/%2" style="width:100%">|)"
        R"(<div class="klSsText">%3</div>|</div>||)";
    const QString expected =
        kPrologue + QString("<title>Trip &amp; Co</title>|") + kStylesheetLink +
        QString(kFontLink).arg("Exo+2") + kBeforeSlides +
        slide.arg("1", "a.jpeg", "x &lt; y &amp; z") + slide.arg("2", "b%20c%231.jpeg", "") +
        R"(<!-- Slideshow container: End-->|<!-- Slideshow: Next and previous buttons -->|)"
        R"~(<a class="klSsPrev" onclick="plusSlides(-1)">&#10094;</a>|)~"
        R"~(<a class="klSsNext" onclick="plusSlides(1)">&#10095;</a>|</div>|<br>|)~"
        R"(<!-- Slideshow: the dots/circles -->|<div style="text-align:center">|)"
        R"~(<span class="klSsDot" onclick="currentSlide(1)"></span>|)~"
        R"~(<span class="klSsDot" onclick="currentSlide(2)"></span>|</div>|)~" +
        kAutorunScript + "</div>|</body>|</html>|";
    EXPECT_EQ(texts.page.toStdString(), text(expected).toStdString());
    EXPECT_EQ(texts.stylesheet.toStdString(), classicCss().toStdString());
}

// Everything off: no title, heading, pattern, counter, reference, buttons or dots; images of the
// box size; the manual script; a plain font family is Trirong. The stylesheet loses the shadow,
// the pattern rule and the round dots, and nothing else.
TEST(SlideshowText, ClassicPageWithEverythingOff) {
    const SlideshowSettings p =
        settings(kAllOn + kAllOff + QStringList{"pubSsHTMLTitleFontFamily=Trirong"});
    const Texts texts = split(cSlideshow::classicTexts(p, photos({"/photos/a.b.png"}), {}));
    const QString expected =
        kPrologue + QString(kStylesheetLink) + QString(kFontLink).arg("Trirong") +
        R"(<!-- Slideshow container: Begin -->|<div class="klSsSlideshow-container">|)"
        R"(<!-- Full-width images with number and caption text -->|<div class="klSsSlides">|)"
        R"(<img src="KLSsImages/a.b.jpeg" style="width:800px;height:600px">|)"
        R"(<div class="klSsText"></div>|</div>||<!-- Slideshow container: End-->|</div>|<br>|)" +
        withoutDots(kManualScript) + "</body>|</html>|";
    EXPECT_EQ(texts.page.toStdString(), text(expected).toStdString());
    const QString css =
        classicCss()
            .remove("box-shadow: 3px 3px 10px black;\n")
            .remove(text(kPatternRule))
            .remove("border-radius: 50%;\n")
            .replace("font-family: 'Exo 2', sans-serif;", "font-family: 'Trirong', serif;");
    EXPECT_EQ(texts.stylesheet.toStdString(), css.toStdString());
}

// The script and the reference for the remaining combinations of timer, dots and buttons.
TEST(SlideshowText, ScriptsAndReferenceForEachCombination) {
    const struct {
        QStringList set;
        QString script;
        bool reference;
    } cases[] = {
        {{"cbSsAutorun=1", "cbSsShowDots=0", "cbSsShowNavigationBtn=1"},
         withoutDots(kAutorunScript),
         true},
        {{"cbSsAutorun=0", "cbSsShowDots=1", "cbSsShowNavigationBtn=0"}, kManualScript, true},
        {{"cbSsAutorun=1", "cbSsShowDots=0", "cbSsShowNavigationBtn=0"},
         withoutDots(kAutorunScript),
         false},
        // 2.5 seconds are written 2.5000: milliseconds by text, kept on purpose.
        {{"cbSsAutorun=1", "cbSsShowDots=1", "cbSsShowNavigationBtn=1", "tfSsInterval=2.5"},
         QString(kAutorunScript).replace("3000)", "2.5000)"),
         true},
    };
    for (const auto& c : cases) {
        const QString page =
            split(cSlideshow::classicTexts(settings(kAllOn + c.set), photos({"/a.jpg"}), {})).page;
        const QString tail = text(c.script + "</div>|</body>|</html>|");
        EXPECT_TRUE(page.endsWith(tail)) << c.set.join(' ').toStdString() << page.toStdString();
        EXPECT_EQ(page.contains("klSsRef"), c.reference) << c.set.join(' ').toStdString();
        EXPECT_EQ(page.contains("plusSlides(-1)"), c.set.contains("cbSsShowNavigationBtn=1"));
    }
}

// The slider: empty blocks slide0.. in the page, one rule per photo timed by the whole seconds of
// the interval; the caption and heading rules with their own z-index spelling.
TEST(SlideshowText, SliderPageAndStylesheet) {
    const SlideshowSettings p =
        settings(kAllOn + QStringList{"pubSsTemplateChoice=2", "tfSsInterval=2.5"});
    const Texts texts =
        split(cSlideshow::sliderTexts(p, photos({"/p/a.jpg", "/p/b c.png", "/q/c.tif"})));
    const QString block = R"(<div class="slideProp slide%1">|</div>||)";
    const QString page = kPrologue + QString("<title>Trip &amp; Co</title>|") + kStylesheetLink +
                         QString(kFontLink).arg("Exo+2") + kBeforeSlides + block.arg(0) +
                         block.arg(1) + block.arg(2) +
                         "</div>||<!-- Slideshow container: End-->|</div>|</body>|</html>|";
    EXPECT_EQ(texts.page.toStdString(), text(page).toStdString());

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
    EXPECT_EQ(texts.stylesheet.toStdString(), text(css).toStdString());
}

// Slide rules for one photo, for a zero interval and for products past 32 bits (they wrap): the
// cycle first, then the delays.
TEST(SlideshowText, SliderTimings) {
    const struct {
        QString interval;
        int count;
        QString seconds;
    } cases[] = {
        {"7", 1, "14"},
        {"0", 2, "0 0"},
        {"1073741824", 3, "0 1073741824 -2147483648"},
    };
    const QRegularExpression timing(R"((?:opaqTransition |animation-delay: )(-?\d+)s)");
    for (const auto& c : cases) {
        const QStringList all = {"/a.jpg", "/b.jpg", "/c.jpg"};
        const QString css = split(cSlideshow::sliderTexts(settings({"tfSsInterval=" + c.interval}),
                                                          photos(all.mid(0, c.count))))
                                .stylesheet;
        QStringList found;
        for (auto it = timing.globalMatch(css); it.hasNext();) found << it.next().captured(1);
        EXPECT_EQ(found.join(' '), c.seconds) << c.interval.toStdString();
        EXPECT_EQ(css.count("background-image"), c.count);
    }
}

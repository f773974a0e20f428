#include "generators/slideshow/cSlideshow.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <optional>

#include "generators/common/CaptionBuilder.h"
#include "generators/common/PageText.h"
#include "imaging/KLImageHandling.h"
#include "imaging/Picture.h"
#include "presets/SettingsStore.h"
#include "services/TextValues.h"

namespace {

const QString kStylesheet = QStringLiteral("KLSlideShowcss/klovlSlideshow.css");
const QString kSlides = QStringLiteral("KLSsImages/");
const QString kCaptionWeight = QStringLiteral("mySsFileNameFontStyle");

// The support files of a classic page that shows the maker's reference: its logo and the script
// of the page's controls (arrow keys, an interval that starts again after a move, a pause button,
// readable captions), both written with the site.
const QList<std::pair<QString, QString>> kControlFiles = {
    {":/lightbox/klOrvella.png", "KLSlideShowcss/klOrvella.png"},
    {":/slideshow/klovlSlideshow.js", "KLSlideShowcss/klovlSlideshow.js"}};

// The maker's reference that stands in every slide whenever buttons or dots are shown; the first
// one loads the controls' script, which must run before the page's own.
QString reference(bool first) {
    return QStringLiteral(
               "<div class=\"klSsRef\"><a href=\"https://www.keldra.com/orvella\"><img "
               "src=\"KLSlideShowcss/klOrvella.png\" alt=\"Orvella\" width=\"60\"></a>") +
           (first ? QStringLiteral("<script src=\"KLSlideShowcss/klovlSlideshow.js\"></script>")
                  : QString()) +
           QStringLiteral("</div>\n");
}

// Whether a classic page shows the maker's reference, and so loads the controls' script.
bool showsReference(const SlideshowSettings& p) {
    return p.dots || p.buttons;
}

// From the document start to the opening of the slideshow container; both page kinds share it.
QString pageStart(const SlideshowSettings& p) {
    QString html = PageText::headPrologue();
    if (p.webPageTitle) html += "<title>" + PageText::escapeText(p.webPageTitleText) + "</title>\n";
    html +=
        "<!-- Keldra: Slideshow creation -->\n<link href=\"KLSlideShowcss/klovlSlideshow.css\" "
        "rel=\"stylesheet\" type=\"text/css\">\n";
    html += PageText::webFontLink(p.css.fontFamily) + "</head>\n<body>\n";
    if (p.pattern) html += "<div class=\"klSsPatternBox\">\n";
    if (p.heading) html += "<div class=\"klSstitle\">" + p.headingText + "</div>\n";
    html += "<!-- Slideshow container: Begin -->\n<div class=\"klSsSlideshow-container\">\n";
    return html;
}

// After the container: the pattern box closes, then the document.
QString pageEnd(const SlideshowSettings& p) {
    return (p.pattern ? QStringLiteral("</div>\n") : QString()) + "</body>\n</html>\n";
}

QString classicSlide(const SlideshowSettings& p, int n, int count, const QString& image,
                     const QString& caption) {
    QString s = QStringLiteral("<!-- Full-width images with number and caption text -->\n");
    s += p.fade ? QStringLiteral("<div class=\"klSsSlides fade\">\n")
                : QStringLiteral("<div class=\"klSsSlides\">\n");
    if (p.photoCount)
        s += "<div class=\"klSsNumbertext\">" + QString::number(n) + " / " +
             QString::number(count) + "</div>\n";
    if (showsReference(p)) s += reference(n == 1);
    s += "<img src=\"KLSsImages/" + PageText::urlSegment(image);
    s += p.responsive
             ? QStringLiteral("\" style=\"width:100%\">\n")
             : "\" style=\"width:" + p.imageWidth + "px;height:" + p.imageHeight + "px\">\n";
    s += "<div class=\"klSsText\">" + PageText::escapeText(caption) + "</div>\n";
    s += "</div>\n\n";
    return s;
}

// The script of the classic page up to its last function's closing brace (which the page end
// writes). `autorun` adds a timer that shows the next slide every interval.
QString classicScript(const SlideshowSettings& p) {
    const QString slides =
        QStringLiteral("var slides = document.getElementsByClassName(\"klSsSlides\");\n");
    const QString dots =
        p.dots ? QStringLiteral("var dots = document.getElementsByClassName(\"klSsDot\");\n")
               : QString();
    const QString hideAll = QStringLiteral(
        "for (i = 0; i < slides.length; i++) {\nslides[i].style.display = \"none\";\n}\n");
    const QString bounds = QStringLiteral(
        "if (n > slides.length) {slideIndex = 1}\nif (n < 1) {slideIndex = slides.length}\n");
    // The manual page takes the active class off with its leading blank, the timer without.
    const auto show = [&](const QString& activeClass) {
        const QString display = QStringLiteral("slides[slideIndex-1].style.display = \"block\";\n");
        if (!p.dots) return display;
        return "for (i = 0; i < dots.length; i++) {\ndots[i].className = "
               "dots[i].className.replace(\"" +
               activeClass + "\", \"\");\n}\n" + display +
               "dots[slideIndex-1].className += \" klSsActive\";\n";
    };
    const auto moves = [](const QString& function) {
        return "function plusSlides(n) {\n" + function +
               "(slideIndex += n);\n}\n\nfunction currentSlide(n) {\n" + function +
               "(slideIndex = n);\n}\n\nfunction " + function + "(n) {\nvar i;\n";
    };
    if (!p.autorun)
        return "<script>\nvar slideIndex = 1;\nshowSlides(slideIndex);\n\n" +
               moves(QStringLiteral("showSlides")) + slides + dots + bounds + hideAll +
               show(QStringLiteral(" klSsActive"));
    // The delay is the interval text with "000" appended; the comment is fixed.
    return "<!-- Slideshow: scripts -->\n<script>\nvar slideIndex = 0;\nshowSlides();\n\n"
           "function showSlides() {\nvar i;\n" +
           slides + dots + hideAll +
           "slideIndex++;\nif (slideIndex > slides.length) {slideIndex = 1}\n" +
           show(QStringLiteral("klSsActive")) + "setTimeout(showSlides, " + p.interval +
           "000); // Change image every 2 seconds\n}\n\nshowSlidesM(slideIndex);" +
           moves(QStringLiteral("showSlidesM")) + slides + dots + bounds + hideAll +
           show(QStringLiteral("klSsActive"));
}

// Whether a run cannot be made of these settings and photos, and why.
std::optional<RunAlert> refusalOf(const SlideshowSettings& p, bool slider, qsizetype photos) {
    if (photos == 0)
        return RunAlert{QStringLiteral("Sorry, you forgot to select photos."),
                        QStringLiteral("Please choose the photos.")};
    if (p.pageName.isEmpty() || p.pageName.contains(u'/') || p.pageName.contains(u'\\') ||
        p.pageName.contains(QStringLiteral("..")))
        return RunAlert{QStringLiteral("Sorry, the page name is not possible."),
                        QStringLiteral("\"%1\" cannot name a page in the output folder: give a "
                                       "name without \"/\", \"\\\" or \"..\".")
                            .arg(p.pageName)};
    const int width = TextValues::intValue(p.imageWidth);
    const int height = TextValues::intValue(p.imageHeight);
    if (width < 1 || height < 1)
        return RunAlert{QStringLiteral("Sorry, the photo box is not possible."),
                        QStringLiteral("Width and height must be at least 1 pixel (width: %1, "
                                       "height: %2).")
                            .arg(width)
                            .arg(height)};
    // The interval goes into the page's script or stylesheet as it stands: a number only.
    static const QRegularExpression seconds(QStringLiteral("^(\\d+\\.?\\d*|\\.\\d+)$"));
    if ((slider || p.autorun) && !seconds.match(p.interval).hasMatch())
        return RunAlert{QStringLiteral("Sorry, the interval is not possible."),
                        QStringLiteral("\"%1\" is not a number of seconds.").arg(p.interval)};
    return std::nullopt;
}

}  // namespace

void cSlideshow::hCheckVisebility(SettingsStore& s) {
    if (!s.isOn("cbSsShowNavigationBtn") && !s.isOn("cbSsAutorun"))
        s.setText("cbSsAutorun", QStringLiteral("1"));
}

void cSlideshow::hCheckAutorun(SettingsStore& s) {
    if (!s.isOn("cbSsAutorun") && !s.isOn("cbSsShowNavigationBtn"))
        s.setText("cbSsShowNavigationBtn", QStringLiteral("1"));
}

void cSlideshow::settingEdited(SettingsStore& settings, const QString& name) {
    if (name == u"cbSsShowNavigationBtn") hCheckVisebility(settings);
    if (name == u"cbSsAutorun") hCheckAutorun(settings);
}

const QStringList& cSlideshow::folders() {
    static const QStringList list = {"KLSsImages/", "KLovPatterns/", "KLSlideShowcss/"};
    return list;
}

QString cSlideshow::slideName(const QString& photoPath) {
    return QFileInfo(photoPath).completeBaseName() + QStringLiteral(".jpeg");
}

SlideshowSettings cSlideshow::readSettings(const SettingsStore& s, const QString& destination,
                                           const QString& previousCaptionWeight) {
    SlideshowSettings p;
    p.templateIndex = s.index("pubSsTemplateChoice");
    p.pageName = PageText::pageName(s.text("tfSsPageName"));
    p.webPageTitle = s.isOn("cbSsWebPageTitle");
    p.webPageTitleText = s.text("tfSsWebPageTitle");
    p.heading = s.isOn("cbSsTitle");
    p.headingText = s.text("tfSsTitle");
    p.captions = s.isOn("cbSsExifUC");
    p.captionItems = s.text("tfSsMetaDataToShow");
    p.captionSeparator = s.text("tfSsMetaDataValueSep");
    p.responsive = s.isOn("cbSsResponsive");
    p.photoCount = s.isOn("cbSsShowPhotoCount");
    p.buttons = s.isOn("cbSsShowNavigationBtn");
    p.dots = s.isOn("cbSsShowDots");
    p.autorun = s.isOn("cbSsAutorun");
    p.fade = s.isOn("cbSsFadeInOut");
    p.pattern = s.isOn("cbSsShowPatternImage");
    p.imageWidth = s.text("tfSsImageWidth");
    p.imageHeight = s.text("tfSsImageHeight");
    p.interval = s.text("tfSsInterval");
    const QString patternPath = s.text("tfSsPatternPath");
    p.patternFileName = QFileInfo(patternPath).fileName();
    if (p.pattern && !patternPath.isEmpty()) p.patternSource = patternPath;

    SlideshowCssArgs& css = p.css;
    css.destination = destination;
    css.imageWidth = p.imageWidth;
    css.imageHeight = p.imageHeight;
    css.fontFamily = s.title("pubSsHTMLTitleFontFamily");
    css.headingFontSize = s.title("pubSsHTMLTitleFontSize");
    css.headingWeight = PageText::weight(s.title("pubSsHTMLTitleFontStyle"));
    // A "Light" caption weight lands in the heading weight and leaves the caption weight of the
    // previous run: kept as it always was.
    const QString captionWeight = s.title("pubSsFileNameWeight");
    if (captionWeight == u"Light") {
        css.headingWeight = QStringLiteral("300");
        css.captionWeight = previousCaptionWeight;
    } else {
        css.captionWeight = PageText::weight(captionWeight);
    }
    css.headingColor = PageText::hashColor(s.text("tfSsHTMLTitleFontColor"));
    css.headingAlign = PageText::alignment(s.integer("scSsHTMLTitleTxtAlign"));
    css.captionFontSize = s.title("pubSsFileNameSize");
    css.captionAlign = PageText::alignment(s.integer("scSsFileNameTxtAlign"));
    css.captionColor = PageText::hashColor(s.text("tfSsFileNameFontColor"));
    css.backgroundColor = PageText::hashColor(s.text("tfSsBackgroundColor"));
    css.shadowOn = s.integer("cbSsShowShadow");
    css.patternOn = s.integer("cbSsShowPatternImage");
    css.patternFileName = p.patternFileName;
    css.patternScale = s.text("tfSsPatternScale");
    css.patternOpacity = s.title("pubSsPatternOpacity");
    css.dotColor = s.text("tfSsHTMLDotColor");
    css.dotAppearance = QString::number(s.index("pubSsDotAppearance"));
    return p;
}

QList<PageFile> cSlideshow::classicTexts(const SlideshowSettings& p,
                                         const QList<PhotoEntry>& photos,
                                         const QStringList& captions) {
    QString html = pageStart(p);
    const int count = int(photos.size());
    for (int i = 0; i < count; ++i)
        html += classicSlide(p, i + 1, count, slideName(photos[i].url.toLocalFile()),
                             captions.value(i));
    html += QStringLiteral("<!-- Slideshow container: End-->\n");
    if (p.buttons)
        html +=
            "<!-- Slideshow: Next and previous buttons -->\n"
            "<a class=\"klSsPrev\" onclick=\"plusSlides(-1)\">&#10094;</a>\n"
            "<a class=\"klSsNext\" onclick=\"plusSlides(1)\">&#10095;</a>\n";
    html += "</div>\n<br>\n";
    if (p.dots) {
        html += "<!-- Slideshow: the dots/circles -->\n<div style=\"text-align:center\">\n";
        for (int k = 1; k <= count; ++k)
            html += "<span class=\"klSsDot\" onclick=\"currentSlide(" + QString::number(k) +
                    ")\"></span>\n";
        html += "</div>\n";
    }
    html += classicScript(p) + "}\n</script>\n" + pageEnd(p);
    return {{kStylesheet, SlideshowCss::hCreateSlideShowCss(p.css), false},
            {p.pageName + QStringLiteral(".html"), html}};
}

QList<PageFile> cSlideshow::sliderTexts(const SlideshowSettings& p,
                                        const QList<PhotoEntry>& photos) {
    QString html = pageStart(p);
    QStringList images;
    for (qsizetype i = 0; i < photos.size(); ++i) {
        html += "<div class=\"slideProp slide" + QString::number(i) + "\">\n</div>\n\n";
        images.append(slideName(photos[i].url.toLocalFile()));
    }
    html += "</div>\n\n<!-- Slideshow container: End-->\n" + pageEnd(p);
    return {
        {kStylesheet, SlideshowCss::hCreateSlideSliderShowCss(p.css, images, p.interval), false},
        {p.pageName + QStringLiteral(".html"), html}};
}

QStringList cSlideshow::hMakeSlide(const QString& photoPath, const QString& boxWidth,
                                   const QString& boxHeight, const QString& outputPath) {
    KLImageHandling images;
    QString reason;
    int photoWidth = 0;
    int photoHeight = 0;
    const bool readable = KLImageHandling::isSupportedSource(photoPath, &reason) &&
                          PhotoDecoder::uprightSize(photoPath, &photoWidth, &photoHeight, &reason);
    if (readable &&
        !images.computeSlideSize(photoWidth, photoHeight, TextValues::intValue(boxWidth),
                                 TextValues::intValue(boxHeight)))
        reason = QStringLiteral("no slide of %1 x %2 can be made of it").arg(boxWidth, boxHeight);
    // Read once, shrunk while decoding to what the scaled slide needs, and streamed into the
    // slide as it is written: the whole photo is never held.
    Picture slide;
    if (reason.isEmpty())
        slide = images.slide(
            PhotoDecoder::decodeForOneUse(photoPath, double(images.newImgW) / photoWidth, &reason),
            boxWidth, boxHeight);
    if (slide.isNull())
        return {photoPath + QStringLiteral(": ") + (reason.isEmpty() ? images.lastError : reason)};
    // A photo damaged past its header fails while the slide is written: both files are named.
    if (images.hSaveToNewImageFile(outputPath, QStringLiteral("public.jpeg"), slide) != u"OK")
        return {outputPath + QStringLiteral(": ") + images.lastError + QStringLiteral(" (from ") +
                photoPath + u')'};
    return {};
}

RunResult cSlideshow::hCreateSlideShow(const QList<PhotoEntry>& photos,
                                       const SettingsStore& snapshot, UserInterface& ui,
                                       const RunOptions& options) {
    const int index = snapshot.index("pubSsTemplateChoice");
    if (index < 0 || index > 2) return {};
    return runPlanned(&plan, photos, snapshot, ui, options);
}

SitePlan cSlideshow::plan(const SettingsStore& snapshot, const QList<PhotoEntry>& photos,
                          const RunOptions& options) {
    const SlideshowSettings p =
        readSettings(snapshot, options.destination, options.carried.value(kCaptionWeight));
    const bool slider = p.templateIndex == 2;
    SitePlan plan{
        .kind = QStringLiteral("slideshow"),
        .firstPage = p.pageName + QStringLiteral(".html"),
        .refusal = refusalOf(p, slider, photos.size()),
        // The slider computes the captions but shows none.
        .captions = {p.captions, p.captionItems, p.captionSeparator,
                     CaptionBuilder::FileName::BaseName},
        .pages =
            [p, slider](const QList<PhotoEntry>& shown, const QStringList& captions) {
                return slider ? sliderTexts(p, shown) : classicTexts(p, shown, captions);
            },
        .support = {folders(), QString(), p.patternSource, "KLovPatterns/" + p.patternFileName,
                    !slider && showsReference(p) ? kControlFiles
                                                 : QList<std::pair<QString, QString>>()},
        // Photos with one base name share one slide, the last one made.
        .images =
            [](const QString& photoPath) {
                const QString name = slideName(photoPath);
                return PhotoImages{name, {kSlides + name}};
            },
        .imageSettings = {p.imageWidth, p.imageHeight},
        .makeImages =
            [p, folder = options.destination + kSlides](const QString& photoPath) {
                return hMakeSlide(photoPath, p.imageWidth, p.imageHeight,
                                  folder + slideName(photoPath));
            },
        .carried = {{kCaptionWeight, p.css.captionWeight}},
    };
    if (!slider && !p.autorun && !p.buttons)
        plan.warnings.append(
            {QStringLiteral("The slides do not change by themselves"),
             p.dots ? QStringLiteral("Autorun and the previous and next buttons are off: only "
                                     "the dots move between the slides.")
                    : QStringLiteral("Autorun, the buttons and the dots are off: the show stays "
                                     "on its first slide.")});
    return plan;
}

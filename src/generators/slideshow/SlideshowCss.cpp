#include "generators/slideshow/SlideshowCss.h"

#include "generators/common/PageText.h"
#include "generators/common/cCssCreate.h"
#include "services/TextValues.h"

namespace {

QString patternRule(const SlideshowCssArgs& a) {
    if (a.patternOn != 1) return {};
    return ".klSsPatternBox::before {\ncontent: \"\";\ntop: 0;\nleft: 0;\nposition: absolute;\n"
           "z-index: 0;\ndisplay: block;\nwidth: 100%;\nheight: 100%;\n"
           "background-image: url(../KLovPatterns/" +
           PageText::urlSegment(a.patternFileName) +
           ");\nbackground-repeat: repeat;\nbackground-size: " + a.patternScale +
           "%;\nopacity: " + a.patternOpacity + ";\n}\n\n";
}

// The two rules both page kinds share; only their z-index lines differ.
QString captionRule(const SlideshowCssArgs& a, const QString& zIndexLine) {
    return "/* Caption text */\n.klSsText {\n" + cCssCreate::fontLine(a.fontFamily) +
           "font-weight:" + a.captionWeight + ";\ncolor: " + a.captionColor +
           ";\nfont-size: " + a.captionFontSize +
           ";\npadding: 8px 12px;\nposition: absolute;\nbottom: 8px;\nwidth: 100%;\n"
           "text-align: " +
           a.captionAlign + ";\n" + zIndexLine + "}\n\n";
}

QString headingRule(const SlideshowCssArgs& a, const QString& zIndexLine) {
    return ".klSstitle {\n" + cCssCreate::fontLine(a.fontFamily) +
           "font-size:" + a.headingFontSize + ";\nfont-weight:" + a.headingWeight +
           ";\ncolor:" + a.headingColor + ";\ntext-align:" + a.headingAlign +
           ";\nmax-width: " + a.imageWidth +
           "px;\nposition: relative;\nmargin: auto;\nmargin-top: 20px;\nmargin-bottom: 20px;\n" +
           zIndexLine + "}\n\n";
}

QString shadowLine(const SlideshowCssArgs& a) {
    return a.shadowOn == 1 ? QStringLiteral("box-shadow: 3px 3px 10px black;\n") : QString();
}

// Whole numbers as a 32-bit product wraps, as the slide timings are computed.
qint32 product32(qint64 a, qint64 b) {
    return qint32(quint32(a) * quint32(b));
}

}  // namespace

QString SlideshowCss::hCreateSlideShowCss(const SlideshowCssArgs& a) {
    const QString font = cCssCreate::fontLine(a.fontFamily);
    QString s =
        QStringLiteral("* {box-sizing:border-box;\n margin: 0;\n padding: 0; \n border: 0;\n}\n\n");
    s += "/* Slideshow container */\n.klSsSlideshow-container {\nbackground-color: #000000;\n" +
         shadowLine(a) + "max-width: " + a.imageWidth +
         "px;\nposition: relative;\nmargin: auto;\nz-index: 2;\n}\n\n";
    s += ".klSsSlideshow-container::after {\ncontent: \"\";\ntop: 0;\nleft: 0;\nposition: fixed;\n"
         "z-index: -10;\nwidth: 100%;\nheight: 100%;\n}\n\n";
    s += "body, html {\nheight: 100%;\nbackground-color:" + a.backgroundColor + ";}\n\n";
    s += patternRule(a);
    s += "/* Hide the images by default */\n.klSsSlides {\ndisplay: none;\n}\n\n";
    s += "/* Next & previous buttons */\n.klSsPrev, .klSsNext {\ncursor: pointer;\n"
         "position: absolute;\ntop: 50%;\nwidth: auto;\nmargin-top: -22px;\npadding: 16px;\n"
         "color: white;\nfont-weight: bold;\nfont-size: 18px;\ntransition: 0.6s ease;\n"
         "border-radius: 0 3px 3px 0;\nz-index: 2;\n}\n\n";
    s += "/* Position the \"next button\" to the right */\n.klSsNext {\nright: 0;\n"
         "border-radius: 3px 0 0 3px;\nz-index: 2;\n}\n\n";
    // A single line feed after this rule, no blank line.
    s += "/* On hover, add a black background color with a little bit see-through */\n"
         ".klSsPrev:hover, .klSsNext:hover {\nbackground-color: rgba(0,0,0,0.8);\nz-index: 2;\n"
         "}\n";
    s += captionRule(a, QStringLiteral("z-index: 2;\n"));
    s += "/* Number text (1/3 etc) */\n.klSsNumbertext {\n" + font +
         "text-shadow: 1px 1px 3px #000000;\ncolor: #f2f2f2;\nfont-size: 12px;\n"
         "padding: 8px 12px;\nposition: absolute;\ntop: 0;\nz-index: 2;\n}\n\n";
    s += "/* The dots/bullets/indicators */\n.klSsDot {\ncursor: pointer;\nheight: 15px;\n"
         "width: 15px;\nmargin: 0 2px;\nbackground-color: #" +
         a.dotColor + ";\nz-index: 10;\n";
    if (a.dotAppearance == u"0") s += "border-radius: 50%;\n";
    s += "display: inline-block;\ntransition: background-color 0.6s ease;\n}\n\n";
    s += ".klSsActive, .klSsDot:hover {\nbackground-color: #717171;\nz-index: 10;\n}\n\n";
    // Always written: the page decides whether slides carry the class.
    s += "/* Fading animation */\n.fade {\n-webkit-animation-name: fade;\n"
         "-webkit-animation-duration: 2.5s;\nanimation-name: fade;\nanimation-duration: 2.5s;\n"
         "}\n\n";
    s += ".klSsRef {\nposition: absolute;\nbottom: -30px;\nright: 0;\nz-index: 2;\n}\n\n";
    s += "@-webkit-keyframes fade {\nfrom {opacity: .4}\nto {opacity: 1}\n}\n\n";
    s += "@keyframes fade {\nfrom {opacity: .4}\nto {opacity: 1}\n}\n\n";
    s += headingRule(a, QStringLiteral("z-index: 10;\n"));
    return s;
}

QString SlideshowCss::hCreateSlideSliderShowCss(const SlideshowCssArgs& a,
                                                const QStringList& slideImages,
                                                const QString& interval) {
    QString s = QStringLiteral(
        "@charset \"UTF-8\";\n*,\n*::before,\n*::after { box-sizing: border-box; }\n\n"
        "/* Slideshow container */\n\n");
    // The container has the exact size of the slides and hides what lies outside it.
    s += ".klSsSlideshow-container {\n" + shadowLine(a) + "width: " + a.imageWidth +
         "px;\nheight: " + a.imageHeight +
         "px;\nposition: relative;\noverflow: hidden;\nmargin: auto;\n}\n\n";
    s += ".klSsSlideshow-container::after {\ncontent: \"\";\ntop: 0;\nleft: 0;\n"
         "position: absolute;\nz-index: -2;\ndisplay: block;\nwidth: 100%;\nheight: 100%;\n}\n\n";
    s += "body, html {\nbackground-color:" + a.backgroundColor + ";\n}\n\n";
    s += patternRule(a);
    s += captionRule(a, QStringLiteral("z-index:2;\n"));
    s += headingRule(a, QStringLiteral("z-index:10;\n"));

    // Each slide starts one interval after the one before and all share one cycle; the first
    // lies on top. Its block carries the class slide0, for which no rule is written.
    const qint64 count = slideImages.size();
    const int seconds = TextValues::intValue(interval);
    for (qint64 i = 0; i < count; ++i) {
        const QString image =
            "background-image: url( ../KLSsImages/" + PageText::urlSegment(slideImages[i]) + ");\n";
        if (i == 0) {
            s += ".slideProp {\nposition: absolute;\ntop: 0;\nleft: 0;\nz-index: " +
                 QString::number(count) +
                 ";\ndisplay: flex;\nalign-items: center;\nwidth: 100%;\nheight: 100%;\n"
                 "transform: translateX( " +
                 a.imageWidth + "px );\n" + image + "animation: opaqTransition " +
                 QString::number(product32(count + 1, seconds)) +
                 "s cubic-bezier(0, 0, 0, 0.97) infinite;\n}\n\n";
        } else {
            s += ".slideProp.slide" + QString::number(i) +
                 " {\nz-index: " + QString::number(count - i) + ";\n" + image +
                 "animation-delay: " + QString::number(product32(i, seconds)) + "s;\n}\n\n";
        }
    }
    s += "@keyframes opaqTransition {\n3% { transform: translateX( 0 ); }\n"
         "25% { transform: translateX( 0 ); }\n28% { transform: translateX( -" +
         a.imageWidth + "px ); }\n100% { transform: translateX( -" + a.imageWidth +
         "px ); }\n}\n\n";
    return s;
}

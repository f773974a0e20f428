#include "generators/gallery/cResponsiveDesign.h"

#include <QFileInfo>
#include <algorithm>
#include <limits>

#include "generators/common/CaptionBuilder.h"
#include "generators/common/PageText.h"
#include "imaging/KLImageHandling.h"
#include "presets/SettingsStore.h"
#include "services/cNSColorHandling.h"
#include "services/cNSFileHandling.h"

namespace {

const QString nl = QStringLiteral("\n");

QString photoBlock(const GallerySettings& p, const QString& name, const QString& caption) {
    // Everything taken from a photo is escaped, so a file name or metadata cannot add markup; the
    // links are percent-encoded, so any file name works in a browser.
    const QString safeName = PageText::escapeText(name);
    const QString thumb =
        PageText::urlPath(QStringLiteral("KLimages_s"), name + u'.' + p.image.thumb.format);
    const QString big =
        PageText::urlPath(QStringLiteral("KLimages_b"), name + u'.' + p.image.big.format);
    const QString titleText =
        p.showMetaData ? (p.showFileName ? name + QStringLiteral("; ") : QString()) + caption
                       : name;

    QString s;
    if (!p.gridModel) s += "<div class=\"klOVresponsive\">\n";
    s += "<div class=\"klOVimg\">\n";
    s += "<a href=\"" + big + "\" rel=\"klOVlightbox\" title=\"" +
         PageText::escapeAttribute(titleText) + "\">\n";
    s += "<img src=\"" + thumb + "\" alt=\"" + PageText::escapeAttribute(name) +
         "\" width=\"auto\" height=\"auto\">\n</a>\n";
    if (!p.gridModel) s += "</div>\n";
    if (p.showFileName) s += "<div class=\"klOVphotoname\">" + safeName + "</div>\n";
    if (p.showMetaData)
        s += "<div class=\"klOVdescription\">" + PageText::escapeText(caption) + "</div>\n";
    s += "</div>\n";
    return s;
}

QString logoBlock(const QString& productPage, const QString& closing) {
    return "<div style=\"width:100%;padding:6px;float:left;\">\n"
           "<div style=\"float:left;padding:6px;\"><a href=\"" +
           productPage +
           "\"><img src=\"KLovlightbox/klOrvella.png\" alt=\"klOrvella\" width=\"auto\" "
           "height=\"auto\"></a></div>\n" +
           closing;
}

QString pageText(const GallerySettings& g, int pages, const QString& photos) {
    QString html = PageText::headPrologue();
    html += "<title>" + PageText::escapeText(g.pageTitle) + "</title>\n";
    html += g.gridModel ? QStringLiteral("<!-- Keldra: responsive design -->\n")
                        : QStringLiteral("<!-- Keldra: responsive design - Begin -->\n");
    html +=
        "<link href=\"KLcss/klGScss.css\" rel=\"stylesheet\" type=\"text/css\">\n"
        "<!-- Keldra: lightbox -->\n";
    html += PageText::jQueryLine() + nl;
    html += g.captionScript ? QStringLiteral(
                                  "<script type=\"text/javascript\" "
                                  "src=\"KLovlightbox/jquery02.lightbox.js\"></script>")
                            : QStringLiteral(
                                  "<script type=\"text/javascript\" "
                                  "src=\"KLovlightbox/jquery.lightbox.js\"></script>");
    html += "\n\n<script>\n$(function() {\n$('.klOVimg a').lightbox();\n});\n</script>\n\n";
    if (!g.gridModel) html += "<!-- Keldra: responsive design - End -->\n";
    // The comment names Roboto whatever the family: kept as it always was.
    html += "<!-- Keldra: Roboto, from Google fonts -->\n";
    html += PageText::webFontLink(g.css.fontFamily);
    html +=
        "</head>\n<body>\n<!-- Keldra: responsive design main container - Begin -->\n"
        "<div class=\"KLovTableBased-container\">\n"
        "<!-- Keldra: Background pattern - Begin -->\n<div class=\"klSsPatternBox\">\n";
    html += "<div style=\"width:" + PageText::escapeAttribute(PageText::cssValue(g.gridWidth)) +
            "%;margin: auto;\">" +
            (g.gridModel ? "<!-- Keldra: grid - Begin -->\n"
                         : "<!-- Keldra: responsive design grid - Begin -->\n");
    if (pages != 1) {
        html +=
            "<div id=\"navBar\" class=\"klOVpageNav\" "
            "style=\"width:100%;padding:6px;text-align:left;\">";
        for (int k = 1; k <= pages; ++k) {
            const QString link =
                PageText::urlSegment(cResponsiveDesign::pageFileName(g.baseName, k));
            html += "<a href=\"" + link +
                    (k == 1 ? QStringLiteral("\"> 1 </a>") : "\">" + QString::number(k) + " </a>");
        }
        html += "</div>";
    }
    html += "<div class=\"klOVtitle\">" + g.heading +
            (g.gridModel ? "<br><br></div>\n<div class=\"klOVimages\">\n" : "</div>\n");
    html += photos;
    const QString productPage = g.gridModel ? QStringLiteral("https://www.keldra.com/orvella")
                                            : QStringLiteral("http://www.keldra.com/orvella");
    if (g.gridModel) {
        html += "</div><!-- Keldra: grid - End -->\n" +
                logoBlock(productPage, "</div><!-- Keldra: Background pattern - End -->\n") +
                "</div><!-- Keldra: responsive design main container - End -->\n"
                "</body>\n</html>";
    } else {
        html += logoBlock(productPage, "</div>\n") +
                "</div><!-- Keldra: grid - End -->\n"
                "</div><!-- Keldra: Background pattern - End -->\n"
                "</div><!-- Keldra: responsive design main container - End -->\n"
                "</body>\n</html>";
    }
    return html;
}

// One derivative from the decoded photo: crop, frame, conversion; the scaling is the caller's.
void finishDerivative(KLImageHandling& images, Picture picture, const QString& baseName,
                      const QString& folder, const DerivativeSettings& d, const QString& cropKind,
                      QStringList* failures) {
    if (!cropKind.isEmpty() && d.cropWidth != 0 && d.cropHeight != 0) {
        const Picture cut =
            images.cropped(picture, d.cropWidth, d.cropHeight, cropKind, d.cropPosition);
        if (!cut.isNull())
            picture = cut;  // a failed crop leaves the scaled image, as it always did
    }
    if (d.frameWidth > 0) {
        const Picture framed = images.framed(
            picture, cNSColorHandling::colorFromHexRGB(d.frameColor), quint32(d.frameWidth));
        if (!framed.isNull()) picture = framed;
    }
    bool written = false;
    QString error;
    const SaveAsResult result = KLImageHandling::hSaveAsFileType(
        picture, baseName, d.format, d.compression, folder, &written, &error);
    if (!written) failures->append(result.url.toLocalFile() + QStringLiteral(": ") + error);
}

}  // namespace

void cResponsiveDesign::hPhotoRatioCalc(SettingsStore& settings) {
    const int w = settings.integer("tfSmallCropWidth");
    int h = 0;
    switch (settings.index("pubPhotoRatio")) {
        case 1:
            h = w;
            break;
        case 2:
            h = (w / 3) * 2;
            break;
        case 3:
            h = (w / 2) * 3;
            break;
        case 4:
            h = w / 3;
            break;
        case 5:
            h = (w / 4) * 3;
            break;
        case 6:
            h = (w / 3) * 4;
            break;
        case 7:
            h = (w / 12) * 9;
            break;
        case 8:
            h = (w / 16) * 9;
            break;
        default:
            return;
    }
    settings.setText("tfSmallCropHeight", QString::number(h));
}

void cResponsiveDesign::hPgAddMetaDataValue(SettingsStore& settings) {
    settings.setText("tfPgMetaDataToShow",
                     CaptionBuilder::withItem(settings.text("tfPgMetaDataToShow"),
                                              settings.title("pubPgMetaData")));
}

void cResponsiveDesign::hPgClearMetaDataValue(SettingsStore& settings) {
    settings.setText("tfPgMetaDataToShow", QString());
}

QString cResponsiveDesign::pageBaseName(const QString& fileNameSetting) {
    return fileNameSetting.isEmpty() || fileNameSetting == u" " ? QStringLiteral("myIndex")
                                                                : fileNameSetting;
}

QString cResponsiveDesign::pageFileName(const QString& baseName, int page) {
    return page == 1 ? baseName + ".html" : baseName + QString::number(page) + ".html";
}

int cResponsiveDesign::pageCount(int photos, int perPage) {
    if (perPage <= 0) return 0;
    // An exact multiple of the page size gives no page at all; kept as it has always computed.
    const double real = double(photos) / double(perPage);
    return real > double(photos / perPage) ? int(real + 1) : 0;
}

QStringList cResponsiveDesign::widthList(int columns) {
    const int p = columns == 0 ? 0 : 100 / columns;
    const float w1 = float(p - 1);
    const float first = w1 < 24.99999f ? w1 : 24.99999f;
    const float x = w1 < 24.99999f ? 2 * w1 : 49.99998f;
    const float second = x < 49.99999f ? x : 49.99999f;
    const float y = x < 49.99999f ? 2.5f * x : 124.99997f;
    const float third = y < 49.99999f ? y : 49.99999f;
    const float z = y < 49.99999f ? 3 * y : 149.99997f;
    const float fourth = z < 49.99999f ? z : 49.99999f;
    QStringList list;
    for (const float v : {first, second, third, fourth})
        list.append(QString::asprintf("%f", double(v)).replace(u',', u'.'));
    list.append(QStringLiteral("100"));
    return list;
}

QString cResponsiveDesign::fileNameWeight(const QString& fileNameTitle,
                                          const QString& mappedTitleWeight) {
    if (fileNameTitle == u"Light") return QStringLiteral("300");
    if (fileNameTitle == u"Regular") return QStringLiteral("400");
    if (fileNameTitle == u"Medium") return QStringLiteral("500");
    if (mappedTitleWeight == u"Bold") return QStringLiteral("700");
    return QStringLiteral("900");
}

QString cResponsiveDesign::indexRedirectText(const QString& baseName) {
    // The literal "/n" sequences, the second head and the repeated meta tags are kept on purpose.
    return PageText::headPrologue() +
           "<head>/n<meta http-equiv=\"Content-Type\" content=\"text/html; charset=UTF-8\" />/n"
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1.0\" />/n"
           "<title>my first responsive designed picture gallery</title>/n"
           "<script>window.location.href = \"" +
           baseName + ".html\"</script>\n</head>\n<body></body>";
}

void cResponsiveDesign::settingEdited(SettingsStore& settings, const QString& name) {
    if (name == u"tfSmallCropWidth" || name == u"tfSmallCropHeight" || name == u"pubPhotoRatio")
        hPhotoRatioCalc(settings);
}

const QStringList& cResponsiveDesign::folders() {
    static const QStringList list = {"KLimages_b/",   "KLimages_s/",   "KLcss/",
                                     "KLovPatterns/", "KLovlightbox/", QString(kLargeFolder)};
    return list;
}

GallerySettings cResponsiveDesign::readSettings(const SettingsStore& s,
                                                const QString& destination) {
    GallerySettings g;
    g.gridModel = s.index("pubPhotoGalleryModel") == 2;
    g.baseName = pageBaseName(PageText::pageName(s.text("tfHTMLfileName")));
    g.pageTitle = s.text("tfPageTitle");
    g.heading = s.text("tvTitle");
    g.gridWidth = s.text("tfGridWidth");
    g.columns = s.integer("ifNumberOfColumns");
    g.rows = s.integer("ifNumberOfRows");
    g.captionScript = s.integer("cbCaptionStatus") == 1;
    g.showFileName = s.integer("btShowFileName") == 1;
    g.showMetaData = s.isOn("cbPgShowMetaData");
    g.captionItems = s.text("tfPgMetaDataToShow");
    g.captionSeparator = s.text("tfPgMetaDataValueSep");
    // The source comes from the "Rd" name and the target name from the other: both are one setting.
    g.patternFileName = QFileInfo(s.text("tfTbPatternPath")).fileName();
    if (s.integer("cbTbRdShowPatternImage") == 1) g.patternSource = s.text("tfTbRdPatternPath");

    GalleryImageSettings& image = g.image;
    image.destination = destination;
    image.thumbAction = s.index("pubThumbAction");
    image.thumb.cropWidth = s.integer("tfSmallCropWidth");
    image.thumb.cropHeight = s.integer("tfSmallCropHeight");
    image.thumb.size = std::max(image.thumb.cropWidth, image.thumb.cropHeight);
    image.thumb.cropPosition = s.integer("scImageCropThumbPos");
    image.thumb.shiftX = s.integer("tfCropThumbXOffset");
    image.thumb.shiftY = s.integer("tfCropThumbYOffset");
    image.thumb.frameColor = s.text("cwNSColorWellObjBsImage");
    image.thumb.frameWidth = s.integer("tfSmallFramingThickness");
    image.thumb.format = s.title("pbImageFormat");
    image.thumb.compression = s.title("pbJPGCompression");
    image.big.cropWidth = s.integer("tfBigCropWidth");
    image.big.cropHeight = s.integer("tfBigCropHeight");
    image.big.size = std::max(image.big.cropWidth, image.big.cropHeight);
    image.big.cropPosition = s.integer("scImageCropBigPos");
    image.big.shiftX = s.integer("tfCropBigXOffset");
    image.big.shiftY = s.integer("tfCropBigYOffset");
    image.big.frameColor = s.text("cwNSColorWellObjBbImage");
    image.big.frameWidth = s.integer("tfBigFramingThickness");
    image.big.format = s.title("pbBIGImageFormat");
    image.big.compression = s.title("pbBIGJPGCompression");

    GalleryCssArgs& css = g.css;
    css.backgroundColor = PageText::hashColor(s.text("tfHTMLbackgroundColor"));
    css.headingText = g.heading;
    css.fileNameAlign = PageText::alignment(s.integer("scFilenameTxtAlign"));
    css.headingWeight = PageText::weight(s.title("pbTitleFontWeight"));
    css.fileNameWeight = fileNameWeight(s.title("pbFileNameFontWeight"), css.headingWeight);
    css.captionAlign = PageText::alignment(s.integer("scEXIFuserCommentTxtAlgin"));
    css.captionWeight = PageText::weight(s.title("pbExifUserCommentFontWeight"));
    css.headingFontSize = s.title("pbTitleFontSize");
    css.captionFontSize = s.title("pbExifUserCommentFontSize");
    css.headingColor = PageText::hashColor(s.text("tfHTMLTitleColor"));
    css.destination = destination;
    css.photoNameColor = PageText::hashColor(s.text("tfHTMLPhotoNameColor"));
    css.fileNameFontSize = s.title("pbFileNameFontSize");
    css.captionColor = PageText::hashColor(s.text("tfHTMLUserExifCommentColor"));
    css.headingAlign = PageText::alignment(s.integer("scTitleTxtAlign"));
    css.cellBackgroundColor = PageText::hashColor(s.text("tfHTMLbackgroundColorCell"));
    css.fontFamily = s.title("pbFontFamily");
    css.widthList = widthList(g.columns);
    css.thumbnailBorderThickness = PageText::cssValue(s.text("tfThumbnailBorderThickness"));
    css.thumbnailColor = s.text("tfHTMLThumbnailColor");
    css.thumbnailBorderRadius = PageText::cssValue(s.text("tfThumbnailBorderRadius"));
    css.patternOn = s.integer("cbTbShowPatternImage");
    css.patternFileName = PageText::urlSegment(g.patternFileName);
    css.patternScale = PageText::cssValue(s.text("tfTbPatternScale"));
    css.patternOpacity = s.title("pubTbPatternOpacity");
    css.thumbnailShadowThickness = QString::number(s.integer("tfThumbnailShadowThickness"));
    css.thumbnailShadowXOffset = QString::number(s.integer("tfThumbnailShadowXOffset"));
    css.thumbnailShadowYOffset = QString::number(s.integer("tfThumbnailShadowYOffset"));
    css.thumbnailShadowColor = s.text("tfThumbnailShadowColorValue");
    css.boxColor = s.text("tfBoxColorValue");
    css.boxRadius = QString::number(s.integer("tfBoxRadius"));
    css.boxThickness = QString::number(s.integer("tfBoxThickness"));
    css.boxShadowThickness = QString::number(s.integer("tfBoxShadowThickness"));
    css.boxShadowXOffset = QString::number(s.integer("tfBoxShadowXOffset"));
    css.boxShadowYOffset = QString::number(s.integer("tfBoxShadowYOffset"));
    css.lightboxShadowColor = s.text("tfLightBoxShadowColor");
    css.magnifyOnHover = s.integer("cbMagnifyHooverEffectState");
    css.thumbnailCropWidth = image.thumb.cropWidth;
    css.thumbnailCropHeight = image.thumb.cropHeight;
    css.lightboxBackgroundColor = CssRgb::fromHex(s.text("ascNSColorWellObjRDLightboxBgColor"));
    css.lightboxBackgroundOpacity =
        QString::number(s.integer("sliderLightboxRDBgColorOpacity") / 100.0);
    css.thumbnailAction = image.thumbAction;
    return g;
}

QList<PageFile> cResponsiveDesign::pageTexts(const GallerySettings& g,
                                             const QList<PhotoEntry>& photos,
                                             const QStringList& captions) {
    QList<PageFile> files = {{QStringLiteral("KLcss/klGScss.css"),
                              g.gridModel ? GalleryCss::hCreateCssGridMod2(g.css, g.columns)
                                          : GalleryCss::hCreateCss(g.css),
                              false}};
    const int count = int(photos.size());
    const int perPage =
        int(std::clamp<qint64>(qint64(g.columns) * g.rows, 1, std::numeric_limits<int>::max()));
    const int pages = pageCount(count, perPage);
    int next = 0;
    for (int z = 1; z <= pages; ++z) {
        QString blocks;
        for (int onPage = 0; onPage < perPage && next < count; ++onPage, ++next) {
            const QString name = QFileInfo(photos[next].url.toLocalFile()).completeBaseName();
            blocks += photoBlock(g, name, captions.value(next));
        }
        files.append({pageFileName(g.baseName, z), pageText(g, pages, blocks)});
    }
    // Written after the pages, so a page base name of "index" is replaced by it, as it always was.
    files.append({QStringLiteral("index.html"), indexRedirectText(g.baseName)});
    return files;
}

QStringList cResponsiveDesign::hScaleImageMaxValueHTML(const QString& photoPath,
                                                       const GalleryImageSettings& im) {
    QStringList failures;
    const QString base = QFileInfo(photoPath).completeBaseName();
    const QString thumbFolder = im.destination + "KLimages_s/";
    QString error;
    int width = 0;
    int height = 0;
    if (!KLImageHandling::isSupportedSource(photoPath, &error) ||
        !PhotoDecoder::uprightSize(photoPath, &width, &height, &error))
        return {photoPath + QStringLiteral(": ") + error};

    // The thumbnail of the scale-and-crop action is a plain crop of the photo to the crop box.
    const bool plainCrop = im.thumbAction == 0 && im.thumb.cropWidth > 0 && im.thumb.cropHeight > 0;
    const DerivativeSettings large = largeBig(im.big, width, height);
    // Decoded once, shrunk to what the largest of the derivatives needs.
    double scale = 0;
    auto need = [&](int size, int mode) {
        KLImageHandling probe;
        if (probe.computeTargetSize(width, height, size, mode))
            scale =
                std::max({scale, double(probe.newImgW) / width, double(probe.newImgH) / height});
    };
    if (plainCrop) {
        scale = std::max(
            {scale, double(im.thumb.cropWidth) / width, double(im.thumb.cropHeight) / height});
    } else if (im.thumbAction != 0) {
        need(im.thumb.cropWidth, 6);
        need(im.thumb.cropHeight, 7);
    } else {
        need(im.thumb.size, 4);
    }
    need(large.size, 5);
    const Picture photo =
        KLImageHandling::hWorkingCopy(PhotoDecoder::decode(photoPath, scale, &error));
    if (photo.isNull()) return {photoPath + QStringLiteral(": ") + error};

    KLImageHandling images(
        CropShifts{im.thumb.shiftX, im.thumb.shiftY, im.big.shiftX, im.big.shiftY});
    Picture thumb;
    if (plainCrop) {
        thumb = images.covered(photo, im.thumb.cropWidth, im.thumb.cropHeight,
                               im.thumb.cropPosition, im.thumb.shiftX, im.thumb.shiftY);
    } else if (im.thumbAction != 0) {
        // Both scale the photo itself, so the second result replaces the first: kept on purpose.
        const Picture byWidth = images.resized(photo, im.thumb.cropWidth, 6);
        const Picture byHeight = images.resized(photo, im.thumb.cropHeight, 7);
        thumb = byHeight.isNull() ? byWidth : byHeight;
    } else {
        thumb = images.resized(photo, im.thumb.size, 4);
    }
    if (thumb.isNull())
        failures.append(thumbFolder + base + u'.' + im.thumb.format + ": " + images.lastError);
    else
        finishDerivative(images, thumb, base, thumbFolder, im.thumb, QString(), &failures);

    // The big image, and the larger one the lightbox shows where the screen has the pixels.
    for (const auto& [folder, d] : {std::pair{QStringLiteral("KLimages_b/"), im.big},
                                    std::pair{QString(kLargeFolder), large}}) {
        KLImageHandling bigImages(CropShifts{0, 0, d.shiftX, d.shiftY});
        const Picture big = bigImages.resized(photo, d.size, 5);
        if (big.isNull())
            failures.append(im.destination + folder + base + u'.' + d.format + ": " +
                            bigImages.lastError);
        else
            finishDerivative(bigImages, big, base, im.destination + folder, d,
                             QStringLiteral("myCropBig"), &failures);
    }
    return failures;
}

DerivativeSettings cResponsiveDesign::largeBig(const DerivativeSettings& big, int width,
                                               int height) {
    // Twice the big image, up to the photo's own size; never smaller than the big image.
    const double factor =
        big.size > 0 ? std::clamp(double(std::max(width, height)) / big.size, 1.0, 2.0) : 1.0;
    auto times = [factor](int v) { return int(std::lround(v * factor)); };
    DerivativeSettings large = big;
    large.size = times(big.size);
    large.cropWidth = times(big.cropWidth);
    large.cropHeight = times(big.cropHeight);
    large.shiftX = times(big.shiftX);
    large.shiftY = times(big.shiftY);
    large.frameWidth = times(big.frameWidth);
    return large;
}

RunResult cResponsiveDesign::hCreateResponsiveHTML(const QList<PhotoEntry>& photos,
                                                   const SettingsStore& snapshot, UserInterface& ui,
                                                   const RunOptions& options) {
    return runPlanned(&plan, photos, snapshot, ui, options);
}

SitePlan cResponsiveDesign::plan(const SettingsStore& snapshot, const QList<PhotoEntry>& photos,
                                 const RunOptions& options) {
    const QString& destination = options.destination;
    SettingsStore s = snapshot;
    hPhotoRatioCalc(s);
    const GallerySettings g = readSettings(s, destination);
    SitePlan plan{
        .kind = QStringLiteral("gallery"),
        .firstPage = pageFileName(g.baseName, 1),
        .captions = {g.showMetaData, g.captionItems, g.captionSeparator,
                     CaptionBuilder::FileName::WithExtension},
        .pages = [g](const QList<PhotoEntry>& shown,
                     const QStringList& captions) { return pageTexts(g, shown, captions); },
        .support = {folders(), QStringLiteral("KLovlightbox/"), g.patternSource,
                    "KLovPatterns/" + g.patternFileName},
        .images =
            [g](const QString& photoPath) {
                const QString base = QFileInfo(photoPath).completeBaseName();
                return PhotoImages{base,
                                   {"KLimages_s/" + base + u'.' + g.image.thumb.format,
                                    "KLimages_b/" + base + u'.' + g.image.big.format,
                                    QString(kLargeFolder) + base + u'.' + g.image.big.format}};
            },
        .imageSettings = {QString::number(g.image.thumbAction), QStringLiteral("plain crop, 2x")},
        .makeImages =
            [image = g.image](const QString& photoPath) {
                return hScaleImageMaxValueHTML(photoPath, image);
            },
        // Kept in 8 bits, so 0 from 99 photos on.
        .photoStep = [](qsizetype count) { return double(quint8(98 / count)); },
    };
    for (const DerivativeSettings& d : {g.image.thumb, g.image.big})
        plan.imageSettings << QString::number(d.size) << QString::number(d.cropWidth)
                           << QString::number(d.cropHeight) << QString::number(d.cropPosition)
                           << QString::number(d.shiftX) << QString::number(d.shiftY) << d.frameColor
                           << QString::number(d.frameWidth) << d.format << d.compression;

    // Refusals: nothing may be written outside the output folder.
    if (photos.isEmpty())
        plan.refusal = {QStringLiteral("Sorry, you forgot to select photos."),
                        QStringLiteral("Please choose the photos.")};
    else if (g.columns <= 0 || g.rows <= 0)
        plan.refusal = {
            QStringLiteral("Sorry, the page layout is not possible."),
            QStringLiteral("Columns and rows must be at least 1 (columns: %1, rows: %2).")
                .arg(g.columns)
                .arg(g.rows)};
    else if (!cNSFileHandling::isPlainFileName(g.baseName))
        plan.refusal = {QStringLiteral("Sorry, the page name is not possible."),
                        QStringLiteral("The page name \"%1\" must be a plain file name, without "
                                       "\"/\" and not \"..\".")
                            .arg(g.baseName)};
    if (plan.refusal) return plan;

    if (g.image.big.size <= g.image.thumb.size)
        plan.warnings.append({QStringLiteral("Sorry, some wrong properties"),
                              QStringLiteral("\r- Lightbox images are smaller than your "
                                             "thumbnails. (Thumbnail size: %1)")
                                  .arg(g.image.thumb.size)});
    const qint64 perPage = qint64(g.columns) * g.rows;
    if (photos.size() % perPage == 0)  // the page count of an exact multiple is 0
        plan.warnings.append(
            {QStringLiteral("No page will be written"),
             QStringLiteral("%1 photos fill exactly %2 of %3 photos (%4 columns x %5 "
                            "rows); an exact multiple gives no page. Change the rows or the "
                            "columns, or the number of photos.")
                 .arg(photos.size())
                 .arg(photos.size() == perPage
                          ? QStringLiteral("1 page")
                          : QString::number(photos.size() / perPage) + QStringLiteral(" pages"))
                 .arg(perPage)
                 .arg(g.columns)
                 .arg(g.rows)});
    return plan;
}

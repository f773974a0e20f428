#include "generators/grid/cResponsiveGrid.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>
#include <tuple>

#include "generators/common/CaptionBuilder.h"
#include "generators/common/PageText.h"
#include "imaging/KLImageHandling.h"
#include "presets/SettingsStore.h"

namespace {

// Every cell image is 960 pixels wide, whatever the settings, cut to the 4:3 shape of the
// stylesheet's cells (tracks three quarters as high as wide), so that no cell stretches its photo
// and the rows keep that shape. The lightbox shows the photo whole: a big image and, on screens
// with the pixels for it, a larger one.
constexpr int kCellWidth = 960;
constexpr int kCellHeight = 720;
constexpr int kBigSide = 1200;
constexpr int kLargeSide = 2400;
const QString kImages = QStringLiteral("KLovImages");
const QString kBigImages = QStringLiteral("KLovImages_b");
const QString kLargeImages = QStringLiteral("KLovImages_b2x");
const QString kStylesheet = QStringLiteral("KLResponsiveGridCss/klovlResponsiveGrid.css");

// One lightbox script block for the anchors of `cellClass`.
QString lightboxCall(const QString& cellClass) {
    return "<script>\n$(function() {\n$('." + cellClass + " a').lightbox();\n});\n</script>\n";
}

QString cellText(const PhotoEntry& photo, const QString& caption) {
    // The link is percent-encoded, so any file name works in a browser; the caption comes from
    // the photo's file name and metadata, so it is escaped and cannot add markup.
    const QString image =
        PageText::urlPath(kImages, cResponsiveGrid::outputName(photo.url.toLocalFile()));
    return "<div class=\"" + cResponsiveGrid::cellClass(photo) + "\"> \n<a href=\"" + image +
           "\" rel=\"klOVlightbox\" title=\"" + PageText::escapeAttribute(caption) +
           "\"> <img src=\"" + image + "\" style=\"width:100%\">\n</a>\n</div>\n\n";
}

QString pageText(const GridSettings& g, const QString& cells) {
    QString html = PageText::headPrologue();
    if (g.showTitle) html += "<title>" + PageText::escapeText(g.title) + "</title>\n";
    html +=
        "<!-- Keldra: Responsive grid creation - Begin -->\n"
        "<link href=\"KLResponsiveGridCss/klovlResponsiveGrid.css\" rel=\"stylesheet\" "
        "type=\"text/css\">\n"
        "<!-- Keldra: Responsive grid creation - End -->\n";
    html += PageText::webFontLink(g.css.fontFamily);
    html +=
        "<!-- Keldra: lightbox - Begin -->\n"
        "<script type=\"text/javascript\" "
        "src=\"https://ajax.googleapis.com/ajax/libs/jquery/1.9.1/jquery.min.js\"></script>"
        "<script type=\"text/javascript\" src=\"KLovlightbox/jquery.lightbox.js\">\n"
        "</script>\n";
    html +=
        lightboxCall(QStringLiteral("klovlImage")) + lightboxCall(QStringLiteral("klovlImage4"));
    html += "<!-- Keldra: lightbox - End -->\n</head>\n<body>\n";
    // The pattern box is always there; only the stylesheet shows the pattern or not.
    html += "<!-- Keldra: Pattern background: Begin -->\n<div class=\"klSsPatternBox\">\n";
    html +=
        "<!-- Keldra: Responsive Grid container: Begin -->\n"
        "<div class=\"klovlResponsiveGrid-container\">\n";
    if (g.showDescription)
        html += "<div class=\"klovlRgDescription\">" + g.description + "</div>\n";
    html += "<!-- Keldra: Responsive photo grid - begins -->\n<div class=\"klovlGrid\"> \n";
    html += cells;
    html +=
        "</div>\n\n</div>\n\n<!-- Keldra: Responsive grid container: End-->\n</div>\n"
        "<!-- Keldra: Pattern background: End -->\n<br>\n</body>\n</html>\n";
    return html;
}

bool isUsableName(const QString& name) {
    return !name.trimmed().isEmpty() && !name.contains(u'/') && !name.contains(u'\\') &&
           !name.contains(QStringLiteral(".."));
}

}  // namespace

void cResponsiveGrid::hRgAddMetaDataValue(SettingsStore& settings) {
    settings.setText("tfRgMetaDataToShow",
                     CaptionBuilder::withItem(settings.text("tfRgMetaDataToShow"),
                                              settings.title("pubRgMetaData")));
}

void cResponsiveGrid::hRgClearMetaDataValue(SettingsStore& settings) {
    settings.setText("tfRgMetaDataToShow", QString());
}

const QStringList& cResponsiveGrid::folders() {
    static const QStringList list = {"KLovImages/",          "KLovPatterns/", "KLovlightbox/",
                                     "KLResponsiveGridCss/", "KLovImages_b/", "KLovImages_b2x/"};
    return list;
}

int cResponsiveGrid::columnCount(const QString& text) {
    static const QRegularExpression whole(QStringLiteral("^\\s*\\+?(\\d+)\\s*$"));
    const QRegularExpressionMatch match = whole.match(text);
    if (!match.hasMatch()) return 0;
    bool ok = false;
    const qlonglong value = match.captured(1).toLongLong(&ok);
    // More columns than pixels in the 1200-pixel container would give tracks of no width.
    return ok && value >= 1 && value <= 1200 ? int(value) : 0;
}

QString cResponsiveGrid::cellClass(const PhotoEntry& photo) {
    if (photo.highlight != 1) return QStringLiteral("klovlImage");
    return photo.orientation == u"V" ? QStringLiteral("klovlImage klovlImageVertical")
                                     : QStringLiteral("klovlImage4");
}

QString cResponsiveGrid::outputName(const QString& photoPath) {
    return QFileInfo(photoPath).completeBaseName() + QStringLiteral(".jpeg");
}

GridSettings cResponsiveGrid::readSettings(const SettingsStore& s, const QString& destination) {
    GridSettings g;
    g.pageName = PageText::pageName(s.text("tfRgPageName"));
    g.showTitle = s.isOn("cbRgWebPageTitle");
    g.title = s.text("tfRgWebPageTitle");
    g.showDescription = s.isOn("cbRgDescription");
    g.description = s.text("tfRgDescription");
    g.columnsText = s.text("tfRGMaxColumns");
    g.columns = columnCount(g.columnsText);
    g.showCaptions = s.isOn("cbRgShowMetaData");
    g.captionItems = s.text("tfRgMetaDataToShow");
    g.captionSeparator = s.text("tfRgMetaDataValueSep");
    const QString patternPath = s.text("tfRgPatternPath");
    g.patternFileName = QFileInfo(patternPath).fileName();
    if (s.isOn("cbRgShowPatternImage") && !patternPath.isEmpty()) g.patternSource = patternPath;

    GridCssArgs& css = g.css;
    css.destination = destination;
    css.fontFamily = s.title("pubRgHTMLDescriptionFontFamily");
    css.descriptionFontSize = s.title("pubRgHTMLDescriptionFontSize");
    css.descriptionWeight = PageText::weight(s.title("pubRgHTMLDescriptionFontStyle"));
    css.descriptionColor = PageText::hashColor(s.text("tfRgHTMLDescriptionFontColor"));
    css.descriptionAlign = PageText::alignment(s.integer("scRgHTMLDescriptionTxtAlign"));
    css.captionWeight = PageText::weight(s.title("pubRgMetaDataWeight"));
    css.captionFontSize = s.title("pubRgMetaDataSize");
    css.captionAlign = PageText::alignment(s.integer("scRgMetaDataTxtAlign"));
    css.captionColor = PageText::hashColor(s.text("tfRgMetaDataFontColor"));
    css.backgroundColor = PageText::hashColor(s.text("tfRGBackgroundColor"));
    css.lightboxBackground = QString::number(s.index("pubRespLightboxBg"));
    css.patternOn = s.integer("cbRgShowPatternImage");
    css.patternFileName = g.patternFileName;
    css.patternScale = s.text("tfRgPatternScale");
    css.patternOpacity = s.title("pubRgPatternOpacity");
    const int columnWidth = GridCss::columnWidth(g.columns);
    css.columnWidth = QString::number(columnWidth);
    css.rowHeight = QString::number(GridCss::rowHeight(columnWidth));
    css.magnifyOnHover = s.integer("cbMagnifyHooverEffect");
    css.lightboxBackgroundColor = CssRgb::fromHex(s.text("ascNSColorWellObjRGLightboxBgColor"));
    css.lightboxBackgroundOpacity =
        GridCss::opacityText(s.integer("sliderLightboxRGBgColorOpacity"));
    return g;
}

QList<PageFile> cResponsiveGrid::pageTexts(const GridSettings& g, const QList<PhotoEntry>& photos,
                                           const QStringList& captions) {
    QString cells;
    for (int i = 0; i < photos.size(); ++i) cells += cellText(photos[i], captions.value(i));
    return {{kStylesheet, GridCss::hCreateResponsiveGridCss(g.css), false},
            {g.pageName + QStringLiteral(".html"), pageText(g, cells)}};
}

QStringList cResponsiveGrid::hMakeGridImage(const QString& photoPath, const QString& destination,
                                            const QString& outputName) {
    QString error;
    int width = 0;
    int height = 0;
    if (!KLImageHandling::isSupportedSource(photoPath, &error) ||
        !PhotoDecoder::uprightSize(photoPath, &width, &height, &error))
        return {photoPath + QStringLiteral(": ") + error};
    // Decoded once, as large as the largest image needs.
    const double scale = std::max({double(kCellWidth) / width, double(kCellHeight) / height,
                                   double(kLargeSide) / std::max(width, height)});
    const Picture photo = PhotoDecoder::decode(photoPath, std::min(scale, 1.0), &error);
    if (photo.isNull()) return {photoPath + QStringLiteral(": ") + error};
    QStringList failures;
    KLImageHandling images;
    for (const auto& [folder, cell, side] : {std::tuple{kImages, true, 0},
                                             {kBigImages, false, kBigSide},
                                             {kLargeImages, false, kLargeSide}}) {
        const QString output = destination + folder + u'/' + outputName;
        const Picture image =
            cell ? images.covered(photo, kCellWidth, kCellHeight, 4) : images.fitted(photo, side);
        if (image.isNull() ||
            images.hSaveToNewImageFile(output, QStringLiteral("public.jpeg"), image) != u"OK")
            failures.append(output + QStringLiteral(": ") + images.lastError);
    }
    return failures;
}

RunResult cResponsiveGrid::hCreateResponsiveGrid(const QList<PhotoEntry>& photos,
                                                 const SettingsStore& snapshot, UserInterface& ui,
                                                 const RunOptions& options) {
    return runPlanned(&plan, photos, snapshot, ui, options);
}

SitePlan cResponsiveGrid::plan(const SettingsStore& snapshot, const QList<PhotoEntry>& photos,
                               const RunOptions& options) {
    const QString& destination = options.destination;
    const GridSettings g = readSettings(snapshot, destination);
    SitePlan plan{
        .kind = QStringLiteral("grid"),
        .firstPage = g.pageName + QStringLiteral(".html"),
        .captions = {g.showCaptions, g.captionItems, g.captionSeparator,
                     CaptionBuilder::FileName::BaseName},
        .pages = [g](const QList<PhotoEntry>& shown,
                     const QStringList& captions) { return pageTexts(g, shown, captions); },
        .support = {folders(), QStringLiteral("KLovlightbox/"), g.patternSource,
                    "KLovPatterns/" + g.patternFileName},
        .images =
            [](const QString& photoPath) {
                const QString name = outputName(photoPath);
                return PhotoImages{
                    name,
                    {kImages + u'/' + name, kBigImages + u'/' + name, kLargeImages + u'/' + name}};
            },
        .imageSettings = {QStringLiteral("%1x%2 %3 %4")
                              .arg(kCellWidth)
                              .arg(kCellHeight)
                              .arg(kBigSide)
                              .arg(kLargeSide)},
        .makeImages =
            [destination](const QString& photoPath) {
                return hMakeGridImage(photoPath, destination, outputName(photoPath));
            },
    };
    if (photos.isEmpty())
        plan.refusal = {QStringLiteral("Sorry, you forgot to select photos."),
                        QStringLiteral("Please choose the photos.")};
    else if (g.columns == 0)
        plan.refusal = {QStringLiteral("Sorry, the grid layout is not possible."),
                        QStringLiteral("The maximum number of columns must be a whole number "
                                       "from 1 to 1200 (now: \"%1\").")
                            .arg(g.columnsText)};
    else if (!isUsableName(g.pageName))
        plan.refusal = {QStringLiteral("Sorry, the page name is not possible."),
                        QStringLiteral("Please give the page a name without \"/\", \"\\\" or "
                                       "\"..\" (now: \"%1\").")
                            .arg(g.pageName)};
    return plan;
}

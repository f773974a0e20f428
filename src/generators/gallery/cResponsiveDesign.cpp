#include "generators/gallery/cResponsiveDesign.h"

#include <QColor>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QThread>
#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <exception>
#include <limits>
#include <mutex>
#include <thread>
#include <vector>

#include "generators/gallery/cCssCreate.h"
#include "imaging/KLImageHandling.h"
#include "metadata/mMeta.h"
#include "presets/SettingsStore.h"
#include "services/Log.h"
#include "services/UserInterface.h"
#include "services/cNSColorHandling.h"
#include "services/cNSFileHandling.h"
#include "services/cToolBox.h"

namespace {

const QString nl = QStringLiteral("\n");

const QString kJQuery = QStringLiteral(
    "<script src=\"https://ajax.googleapis.com/ajax/libs/jquery/1.9.1/jquery.min.js\"></script>");

// The head that opens every gallery page and index.html.
QString headPrologue() {
    return QStringLiteral(
        "<!DOCTYPE html PUBLIC \"-//W3C//DTD XHTML 1.0 Transitional//EN\" "
        "\"http://www.w3.org/TR/xhtml1/DTD/xhtml1-transitional.dtd\">\n"
        "<html xmlns=\"http://www.w3.org/1999/xhtml\">\n"
        "<head>\n"
        "<meta http-equiv=\"Content-Type\" content=\"text/html; charset=UTF-8\" />\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1.0\" />\n");
}

const QStringList& supportFiles() {
    static const QStringList files = {"close.gif",   "loading.gif",        "klOrvella.png",
                                      "overlay.png", "jquery.lightbox.js", "jquery02.lightbox.js",
                                      "next.png",    "close.png",          "previous.png"};
    return files;
}

const QStringList& iptcItems() {
    static const QStringList items = {
        "IPTC Creator Title",  "IPTC Description",  "IPTC Keyword",       "IPTC City",
        "IPTC Caption Writer", "IPTC Copyrights",   "IPTC Country",       "IPTC Credits",
        "IPTC Headline",       "IPTC Subject Code", "IPTC State Province"};
    return items;
}

// What one page needs besides the photos.
struct PageSettings {
    bool gridModel = false;
    QString baseName;
    QString pageTitle;
    QString heading;
    QString gridWidth;
    bool captionScript = false;
    bool showFileName = false;
    bool showMetaData = false;
    QString thumbFormat;
    QString bigFormat;
    QString fontLink;
};

QString photoBlock(const PageSettings& p, const QString& name, const QString& caption) {
    // Everything taken from a photo is escaped, so a file name or metadata cannot add markup.
    const QString safeName = cResponsiveDesign::htmlEscaped(name);
    const QString thumb = safeName + "." + p.thumbFormat;
    const QString big = safeName + "." + p.bigFormat;
    QString title;
    if (p.showMetaData)
        title = (p.showFileName ? safeName + "; " : QString()) +
                cResponsiveDesign::htmlEscaped(caption);
    else
        title = safeName;

    QString s;
    if (!p.gridModel) s += "<div class=\"klOVresponsive\">\n";
    s += "<div class=\"klOVimg\">\n";
    s += "<a href=\"KLimages_b/" + big + "\" rel=\"klOVlightbox\" title=\"" + title + "\">\n";
    s += "<img src=\"KLimages_s/" + thumb + "\" alt=\"" + safeName +
         "\" width=\"auto\" height=\"auto\">\n</a>\n";
    if (!p.gridModel) s += "</div>\n";
    if (p.showFileName) s += "<div class=\"klOVphotoname\">" + safeName + "</div>\n";
    if (p.showMetaData)
        s += "<div class=\"klOVdescription\">" + cResponsiveDesign::htmlEscaped(caption) +
             "</div>\n";
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

}  // namespace

QString cResponsiveDesign::htmlEscaped(const QString& text) {
    return text.toHtmlEscaped().replace(u'\'', QStringLiteral("&#39;"));
}

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
    const QString item = settings.title("pubPgMetaData");
    const QString field = settings.text("tfPgMetaDataToShow");
    settings.setText("tfPgMetaDataToShow", field.isEmpty() ? item : field + ";" + item);
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

QString cResponsiveDesign::weight(const QString& title) {
    if (title == u"Light") return QStringLiteral("300");
    if (title == u"Regular") return QStringLiteral("400");
    if (title == u"Medium") return QStringLiteral("500");
    if (title == u"Bold") return QStringLiteral("700");
    return QStringLiteral("900");
}

QString cResponsiveDesign::fileNameWeight(const QString& fileNameTitle,
                                          const QString& mappedTitleWeight) {
    if (fileNameTitle == u"Light") return QStringLiteral("300");
    if (fileNameTitle == u"Regular") return QStringLiteral("400");
    if (fileNameTitle == u"Medium") return QStringLiteral("500");
    if (mappedTitleWeight == u"Bold") return QStringLiteral("700");
    return QStringLiteral("900");
}

QString cResponsiveDesign::alignment(int segment) {
    if (segment == 0) return QStringLiteral("left");
    if (segment == 1) return QStringLiteral("center");
    return QStringLiteral("right");
}

QString cResponsiveDesign::webFontLink(const QString& family) {
    static const QStringList known = {"Catamaran", "Exo",    "Exo 2", "Kanit",  "Libre Franklin",
                                      "Raleway",   "Roboto", "Rubik", "Taviraj"};
    const QString name = known.contains(family) ? family : QStringLiteral("Trirong");
    return "<link href=\"https://fonts.googleapis.com/css?family=" +
           QString(name).replace(u' ', u'+') + ":300,400,500,700,900\" rel=\"stylesheet\">\n";
}

QString cResponsiveDesign::caption(const PhotoEntry& photo, const SettingsStore& settings,
                                   mMeta& meta) {
    if (!settings.isOn("cbPgShowMetaData")) return {};
    const QString path = photo.url.toLocalFile();
    const QString separator = settings.text("tfPgMetaDataValueSep");
    QString caption;
    for (const QString& item : settings.text("tfPgMetaDataToShow").split(u';')) {
        QString value;
        if (item == u"Show Filename")
            value = QFileInfo(path).fileName();
        else if (item == u"EXIF User Comment")
            value = photo.description;
        else if (item == u"EXIF Creation Date")
            value = meta.hGetExifUc(path, item);
        else if (iptcItems().contains(item))
            value = meta.hGetSomeIPTC(path, item);
        else
            continue;
        if (value.isEmpty()) continue;
        caption = caption.isEmpty() ? value : caption + separator + value;
    }
    return caption;
}

void cResponsiveDesign::hCreateFolderStructure(const QString& destination,
                                               const QString& patternFileName,
                                               const SettingsStore& settings) {
    const cNSFileHandling files;
    for (const char* folder :
         {"KLimages_b/", "KLimages_s/", "KLcss/", "KLovPatterns/", "KLovlightbox/"}) {
        files.hCreateDirectory(destination + folder);
        files.hAddIconToFile(destination + folder, QStringLiteral("klOrvella_folderIcon2"));
    }
    // QFile::copy never overwrites: support files of an earlier run are kept, not refreshed.
    for (const QString& name : supportFiles()) {
        const QString target = destination + "KLovlightbox/" + name;
        if (QFile::copy(":/lightbox/" + name, target))
            QFile::setPermissions(target, QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                              QFileDevice::ReadGroup | QFileDevice::ReadOther);
    }
    // The source comes from the "Rd" name and the target name from the other: both are one setting.
    const QString patternPath = settings.text("tfTbRdPatternPath");
    if (settings.integer("cbTbRdShowPatternImage") == 1 && !patternPath.isEmpty())
        QFile::copy(patternPath, destination + "KLovPatterns/" + patternFileName);
}

QString cResponsiveDesign::indexRedirectText(const QString& baseName) {
    // The literal "/n" sequences, the second head and the repeated meta tags are kept on purpose.
    return headPrologue() +
           "<head>/n<meta http-equiv=\"Content-Type\" content=\"text/html; charset=UTF-8\" />/n"
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1.0\" />/n"
           "<title>my first responsive designed picture gallery</title>/n"
           "<script>window.location.href = \"" +
           baseName + ".html\"</script>\n</head>\n<body></body>";
}

void cResponsiveDesign::hCreateIndexRedirectHTML(const QString& baseName,
                                                 const QString& destination) {
    const cNSFileHandling files;
    files.hWritHTMLFile(destination + "index.html", indexRedirectText(baseName));
    files.hAddIconToFile(destination + "index.html", QStringLiteral("klOrvella_HTMLicon"));
}

namespace {

// The steps after scaling, the same for both derivatives: crop, frame, conversion.
void finishDerivative(KLImageHandling& images, const QString& work, const QString& folder,
                      const DerivativeSettings& d, const QString& cropKind) {
    if (!cropKind.isEmpty() && d.cropWidth != 0 && d.cropHeight != 0)
        images.cropImage(work, d.cropWidth, d.cropHeight, folder, cropKind, d.cropPosition);
    if (d.frameWidth > 0)
        images.addBorderToImage2(work, cNSColorHandling::colorFromHexRGB(d.frameColor),
                                 quint32(d.frameWidth));
    cNSFileHandling().hSaveAsFileType(work, d.format, d.compression, folder);
}

}  // namespace

QString cResponsiveDesign::hScaleImageMaxValueHTML(const QString& photoPath,
                                                   const GalleryImageSettings& im,
                                                   const SettingsStore& settings) {
    const QFileInfo info(photoPath);
    KLImageHandling images(&settings);

    const QString thumbFolder = im.destination + "KLimages_s/";
    if (im.thumbAction != 0) {
        // Both scale the photo itself, so the second result replaces the first: kept on purpose.
        images.resizeImage(photoPath, im.thumb.cropWidth, 6, thumbFolder);
        images.resizeImage(photoPath, im.thumb.cropHeight, 7, thumbFolder);
    } else {
        images.resizeImage(photoPath, im.thumb.size, 4, thumbFolder);
    }
    // Only the scale-and-crop action crops the thumbnail.
    finishDerivative(images, thumbFolder + info.fileName(), thumbFolder, im.thumb,
                     im.thumbAction == 0 ? QStringLiteral("myCropThumb") : QString());

    const QString bigFolder = im.destination + "KLimages_b/";
    images.resizeImage(photoPath, im.big.size, 5, bigFolder);
    finishDerivative(images, bigFolder + info.fileName(), bigFolder, im.big,
                     QStringLiteral("myCropBig"));
    return info.completeBaseName();
}

namespace {

// Makes the derivatives of every photo on `threads` workers. Photos whose outputs could meet (the
// same name without extension) form one chain, made in photo order by one worker, so the files
// are the same whatever the number of workers. The caller waits for each photo in order.
class DerivativeWorkers {
  public:
    DerivativeWorkers(const QList<PhotoEntry>& photos, const GalleryImageSettings& image,
                      const SettingsStore& settings, int threads)
        : photos_(photos), image_(image), settings_(settings), done_(size_t(photos.size()), 0) {
        QHash<QString, int> chainOf;
        for (int i = 0; i < photos.size(); ++i) {
            const QString key = QFileInfo(photos[i].url.toLocalFile()).completeBaseName().toLower();
            const auto it = chainOf.constFind(key);
            if (it != chainOf.constEnd()) {
                chains_[size_t(*it)].push_back(i);
            } else {
                chainOf.insert(key, int(chains_.size()));
                chains_.push_back({i});
            }
        }
        const int count = std::clamp(threads, 1, std::max(1, int(chains_.size())));
        for (int t = 0; t < count; ++t) workers_.emplace_back([this] { work(); });
    }

    ~DerivativeWorkers() {
        for (std::thread& t : workers_) t.join();
    }

    void waitFor(int photo) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return done_[size_t(photo)] != 0; });
    }

  private:
    void work() {
        for (;;) {
            const size_t chain = next_.fetch_add(1);
            if (chain >= chains_.size()) return;
            for (const int photo : chains_[chain]) {
                const QString path = photos_[photo].url.toLocalFile();
                try {
                    cResponsiveDesign::hScaleImageMaxValueHTML(path, image_, settings_);
                } catch (const std::exception& e) {
                    klLog() << "Gallery image failed:" << path << e.what();
                } catch (...) {
                    klLog() << "Gallery image failed:" << path;
                }
                {
                    std::lock_guard lock(mutex_);
                    done_[size_t(photo)] = 1;
                }
                changed_.notify_all();
            }
        }
    }

    const QList<PhotoEntry>& photos_;
    const GalleryImageSettings& image_;
    const SettingsStore& settings_;
    std::vector<std::vector<int>> chains_;
    std::atomic<size_t> next_{0};
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<char> done_;
    std::vector<std::thread> workers_;
};

}  // namespace

GalleryResult cResponsiveDesign::hCreateResponsiveHTML(const QString& destination,
                                                       const QList<PhotoEntry>& photos,
                                                       const SettingsStore& snapshot,
                                                       UserInterface& ui, int threads,
                                                       bool openFirstPage) {
    SettingsStore s = snapshot;
    GalleryResult result;

    ui.progressStart();
    ui.progressStep(0.2);
    hPhotoRatioCalc(s);
    const QString baseName = pageBaseName(s.text("tfHTMLfileName"));
    result.firstPage = destination + baseName + ".html";
    ui.progressStep(0.2);

    if (photos.isEmpty()) {
        ui.alert(QStringLiteral("Sorry, you forgot to select photos."),
                 QStringLiteral("Please choose the photos."), true);
        ui.progressStop();
        return result;
    }
    const int columns = s.integer("ifNumberOfColumns");
    const int rows = s.integer("ifNumberOfRows");
    if (columns <= 0 || rows <= 0) {
        ui.alert(QStringLiteral("Sorry, the page layout is not possible."),
                 QStringLiteral("Columns and rows must be at least 1 (columns: %1, rows: %2).")
                     .arg(columns)
                     .arg(rows),
                 true);
        ui.progressStop();
        return result;
    }
    const int perPage =
        int(std::min<qint64>(qint64(columns) * rows, std::numeric_limits<int>::max()));

    // Settings of the run.
    PageSettings page;
    page.gridModel = s.index("pubPhotoGalleryModel") == 2;
    page.baseName = baseName;
    page.pageTitle = s.text("tfPageTitle");
    page.heading = s.text("tvTitle");
    page.gridWidth = s.text("tfGridWidth");
    page.captionScript = s.integer("cbCaptionStatus") == 1;
    page.showFileName = s.integer("btShowFileName") == 1;
    page.showMetaData = s.isOn("cbPgShowMetaData");

    GalleryImageSettings image;
    image.destination = destination;
    image.thumbAction = s.index("pubThumbAction");
    image.thumb.cropWidth = s.integer("tfSmallCropWidth");
    image.thumb.cropHeight = s.integer("tfSmallCropHeight");
    image.thumb.size = std::max(image.thumb.cropWidth, image.thumb.cropHeight);
    image.thumb.cropPosition = s.integer("scImageCropThumbPos");
    image.thumb.frameColor = s.text("cwNSColorWellObjBsImage");
    image.thumb.frameWidth = s.integer("tfSmallFramingThickness");
    image.thumb.format = s.title("pbImageFormat");
    image.thumb.compression = s.title("pbJPGCompression");
    image.big.cropWidth = s.integer("tfBigCropWidth");
    image.big.cropHeight = s.integer("tfBigCropHeight");
    image.big.size = std::max(image.big.cropWidth, image.big.cropHeight);
    image.big.cropPosition = s.integer("scImageCropBigPos");
    image.big.frameColor = s.text("cwNSColorWellObjBbImage");
    image.big.frameWidth = s.integer("tfBigFramingThickness");
    image.big.format = s.title("pbBIGImageFormat");
    image.big.compression = s.title("pbBIGJPGCompression");
    page.thumbFormat = image.thumb.format;
    page.bigFormat = image.big.format;
    ui.progressStep(0.2);

    if (image.big.size <= image.thumb.size)
        ui.alert(QStringLiteral("Sorry, some wrong properties"),
                 QStringLiteral("\r- Lightbox images are smaller than your thumbnails. "
                                "(Thumbnail size: %1)")
                     .arg(image.thumb.size),
                 false);
    ui.progressStep(0.2);

    const QString patternFileName = QFileInfo(s.text("tfTbPatternPath")).fileName();
    ui.progressStep(0.2);
    hCreateFolderStructure(destination, patternFileName, s);

    // Images on the workers; captions and progress here, in photo order.
    const int count = int(photos.size());
    const quint8 photoStep = quint8(98 / count);
    QStringList captions;
    {
        DerivativeWorkers workers(photos, image, s,
                                  threads > 0 ? threads : QThread::idealThreadCount());
        mMeta meta;  // one reader for the whole run, used in photo order
        for (int i = 0; i < count; ++i) {
            captions.append(caption(photos[i], s, meta));
            workers.waitFor(i);
            ui.progressStep(photoStep);
        }
    }

    ui.progressStep(0.2);
    GalleryCssArgs css;
    css.backgroundColor = "#" + s.text("tfHTMLbackgroundColor");
    css.headingText = page.heading;
    css.fileNameAlign = alignment(s.integer("scFilenameTxtAlign"));
    css.headingWeight = weight(s.title("pbTitleFontWeight"));
    css.fileNameWeight = fileNameWeight(s.title("pbFileNameFontWeight"), css.headingWeight);
    css.captionAlign = alignment(s.integer("scEXIFuserCommentTxtAlgin"));
    css.captionWeight = weight(s.title("pbExifUserCommentFontWeight"));
    css.headingFontSize = s.title("pbTitleFontSize");
    css.captionFontSize = s.title("pbExifUserCommentFontSize");
    css.headingColor = "#" + s.text("tfHTMLTitleColor");
    css.destination = destination;
    css.photoNameColor = "#" + s.text("tfHTMLPhotoNameColor");
    css.fileNameFontSize = s.title("pbFileNameFontSize");
    css.captionColor = "#" + s.text("tfHTMLUserExifCommentColor");
    css.headingAlign = alignment(s.integer("scTitleTxtAlign"));
    css.cellBackgroundColor = "#" + s.text("tfHTMLbackgroundColorCell");
    css.fontFamily = s.title("pbFontFamily");
    css.widthList = widthList(columns);
    css.thumbnailBorderThickness = s.text("tfThumbnailBorderThickness");
    css.thumbnailColor = s.text("tfHTMLThumbnailColor");
    css.thumbnailBorderRadius = s.text("tfThumbnailBorderRadius");
    css.patternOn = s.integer("cbTbShowPatternImage");
    css.patternFileName = patternFileName;
    css.patternScale = s.text("tfTbPatternScale");
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
    ui.progressStep(0.2);
    if (page.gridModel)
        cCssCreate().hCreateCssGridMod2(css, columns);
    else
        cCssCreate().hCreateCss(css);

    // Pages.
    const int pages = pageCount(count, perPage);
    page.fontLink = webFontLink(css.fontFamily);
    const QString productPage = page.gridModel ? QStringLiteral("https://www.keldra.com/orvella")
                                               : QStringLiteral("http://www.keldra.com/orvella");
    const cNSFileHandling files;
    int picCount = 0;
    for (int z = 1; z <= pages; ++z) {
        QString html = headPrologue();
        html += "<title>" + page.pageTitle + "</title>\n";
        html += page.gridModel ? QStringLiteral("<!-- Keldra: responsive design -->\n")
                               : QStringLiteral("<!-- Keldra: responsive design - Begin -->\n");
        html +=
            "<link href=\"KLcss/klGScss.css\" rel=\"stylesheet\" type=\"text/css\">\n"
            "<!-- Keldra: lightbox -->\n";
        html += kJQuery + nl;
        html += page.captionScript ? QStringLiteral(
                                         "<script type=\"text/javascript\" "
                                         "src=\"KLovlightbox/jquery02.lightbox.js\"></script>")
                                   : QStringLiteral(
                                         "<script type=\"text/javascript\" "
                                         "src=\"KLovlightbox/jquery.lightbox.js\"></script>");
        html += "\n\n<script>\n$(function() {\n$('.klOVimg a').lightbox();\n});\n</script>\n\n";
        if (!page.gridModel) html += "<!-- Keldra: responsive design - End -->\n";
        // The comment names Roboto whatever the family: kept as it always was.
        html += "<!-- Keldra: Roboto, from Google fonts -->\n";
        html += page.fontLink;
        html +=
            "</head>\n<body>\n<!-- Keldra: responsive design main container - Begin -->\n"
            "<div class=\"KLovTableBased-container\">\n"
            "<!-- Keldra: Background pattern - Begin -->\n<div class=\"klSsPatternBox\">\n";
        html += "<div style=\"width:" + page.gridWidth + "%;margin: auto;\">" +
                (page.gridModel ? "<!-- Keldra: grid - Begin -->\n"
                                : "<!-- Keldra: responsive design grid - Begin -->\n");
        if (pages != 1) {
            html +=
                "<div id=\"navBar\" class=\"klOVpageNav\" "
                "style=\"width:100%;padding:6px;text-align:left;\">";
            for (int k = 1; k <= pages; ++k) {
                if (k == 1)
                    html += "<a href=\"" + baseName + ".html\"> 1 </a>";
                else
                    html += "<a href=\"" + baseName + QString::number(k) + ".html\">" +
                            QString::number(k) + " </a>";
            }
            html += "</div>";
        }
        html += "<div class=\"klOVtitle\">" + page.heading +
                (page.gridModel ? "<br><br></div>\n<div class=\"klOVimages\">\n" : "</div>\n");
        ui.progressStep(0.2);
        for (int onPage = 0; onPage < perPage && picCount < count; ++onPage, ++picCount) {
            const QString name = QFileInfo(photos[picCount].url.toLocalFile()).completeBaseName();
            html += photoBlock(page, name, captions[picCount]);
        }
        if (page.gridModel) {
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
        const QString path = destination + pageFileName(baseName, z);
        files.hWritHTMLFile(path, html);
        files.hAddIconToFile(path, QStringLiteral("klOrvella_HTMLicon"));
    }

    ui.progressStep(0.2);
    hCreateIndexRedirectHTML(baseName, destination);
    if (openFirstPage) cToolBox(ui).hShowURL2("file:///" + destination + baseName + ".html");
    ui.progressStep(0.2);
    ui.progressStop();
    result.ok = true;
    return result;
}

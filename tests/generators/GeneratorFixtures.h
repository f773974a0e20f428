#pragma once

// What the generator test programs share.
#include <gtest/gtest.h>

#include "collection/PhotoCollection.h"
#include "generators/common/GeneratorRun.h"
#include "generators/common/RunManifest.h"
#include "imaging/ImagingFixtures.h"
#include "support/TestSupport.h"

// Whole texts are compared as standard strings, so that a failure shows where they differ.
#define EXPECT_TEXT(actual, expected) \
    EXPECT_EQ(QString(actual).toStdString(), QString(expected).toStdString())

namespace gen {

using testsupport::cameraPhotos;
using testsupport::filesUnder;
using testsupport::freshDir;

// A photo of w x h in its folder (made when missing): a gradient, so encoders have work to do.
inline QString makePhoto(const QString& dir, const QString& name, int w, int h) {
    QDir().mkpath(dir);
    fixtures::save(fixtures::srgb((vips::VImage::xyz(w, h)[0] * (255.0 / w)).bandjoin({40, 200})),
                   dir + name);
    return dir + name;
}

// The strongest of red, green and blue at a point of an image file: "r", "g" or "b".
inline QString colourAt(const QString& path, int x, int y) {
    const fixtures::Pixel p = fixtures::pixel(path, x, y);
    return QString("rgb"[std::max_element(p.begin(), p.begin() + 3) - p.begin()]);
}

// "WxH loader" as libvips reads the file.
inline QString header(const QString& path) {
    const auto [w, h] = fixtures::sizeOf(path);
    return QString("%1x%2 ").arg(w).arg(h) + QString::fromStdString(fixtures::loader(path));
}

// What a run's plan says before anything is written: "stops " and the title of a refusal, or a
// "title|description" line for each warning.
inline QString planAlerts(const SitePlan& plan) {
    QStringList lines;
    if (plan.refusal) lines << "stops " + plan.refusal->title;
    for (const RunAlert& w : plan.warnings) lines << w.title + "|" + w.description;
    return lines.join('\n');
}

// Every file of a site but the run record (which holds times), by relative path.
inline QMap<QString, QByteArray> siteUnder(const QString& dir) {
    QMap<QString, QByteArray> files = testsupport::contentsUnder(dir);
    files.remove(RunManifest::kFileName);
    return files;
}

inline QString readText(const QString& path) {
    return QString::fromUtf8(testsupport::readFile(path, "<missing>"));
}

// The defaults plus "name=value" overrides separated by ", "; a later one wins.
inline SettingsStore store(const QString& set = {}) {
    std::vector<std::pair<QString, QString>> overrides;
    for (const QString& s : set.split(QString(", "), Qt::SkipEmptyParts))
        overrides.push_back({s.section('=', 0, 0), s.section('=', 1)});
    return testsupport::settingsWith(overrides);
}

// The photos of these paths with these descriptions, highlighted landscapes.
inline QList<PhotoEntry> entries(const QStringList& paths, const QStringList& descriptions = {}) {
    QList<PhotoEntry> photos;
    for (int i = 0; i < paths.size(); ++i)
        photos.append({QUrl::fromLocalFile(paths[i]), descriptions.value(i), "H", 1});
    return photos;
}

// "|" stands for a line feed and "[f]" for the font line of the family "Exo 2".
inline QString text(QString t) {
    return t.replace('|', '\n').replace("[f]", "font-family: 'Exo 2', sans-serif;\n");
}

// The head every page of every kind starts with.
inline const QString kPrologue =
    R"(<!DOCTYPE html PUBLIC "-//W3C//DTD XHTML 1.0 Transitional//EN" )"
    R"("http://www.w3.org/TR/xhtml1/DTD/xhtml1-transitional.dtd">|)"
    R"(<html xmlns="http://www.w3.org/1999/xhtml">|<head>|)"
    R"(<meta http-equiv="Content-Type" content="text/html; charset=UTF-8" />|)"
    R"(<meta name="viewport" content="width=device-width, initial-scale=1.0" />|)";

// The lightbox rules from its buttons to the end, the same in the gallery and the grid.
inline const QString kLightboxButtons =
    R"(.klOVlightbox_button {|position: absolute;|z-index: 9999;|)"
    R"(background: no-repeat center center;|width: 32px;|height: 32px;|opacity: 0.4;|)"
    R"(-webkit-transition: all 0.3s;|-moz-transition: all 0.3s;|-ms-transition: all 0.3s;|)"
    R"(transition: all 0.3s;|}||.klOVlightbox_button:hover,|.klOVlightbox_button:focus {|)"
    R"(opacity: 1;|-webkit-transform: scale(1.4);|-moz-transform: scale(1.4);|)"
    R"(-ms-transform: scale(1.4);|transform: scale(1.4);|}||.klOVlightbox_close {|)"
    R"(right: 10px;|top: 10px;|background-image: url("../KLovlightbox/close.png");|}||)"
    R"(.klOVlightbox_nav {|top: 50%;|margin-top: -16px;|}||.klOVlightbox_nav_next {|)"
    R"(right: 10px;|background-image: url("../KLovlightbox/next.png");|}||)"
    R"(.klOVlightbox_nav_prev {|left: 10px;|)"
    R"(background-image: url("../KLovlightbox/previous.png");|}||)";

}  // namespace gen

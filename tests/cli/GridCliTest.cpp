// `orvella generate grid` and `orvella settings grid`, run as the user runs them.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include "support/TestSupport.h"

using testsupport::freshDir;
using testsupport::orvella;
using testsupport::runProgram;

namespace {

QString makePhoto(const QString& dir, const QString& name, int w, int h) {
    EXPECT_EQ(runProgram("vips", {"black", dir + name, QString::number(w), QString::number(h),
                                  "--bands", "3"}),
              0);
    return dir + name;
}

QString readText(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

}  // namespace

// --highlight marks the larger cells by file name, --unpublish leaves a photo out, aliases of the
// preset layout work with --set.
TEST(GridCli, HighlightUnpublishAndAliases) {
    const QString src = freshDir("cli-grid-src");
    makePhoto(src, "a.png", 60, 40);
    makePhoto(src, "b.png", 40, 60);
    makePhoto(src, "c.png", 60, 40);
    makePhoto(src, "d.png", 60, 40);
    const QString out = freshDir("cli-grid-out") + "site";
    QString stdOut, stdErr;
    ASSERT_EQ(orvella({"generate", "grid", "--out", out, "--highlight", "a.png", "--highlight",
                       "b.png", "--unpublish", "c.png", "--set", "tfPageName=photos", "--set",
                       "tfRGMaxColumns=3", "--threads", "1", src},
                      &stdOut, &stdErr),
              0)
        << stdErr.toStdString();
    EXPECT_EQ(stdOut, out + "/photos.html\n");
    const QString page = readText(out + "/photos.html");
    EXPECT_TRUE(page.contains("<div class=\"klovlImage4\"> \n<a href=\"KLovImages/a.jpeg\""));
    EXPECT_TRUE(page.contains(
        "<div class=\"klovlImage klovlImageVertical\"> \n<a href=\"KLovImages/b.jpeg\""));
    EXPECT_TRUE(page.contains("<div class=\"klovlImage\"> \n<a href=\"KLovImages/d.jpeg\""));
    EXPECT_FALSE(page.contains("c.jpeg") || QFile::exists(out + "/KLovImages/c.jpeg"));
    EXPECT_TRUE(readText(out + "/KLResponsiveGridCss/klovlResponsiveGrid.css")
                    .contains("minmax(400px, 1fr));"));
}

// Refused runs exit with 2 and write nothing.
TEST(GridCli, Refusals) {
    const QString src = freshDir("cli-grid-refusals");
    const QString photo = makePhoto(src, "a.png", 60, 40);
    const QString out = src + "out";
    const std::vector<std::pair<QStringList, const char*>> cases = {
        {{"--set", "tfRGMaxColumns=0", photo}, "Sorry, the grid layout is not possible."},
        {{"--set", "tfRGMaxColumns=-2", photo}, "Sorry, the grid layout is not possible."},
        {{"--set", "tfRGMaxColumns=many", photo}, "Sorry, the grid layout is not possible."},
        {{"--unpublish", "a.png", photo}, "Sorry, you forgot to select photos."},
        {{"--highlight", "z.png", photo}, "--highlight: no photo named \"z.png\""},
        {{"--set", "tfHTMLTitleColor=FF0000", photo}, "unknown setting tfHTMLTitleColor"},
    };
    for (const auto& [args, message] : cases) {
        QString stdErr;
        EXPECT_EQ(orvella(QStringList{"generate", "grid", "--out", out} + args, nullptr, &stdErr),
                  2)
            << args.join(' ').toStdString();
        EXPECT_TRUE(stdErr.contains(message)) << stdErr.toStdString();
        EXPECT_TRUE(QDir(out).isEmpty()) << args.join(' ').toStdString();
    }
}

TEST(GridCli, SettingsListing) {
    QString stdOut;
    ASSERT_EQ(orvella({"settings", "grid"}, &stdOut), 0);
    const QStringList lines = stdOut.split('\n', Qt::SkipEmptyParts);
    EXPECT_EQ(lines.first(), "name\taliases\tkind\tdefault\titems\tlabel");
    auto row = [&](const QString& name) { return lines.filter(name + "\t").value(0).split('\t'); };
    for (const auto& [name, aliases, def] : std::vector<std::tuple<QString, QString, QString>>{
             {"tfRgPageName", "tfPageName", "index"},
             {"tfRGBackgroundColor", "tfRgBackgroundColor,cwRGBackgroundColor", "F4F3EF"},
             {"cbRgShowMetaData", "cbRgExifUC", "1"},
             {"tfRgMetaDataFontColor", "tfRgFileNameFontColor,cwRgCaption", "FFFFFF"},
             {"ascNSColorWellObjRGLightboxBgColor", "tfNSColorWellObjRGLightboxBgColor", "1E1E1E"},
             {"tfRGMaxColumns", "tfRgMaxColumns", "6"}}) {
        const QStringList columns = row(name);
        ASSERT_EQ(columns.size(), 6) << name.toStdString();
        EXPECT_EQ(columns[1] + " " + columns[3], aliases + " " + def) << name.toStdString();
    }
}

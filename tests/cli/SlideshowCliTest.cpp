// `orvella generate slideshow` and `orvella settings slideshow`, run as the user runs them.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include "support/TestSupport.h"

using testsupport::freshDir;
using testsupport::orvella;
using testsupport::runProgram;

namespace {

QString photo(const QString& dir, const QString& name) {
    EXPECT_EQ(runProgram("vips", {"black", dir + name, "90", "60", "--bands", "3"}), 0);
    return dir + name;
}

QString readText(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

const QStringList kSmall = {"--set", "tfSsImageWidth=60", "--set", "tfSsImageHeight=40"};

}  // namespace

// A folder's photos sorted z to a, one left out; the page path printed. Neither autorun nor
// buttons: a warning, and the show is made.
TEST(SlideshowCli, GeneratesWithSortUnpublishAndWarning) {
    const QString src = freshDir("cli-slideshow-src");
    for (const char* name : {"a.png", "b.jpg", "c.tif"}) photo(src, name);
    const QString out = freshDir("cli-slideshow-out") + "show";
    QString stdOut, stdErr;
    ASSERT_EQ(
        orvella(QStringList{"generate", "slideshow", "--out", out, "--sort", "za", "--unpublish",
                            "b.jpg", "--set", "cbSsAutorun=0", "--set", "cbSsShowNavigationBtn=0",
                            "--set", "tfSsPageName=index", "--threads", "1"} +
                    kSmall + QStringList{src},
                &stdOut, &stdErr),
        0)
        << stdErr.toStdString();
    EXPECT_EQ(stdOut, out + "/index.html\n");
    EXPECT_TRUE(
        stdErr.contains("warning: The slides do not change by themselves: Autorun and "
                        "the previous and next buttons are off: only the dots move "
                        "between the slides.\n"))
        << stdErr.toStdString();
    const QString page = readText(out + "/index.html");
    EXPECT_LT(page.indexOf("KLSsImages/c.jpeg"), page.indexOf("KLSsImages/a.jpeg"));
    EXPECT_FALSE(page.contains("b.jpeg"));
    EXPECT_TRUE(QFile::exists(out + "/KLSsImages/a.jpeg") &&
                QFile::exists(out + "/KLSlideShowcss/klovlSlideshow.css"));
}

TEST(SlideshowCli, RefusalsAndFailures) {
    const QString src = freshDir("cli-slideshow-refusals");
    const QString a = photo(src, "a.png");
    const QString out = src + "out";
    // A folder where the slide should go: it cannot be written.
    QDir().mkpath(out + "/KLSsImages/a.jpeg");
    const struct {
        QStringList args;
        int code;
        QString message;
    } cases[] = {
        {{"--set", "tfPageTitle=x", a}, 2, "unknown setting tfPageTitle"},
        {{"--set", "pubSsTemplateChoice=5", a}, 2, "pubSsTemplateChoice"},
        {{"--unpublish", "a.png", a},
         2,
         "orvella generate: Sorry, you forgot to select photos. Please choose the photos.\n"},
        {{"--set", "tfSsInterval=soon", a},
         2,
         "orvella generate: Sorry, the interval is not possible. \"soon\" is not a number of "
         "seconds.\n"},
        {{a}, 1, "orvella generate: " + out + "/KLSsImages/a.jpeg: "},
    };
    for (const auto& c : cases) {
        QString stdErr;
        EXPECT_EQ(orvella(QStringList{"generate", "slideshow", "--out", out} + kSmall + c.args,
                          nullptr, &stdErr),
                  c.code)
            << c.args.join(' ').toStdString();
        EXPECT_TRUE(stdErr.contains(c.message)) << stdErr.toStdString();
        EXPECT_EQ(QFile::exists(out + "/slideshow.html"), c.code == 1);
    }
}

// The listing in the gallery's form; the pairs that name one setting are aliases; the font lists
// are the gallery's.
TEST(SlideshowCli, SettingsListing) {
    QString slideshow, gallery;
    ASSERT_EQ(orvella({"settings", "slideshow"}, &slideshow), 0);
    ASSERT_EQ(orvella({"settings", "gallery"}, &gallery), 0);
    const QStringList lines = slideshow.split('\n', Qt::SkipEmptyParts);
    EXPECT_EQ(lines.first(), "name\taliases\tkind\tdefault\titems\tlabel");
    const auto row = [](const QString& listing, const QString& name) {
        const QStringList found = listing.split('\n').filter(QRegularExpression("^" + name + "\t"));
        return found.value(0).split('\t');
    };
    for (const QString& line : lines) EXPECT_EQ(line.count('\t'), 5) << line.toStdString();
    for (const auto& [name, aliases] :
         std::vector<std::pair<QString, QString>>{{"tfSsTitle", "tvSsTitle"},
                                                  {"pubSsTemplateChoice", "pubSlideTemplateChoice"},
                                                  {"tfSsHTMLTitleFontColor", "cwIntro"},
                                                  {"tfSsFileNameFontColor", "cwCaption"},
                                                  {"tfSsBackgroundColor", "cwSsBackground"},
                                                  {"tfSsHTMLDotColor", "cwSsDot"}})
        EXPECT_EQ(row(slideshow, name).value(1), aliases) << name.toStdString();
    EXPECT_EQ(row(slideshow, "pubSsHTMLTitleFontFamily").value(4),
              row(gallery, "pbFontFamily").value(4));
    EXPECT_EQ(row(slideshow, "pubSsFileNameSize").value(4),
              row(gallery, "pbTitleFontSize").value(4));
    EXPECT_EQ(row(slideshow, "pubSsHTMLTitleFontStyle").value(4),
              row(gallery, "pbTitleFontWeight").value(4));
}

// Wrong usage and refused runs of every command: exit code 2, a message naming what is wrong, and
// not one file written or changed, also when the photos are in the output's own image folders.
// What each kind's plan refuses is in its own table; here one of each reaches the command line.
#include <gtest/gtest.h>

#include "support/TestSupport.h"

using namespace testsupport;

TEST(RefusalCli, EveryCommandRefusesWithTwoAndWritesNothing) {
    const QString d = freshDir("cli-refused");
    const QString o = d + "out/site/";  // "../../x" leads back into d
    const QString a = makePhoto(d + "a.png");
    QStringList inside;  // photos in the image folders of the output
    for (const char* folder :
         {"KLimages_b", "KLimages_s", "KLovlightbox", "KLSsImages", "KLovImages"})
        inside << makePhoto(o + folder + "/in.jpg");
    const QProcessEnvironment home = homeIn(freshDir("cli-refused-home"));
    orvellaOut(0, {"preset", "export", "gallery", "--out", d + "g.orvpreset"}, nullptr, &home);
    orvellaOut(0, {"project", "save", d + "p", "--name", "P", "--kind", "grid", "--unpublish",
                   "a.png", a});
    const QString unpublished = d + "p/P.orvprj";
    writeFile(d + "hostile.orvprj",
              "<plist><dict><key>count</key><string>1</string><key>1</key><dict>"
              "<key>name</key><string>../a.jpg</string></dict></dict></plist>");
    writeFile(d + "text.orvprj", "just text");
    const auto before = contentsUnder(d);
    const QStringList gallery = {"generate", "gallery", "--out", o};
    const QStringList grid = {"generate", "grid", "--out", o};
    const QStringList slideshow = {"generate", "slideshow", "--out", o};
    const QStringList project = {"project", "save", o + "s"};
    const QString ownFolder = "the output folder is the folder of " + a;
    const std::pair<QStringList, QString> cases[] = {
        {gallery + QStringList{"--set", "tfNoSuchSetting=1", a}, "unknown setting tfNoSuchSetting"},
        {gallery + QStringList{"--set", "tfHTMLTitleColor=red", a},
         "tfHTMLTitleColor: \"red\" is not six hexadecimal digits"},
        {gallery + QStringList{"--unpublish", "a.png", a}, "Sorry, you forgot to select photos."},
        {gallery + QStringList{"--set", "tfHTMLfileName=../../escaped", a}, "page name"},
        {gallery + QStringList{inside[0]}, inside[0]},
        {gallery + QStringList{inside[1]}, inside[1]},
        {gallery + QStringList{inside[2]}, inside[2]},
        {slideshow + QStringList{inside[3]}, inside[3]},
        {grid + QStringList{inside[4]}, inside[4]},
        {gallery + QStringList{"--preset", "NoSuchPreset", a},
         "No gallery preset is named \"NoSuchPreset\"."},
        {grid + QStringList{"--unpublish", "a.png", a}, "Sorry, you forgot to select photos."},
        {grid + QStringList{"--highlight", "z.png", a}, "--highlight: no photo named \"z.png\""},
        {grid + QStringList{"--set", "tfHTMLTitleColor=FF0000", a},
         "unknown setting tfHTMLTitleColor"},
        {slideshow + QStringList{"--set", "tfPageTitle=x", a}, "unknown setting tfPageTitle"},
        {slideshow + QStringList{"--set", "pubSsTemplateChoice=5", a},
         "pubSsTemplateChoice: \"5\" is not one of"},
        {slideshow + QStringList{"--unpublish", "a.png", a},
         "orvella generate: Sorry, you forgot to select photos. Please choose the photos.\n"},
        {slideshow + QStringList{"--set", "tfSsInterval=soon", a},
         "orvella generate: Sorry, the interval is not possible. \"soon\" is not a number of "
         "seconds.\n"},
        {{"settings", "nothing"}, "Usage: orvella settings gallery"},
        {{"preset", "save", "photos", "A"}, "unknown kind \"photos\""},
        {{"preset", "save", "gallery"}, "save needs KIND and NAME"},
        {{"preset", "save", "gallery", "A", "--preset", "NoSuchPreset"}, "No gallery preset"},
        {{"preset", "save", "gallery", "A", "--set", "tfNoSuch=1"}, "\"tfNoSuch\""},
        {{"preset", "save", "gallery", "A", "--set", "tfHTMLTitleColor=red"}, "six hexadecimal"},
        {{"preset", "export", "gallery"}, "export needs --out FILE"},
        {{"preset", "export", "slideshow", "--out", o + "s", "--preset", d + "g.orvpreset"},
         "g.orvpreset is a gallery preset, not a slideshow one"},
        {{"preset", "import", d + "missing.orvpreset", "A"}, "no such file: " + d + "missing"},
        {{"preset", "remove", "NoSuchPreset"}, "No preset is named \"NoSuchPreset\"."},
        {{"preset", "frobnicate"}, "Usage: orvella preset save"},
        {{"support", "import", "fonts", a}, "import needs patterns or watermarks"},
        {{"project"}, "Usage: orvella project save"},
        {{"project", "open", "x"}, "unknown verb \"open\""},
        {project + QStringList{"--kind", "grid"}, "--name NAME is required"},
        {project + QStringList{"--name", "S"}, "--kind is required"},
        {project + QStringList{"--name", "S", "--kind", "album"}, "unknown output kind \"album\""},
        {project + QStringList{"--name", "../S", "--kind", "grid"}, "cannot name a project"},
        {project + QStringList{"--name", "S", "--kind", "grid", d + "none.jpg"},
         "no such file or folder"},
        {project + QStringList{"--name", "S", "--kind", "grid", "--set", "tfPageTitle=x"},
         "unknown setting tfPageTitle"},
        {{"project", "show", d + "missing.orvprj"}, "no such project file"},
        {{"project", "show", d + "text.orvprj"}, "is not a project file: not XML"},
        {{"project", "show", d + "hostile.orvprj"}, "\"../a.jpg\", which is not a plain"},
        {{"project", "build", d + "hostile.orvprj", "--out", o}, "not a plain file name"},
        {{"project", "build", unpublished}, "--out DIR is required"},
        {{"project", "build", unpublished, "--out", o, "--threads", "many"},
         "--threads takes a whole number"},
        {{"project", "build", unpublished, "--out", o}, "you forgot to select photos"},
        {{"watermark", "text", "--out", d, a}, ownFolder},
        {{"watermark", "text", "--out", o, "--set", "tfPageTitle=x", a}, "unknown setting"},
        {{"watermark", "text", "--out", o, "--set", "tfFontSize=big", a}, "not a whole number"},
        {{"watermark", "image", "--out", o, a}, "the watermark image \"\" is not a file"},
        {{"watermark", "stamp", "--out", o, a}, "text or image?"},
        {{"watermark", "text", a}, "--out DIR is required"},
        {{"meta", "tree"}, "Usage: orvella meta"},
        {{"meta", "batch", a}, "batch needs --comment TEXT"},
        {{"meta", "batch", "--comment", "x"}, "batch needs files or folders"},
        {{"meta", "complete", a, a}, "OUT is IN; the input is never overwritten"},
        {{"image", "effect", "4", "--out", d, a}, ownFolder},
        {{"image", "enhance", "1", "0.5", "--out", d + "../cli-refused/", a}, ownFolder},
        {{"image", "derive", "4", "20", "--out", d + ".", a}, ownFolder},
        {{"update-check", "--build", "new"}, "--build needs a whole number"},
    };
    for (const auto& [args, says] : cases) {
        SCOPED_TRACE(args.join(' ').toStdString());
        QString err;
        orvellaOut(2, args, &err, &home);
        EXPECT_TRUE(err.contains(says)) << err;
        EXPECT_TRUE(contentsUnder(d) == before);
    }
}

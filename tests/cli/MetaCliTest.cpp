#include <gtest/gtest.h>

#include "metadata/MetaFixtures.h"

using metafixtures::makeImage;

using testsupport::orvella;

TEST(MetaCli, GetPrintsOneLinePerNameTreeIndentsTwoSpacesPerLevel) {
    const QString dir = testsupport::freshDir("cli-meta/get");
    const QString photo = makeImage(dir + "harbour.jpg");
    metafixtures::tag(photo, {"-UserComment= Sunset", "-IPTC:City=Lyon"});
    QString out;
    // All names are read by one reader: "IPTC Description" repeats the value read before it.
    EXPECT_EQ(orvella({"meta", "get", photo, "IPTC Description", "IPTC City", "IPTC Description",
                       "Show Filename", "EXIF User Comment", "IPTC Headline"},
                      &out),
              0);
    EXPECT_EQ(out, "\nLyon\nLyon\nharbour.jpg\n Sunset\n\n");
    ASSERT_EQ(orvella({"meta", "tree", photo}, &out), 0);
    EXPECT_TRUE(out.startsWith("Exif:\n")) << out.toStdString();
    EXPECT_TRUE(out.contains("\n  Photo:\n"));
    EXPECT_TRUE(out.contains("\n    User Comment:  Sunset\n"));
    EXPECT_TRUE(out.contains("\nIPTC:\n  Application2:\n    City: Lyon\n"));
    // A file that cannot be read prints one empty line per name, and no tree.
    EXPECT_EQ(orvella({"meta", "get", dir + "missing.jpg", "EXIF User Comment", "IPTC City"}, &out),
              0);
    EXPECT_EQ(out, "\n\n");
    EXPECT_EQ(orvella({"meta", "tree", dir + "missing.jpg"}, &out), 0);
    EXPECT_EQ(out, QString());
}

TEST(MetaCli, SetCommentPrintsOkOrFailed) {
    const QString dir = testsupport::freshDir("cli-meta/set");
    const QString file = makeImage(dir + "stripped.jpg", 32, 24, "strip");
    QString out;
    EXPECT_EQ(orvella({"meta", "set-comment", file, "Written from the command line"}, &out), 0);
    EXPECT_EQ(out, "OK\n");
    EXPECT_EQ(testsupport::exiftool(file, "UserComment"), "Written from the command line");
    const QString text = dir + "notes.jpg";
    metafixtures::writeBytes(text, "plain words");
    EXPECT_EQ(orvella({"meta", "set-comment", text, "x"}, &out), 1);
    EXPECT_EQ(out, "Failed\n");
    EXPECT_EQ(metafixtures::bytes(text), "plain words");
}

TEST(MetaCli, HelpAndUsage) {
    QString out, err;
    EXPECT_EQ(orvella({"meta", "--help"}, &out), 0);
    for (const char* usage : {"meta get FILE NAME", "meta tree FILE", "meta set-comment FILE TEXT"})
        EXPECT_TRUE(out.contains(usage)) << usage;
    for (const QStringList& misuse :
         {QStringList{"meta", "tree"}, QStringList{"meta", "frobnicate"}}) {
        EXPECT_EQ(orvella(misuse, &out, &err), 2);
        EXPECT_TRUE(err.contains("Usage: orvella meta")) << err.toStdString();
    }
}

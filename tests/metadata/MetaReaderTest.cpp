#include <gtest/gtest.h>

#include <exiv2/exiv2.hpp>

#include "metadata/MetaFixtures.h"
#include "metadata/mMeta.h"

using metafixtures::makeImage;
using metafixtures::tag;
using testsupport::exiftool;

namespace {

const QString kComment = "EXIF User Comment";

// Lets `edit` change the file's metadata through Exiv2 and writes it back.
template <typename Edit>
void editWithExiv2(const QString& file, Edit edit) {
    auto image = Exiv2::ImageFactory::open(QFile::encodeName(file).toStdString());
    image->readMetadata();
    edit(*image);
    image->writeMetadata();
}

// The display-name path through the tree to a value; "(none)" when there is no such node.
QString valueAt(const QList<MetaTreeNode>& nodes, QStringList path) {
    const QString key = path.takeFirst();
    for (const MetaTreeNode& node : nodes)
        if (node.key == key) return path.isEmpty() ? node.val : valueAt(node.children, path);
    return "(none)";
}

// Keys in ascending order at every level; a group has no value of its own.
void expectSortedGroups(const QList<MetaTreeNode>& nodes) {
    for (qsizetype i = 1; i < nodes.size(); ++i) EXPECT_LT(nodes[i - 1].key, nodes[i].key);
    for (const MetaTreeNode& node : nodes) {
        EXPECT_TRUE(node.children.isEmpty() || node.val.isEmpty()) << node.key.toStdString();
        expectSortedGroups(node.children);
    }
}

}  // namespace

// Comments stored as cameras store them: an 8-byte charset prefix, the text, often padding.
TEST(MetaReader, UserCommentsAgainstExiftool) {
    const QString dir = testsupport::freshDir("meta/comments");
    const QByteArray ascii("ASCII\0\0\0", 8), unicode("UNICODE\0", 8), nuls(40, '\0');
    const QString text = "Grüße, 東京";
    const QByteArray ucs2(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
    const std::pair<QByteArray, QString> cases[] = {
        {ascii + "Sunset at the beach", "Sunset at the beach"},
        {ascii + " Sunset", " Sunset"},  // a leading space is kept
        {ascii + "   ", ""},             // spaces only: no comment
        {ascii + QByteArray(40, ' '), ""},
        {ascii + "Hello" + nuls, "Hello"},
        {ascii + nuls, ""},
        {QByteArray(8, '\0') + "Hi there", "Hi there"},
        {unicode + ucs2 + nuls, text},
        {"AB", ""},
    };
    int n = 0;
    for (const auto& [raw, expected] : cases) {
        SCOPED_TRACE(n);
        const QString file = makeImage(dir + QString::number(n++) + ".jpg");
        editWithExiv2(file, [&raw = raw](Exiv2::Image& image) {
            Exiv2::DataValue value(reinterpret_cast<const Exiv2::byte*>(raw.constData()),
                                   long(raw.size()));
            image.exifData().add(Exiv2::ExifKey("Exif.Photo.UserComment"), &value);
        });
        mMeta meta;
        EXPECT_EQ(meta.hGetExifUc(file, kComment), expected);
        EXPECT_EQ(meta.hGetExifUcFromSource(meta.getMyImageSource(file), kComment), expected);
        EXPECT_EQ(expected.isEmpty() ? expected : exiftool(file, "UserComment"), expected);
    }
}

TEST(MetaReader, EveryOtherExifNameReadsTheCreationDate) {
    const QString dir = testsupport::freshDir("meta/date");
    const QString dated = makeImage(dir + "dated.jpg");
    const QString stripped = makeImage(dir + "stripped.jpg", 40, 30, "strip");
    tag(dated, {"-DateTimeOriginal=2019:07:14 18:03:22", "-UserComment=Harbour"});
    const QString date = exiftool(dated, "DateTimeOriginal");
    ASSERT_EQ(date, "2019:07:14 18:03:22");
    mMeta meta;
    for (const QString name :
         {"EXIF Creation Date", "EXIF Creaton Date", "exif user comment", ""}) {
        EXPECT_EQ(meta.hGetExifUc(dated, name), date) << name.toStdString();
        EXPECT_EQ(meta.hGetExifUc(stripped, name), QString());
    }
    EXPECT_EQ(meta.hGetExifUc(dated, kComment), "Harbour");
    EXPECT_EQ(meta.hGetExifUc(stripped, kComment), QString());
}

// Every IPTC item: its name, exiftool's tag, the value written (lists with ", ") and the value
// read.
const struct {
    QString name, tag, stored, expected;
} kIptc[] = {
    {"IPTC Creator Title", "By-lineTitle", "Staff Photographer, Editor", "Staff Photographer"},
    {"IPTC Caption", "Caption-Abstract", "Boats in the harbour", "Boats in the harbour"},
    {"IPTC Keyword", "Keywords", "Beach, Sea, Summer", "Beach; Sea; Summer"},
    {"IPTC City", "City", "Zürich", "Zürich"},
    {"IPTC Caption Writer", "Writer-Editor", "Ann Writer", "Ann Writer"},
    {"IPTC Copyrights", "CopyrightNotice", "© 2019 Ann", "© 2019 Ann"},
    {"IPTC Country", "Country-PrimaryLocationName", "Switzerland", "Switzerland"},
    {"IPTC Credits", "Credit", "Ann Photo", "Ann Photo"},
    {"IPTC Headline", "Headline", "Evening light", "Evening light"},
    {"IPTC Subject Code", "SubjectReference", "IPTC:04000000", "IPTC:04000000"},
    {"IPTC State Province", "Province-State", "ZH", "ZH"},
};

class Iptc : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        dir = testsupport::freshDir("meta/iptc");
        QStringList assignments{"-sep", ", ", "-IPTC:CodedCharacterSet=UTF8"};
        for (const auto& item : kIptc) assignments << "-IPTC:" + item.tag + "=" + item.stored;
        tag(tagged = makeImage(dir + "tagged.jpg"), assignments);
        tag(cityOnly = makeImage(dir + "city-only.jpg"), {"-IPTC:City=Lyon"});
        noIptc = makeImage(dir + "no-iptc.jpg");
    }
    static inline QString dir, tagged, cityOnly, noIptc;
};

TEST_F(Iptc, EveryNameAgainstExiftool) {
    for (const auto& c : kIptc) {
        SCOPED_TRACE(c.name.toStdString());
        // exiftool lists repeated items with ", ": the title is the first, keywords all of them.
        const QStringList truth = exiftool(tagged, c.tag).split(", ");
        mMeta meta;
        EXPECT_EQ(meta.hGetSomeIPTC(tagged, c.name), c.expected);
        EXPECT_EQ(c.expected, c.name == "IPTC Creator Title" ? truth.first() : truth.join("; "));
        // A photo that lacks the item, or has no IPTC at all (empty title list included).
        EXPECT_EQ(meta.hGetSomeIPTC(cityOnly, c.name), c.name == "IPTC City" ? "Lyon" : "");
        EXPECT_EQ(meta.hGetSomeIPTC(noIptc, c.name), QString());
    }
}

TEST_F(Iptc, DescriptionRepeatsThePreviousValueOfTheSameReader) {
    const QString description = "IPTC Description";
    EXPECT_EQ(mMeta().hGetSomeIPTC(tagged, description), QString());
    mMeta meta;
    EXPECT_EQ(meta.hGetSomeIPTC(tagged, "IPTC City"), "Zürich");
    EXPECT_EQ(meta.hGetSomeIPTC(tagged, description), "Zürich");
    // Carried over to the next photo, as long as that photo has IPTC data.
    EXPECT_EQ(meta.hGetSomeIPTC(cityOnly, description), "Zürich");
    EXPECT_EQ(meta.hGetSomeIPTC(noIptc, description), QString());
    EXPECT_EQ(meta.hGetSomeIPTC(cityOnly, "iptc city"), "Zürich");  // names are case-sensitive
    EXPECT_EQ(meta.hGetSomeIPTC(dir + "missing.jpg", description), QString());
    EXPECT_EQ(meta.hGetSomeIPTC(cityOnly, description), "Zürich");
    // A known name that the photo lacks clears it.
    EXPECT_EQ(meta.hGetSomeIPTC(cityOnly, "IPTC Headline"), QString());
    EXPECT_EQ(meta.hGetSomeIPTC(tagged, description), QString());
}

TEST(MetaReader, KeywordJoiningSkipsTheSeparatorWhileTheTextIsEmpty) {
    const QString dir = testsupport::freshDir("meta/keywords");
    const std::pair<QStringList, QString> cases[] = {
        {{"", "Sea"}, "Sea"}, {{"Sea", "", "Sky"}, "Sea; ; Sky"}, {{}, ""}};
    int n = 0;
    for (const auto& [keywords, expected] : cases) {
        const QString file = makeImage(dir + QString::number(n++) + ".jpg");
        editWithExiv2(file, [&keywords = keywords](Exiv2::Image& image) {
            image.iptcData()["Iptc.Application2.City"] = "Somewhere";
            for (const QString& keyword : keywords) {
                Exiv2::StringValue value(keyword.toStdString());
                image.iptcData().add(Exiv2::IptcKey("Iptc.Application2.Keywords"), &value);
            }
        });
        EXPECT_EQ(mMeta().hGetSomeIPTC(file, "IPTC Keyword"), expected) << n;
    }
}

TEST(MetaReader, PixelSizeAndColourProfile) {
    const QString dir = testsupport::freshDir("meta/header");
    const std::tuple<QString, int, int, int, QString, QString> cases[] = {
        {"wide.jpg", 64, 20, 3, "", "sRGB"},
        {"gray.png", 17, 90, 1, "", "Gray"},
        {"p3.tif", 300, 200, 3, "profile=p3", "sP3C"},
        {"p3.jpg", 1, 1, 3, "profile=p3", "sP3C"}};
    for (const auto& [name, width, height, bands, options, profile] : cases) {
        SCOPED_TRACE(name.toStdString());
        const QString file = makeImage(dir + name, width, height, options, bands);
        EXPECT_EQ(mMeta().hGetPixelFormat(file).join("x"), QString("%1x%2").arg(width).arg(height));
        EXPECT_EQ(mMeta().hGetColorProfile(file), profile);
        EXPECT_EQ(options.isEmpty() ? profile : exiftool(file, "ProfileDescription"), profile);
    }
    const QString adobe = makeImage(dir + "adobe.jpg");
    tag(adobe, {"-ColorSpace#=65535", "-InteropIndex=R03"});
    EXPECT_EQ(mMeta().hGetColorProfile(adobe), "Adobe RGB (1998)");
}

TEST(MetaReader, TreeOfEveryFamilyAndTheEditor) {
    const QString dir = testsupport::freshDir("meta/tree");
    const QString file = makeImage(dir + "tagged.jpg");
    tag(file,
        {"-UserComment=Harbour at dusk", "-DateTimeOriginal=2019:07:14 18:03:22", "-IPTC:City=Lyon",
         "-IPTC:Keywords=Beach", "-IPTC:Keywords=Sea", "-XMP-dc:Creator=Ann"});
    mMeta meta;
    const QList<MetaTreeNode> tree = meta.propTree(file);
    ASSERT_EQ(tree.size(), 3);
    EXPECT_EQ(tree[2].key, "XMP");
    expectSortedGroups(tree);
    EXPECT_EQ(valueAt(tree, {"Exif", "Photo", "User Comment"}), "Harbour at dusk");
    EXPECT_EQ(valueAt(tree, {"IPTC", "Application2", "City"}), "Lyon");
    EXPECT_EQ(valueAt(tree, {"IPTC", "Application2", "Keywords"}), "Beach; Sea");

    // The editor shows the comment, or a message, and the tree.
    const QString plain = makeImage(dir + "plain.jpg", 40, 30, "strip");
    const QString text = dir + "notes.jpg";
    metafixtures::writeBytes(text, "just some words, not an image\n");
    EXPECT_EQ(meta.hiDoNothing(file).size(), 3);
    EXPECT_EQ(meta.tfExifUserComment, "Harbour at dusk");
    EXPECT_TRUE(meta.hiDoNothing(plain).isEmpty());
    EXPECT_EQ(meta.tfExifUserComment, "No user comment available.");
    EXPECT_TRUE(meta.hiDoNothing(text).isEmpty());
    EXPECT_TRUE(meta.myVarTree.isEmpty());
    EXPECT_EQ(meta.tfExifUserComment, "This file type is not supported.");
}

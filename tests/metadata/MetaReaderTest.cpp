#include <gtest/gtest.h>

#include <QFileInfo>
#include <exiv2/exiv2.hpp>

#include "metadata/MetaFixtures.h"
#include "metadata/mMeta.h"

using metafixtures::makeImage;
using metafixtures::tag;

namespace {

const QString kComment = QStringLiteral("EXIF User Comment");
const QString kDate = QStringLiteral("EXIF Creation Date");

// Stores these exact bytes as the user comment, the way a camera would (charset header and
// padding included).
void writeRawUserComment(const QString& file, const QByteArray& raw) {
    auto image = Exiv2::ImageFactory::open(QFile::encodeName(file).toStdString());
    image->readMetadata();
    Exiv2::ExifData exif = image->exifData();
    Exiv2::DataValue value(Exiv2::undefined);
    value.read(reinterpret_cast<const Exiv2::byte*>(raw.constData()), long(raw.size()),
               Exiv2::littleEndian);
    exif.add(Exiv2::ExifKey("Exif.Photo.UserComment"), &value);
    image->setExifData(exif);
    image->writeMetadata();
}

QByteArray ucs2le(const QString& text) {
    QByteArray out;
    for (QChar c : text) {
        out.append(char(c.unicode() & 0xFF));
        out.append(char(c.unicode() >> 8));
    }
    return out;
}

}  // namespace

TEST(MetaReader, UserCommentsWrittenByExiftool) {
    const QString dir = testsupport::freshDir(QStringLiteral("meta/comments"));
    struct Case {
        const char* stored;
        const char* expected;
        bool sameAsExiftool;
    } cases[] = {
        {"Sunset at the beach", "Sunset at the beach", true},
        {"   ", "", false},  // spaces only read as no comment
        {" ", "", false},
        {" Sunset", " Sunset", true},  // a leading space is kept
        {"Sunset  ", "Sunset  ", false},
        {"Two  spaces inside", "Two  spaces inside", true},
        {"Café au lait, 東京", "Café au lait, 東京", true},  // stored as UNICODE
        {"line one\nline two", "line one\nline two", false},
    };
    int n = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.stored);
        const QString file = makeImage(dir + QString::number(n++) + QStringLiteral(".jpg"));
        tag(file, {QStringLiteral("-UserComment=") + QString::fromUtf8(c.stored)});
        mMeta meta;
        EXPECT_EQ(meta.hGetExifUc(file, kComment), QString::fromUtf8(c.expected));
        if (c.sameAsExiftool) {
            EXPECT_EQ(meta.hGetExifUc(file, kComment),
                      testsupport::exiftool(file, QStringLiteral("UserComment")));
        }
    }
}

TEST(MetaReader, UserCommentsWithCameraHeadersAndPadding) {
    const QString dir = testsupport::freshDir(QStringLiteral("meta/raw-comments"));
    const QByteArray nuls(40, '\0');
    const QByteArray spaces(40, ' ');
    struct Case {
        const char* name;
        QByteArray raw;
        QString expected;
    } cases[] = {
        {"ascii", QByteArray("ASCII\0\0\0", 8) + "Hello", QStringLiteral("Hello")},
        {"ascii-nul-padded", QByteArray("ASCII\0\0\0", 8) + "Hello" + nuls,
         QStringLiteral("Hello")},
        {"ascii-only-nuls", QByteArray("ASCII\0\0\0", 8) + nuls, QString()},
        {"ascii-only-spaces", QByteArray("ASCII\0\0\0", 8) + spaces, QString()},
        {"undefined-header", QByteArray(8, '\0') + "Hi there", QStringLiteral("Hi there")},
        {"undefined-only-nuls", QByteArray(8, '\0') + nuls, QString()},
        {"all-spaces-no-header", QByteArray(48, ' '), QString()},
        {"unicode", QByteArray("UNICODE\0", 8) + ucs2le(QStringLiteral("Grüße")) + nuls,
         QStringLiteral("Grüße")},
        {"header-only", QByteArray("ASCII\0\0\0", 8), QString()},
        {"too-short", QByteArray("AB"), QString()},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const QString file = makeImage(dir + QString::fromLatin1(c.name) + QStringLiteral(".jpg"));
        writeRawUserComment(file, c.raw);
        mMeta meta;
        EXPECT_EQ(meta.hGetExifUc(file, kComment), c.expected);
        EXPECT_EQ(meta.hGetExifUcFromSource(meta.getMyImageSource(file), kComment), c.expected);
    }
}

TEST(MetaReader, EveryOtherExifNameReadsTheCreationDate) {
    const QString dir = testsupport::freshDir(QStringLiteral("meta/date"));
    const QString dated = makeImage(dir + QStringLiteral("dated.jpg"));
    tag(dated, {QStringLiteral("-DateTimeOriginal=2019:07:14 18:03:22"),
                QStringLiteral("-UserComment=Harbour")});
    const QString undated = makeImage(dir + QStringLiteral("undated.jpg"));
    const QString stripped =
        makeImage(dir + QStringLiteral("stripped.jpg"), 40, 30, QStringLiteral("strip"));
    mMeta meta;
    const QString truth = testsupport::exiftool(dated, QStringLiteral("DateTimeOriginal"));
    ASSERT_EQ(truth, QStringLiteral("2019:07:14 18:03:22"));
    for (const QString& name : {kDate, QStringLiteral("EXIF Creaton Date"),
                                QStringLiteral("exif user comment"), QString()}) {
        SCOPED_TRACE(name.toStdString());
        EXPECT_EQ(meta.hGetExifUc(dated, name), truth);
        EXPECT_EQ(meta.hGetExifUc(undated, name), QString());
        EXPECT_EQ(meta.hGetExifUc(stripped, name), QString());
    }
    EXPECT_EQ(meta.hGetExifUc(dated, kComment), QStringLiteral("Harbour"));
    EXPECT_EQ(meta.hGetExifUc(undated, kComment), QString());
    EXPECT_EQ(meta.hGetExifUc(stripped, kComment), QString());
}

class IptcFixture : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        dir = testsupport::freshDir(QStringLiteral("meta/iptc"));
        tagged = makeImage(dir + QStringLiteral("tagged.jpg"));
        tag(tagged, {
                        QStringLiteral("-IPTC:CodedCharacterSet=UTF8"),
                        QStringLiteral("-IPTC:By-lineTitle=Staff Photographer"),
                        QStringLiteral("-IPTC:By-lineTitle=Editor"),
                        QStringLiteral("-IPTC:Caption-Abstract=Boats in the harbour"),
                        QStringLiteral("-IPTC:Keywords=Beach"),
                        QStringLiteral("-IPTC:Keywords=Sea"),
                        QStringLiteral("-IPTC:Keywords=Summer"),
                        QStringLiteral("-IPTC:City=Zürich"),
                        QStringLiteral("-IPTC:Writer-Editor=Ann Writer"),
                        QStringLiteral("-IPTC:CopyrightNotice=© 2019 Ann"),
                        QStringLiteral("-IPTC:Country-PrimaryLocationName=Switzerland"),
                        QStringLiteral("-IPTC:Credit=Ann Photo"),
                        QStringLiteral("-IPTC:Headline=Evening light"),
                        QStringLiteral("-IPTC:SubjectReference=IPTC:04000000"),
                        QStringLiteral("-IPTC:Province-State=ZH"),
                    });
        cityOnly = makeImage(dir + QStringLiteral("city-only.jpg"));
        tag(cityOnly, {QStringLiteral("-IPTC:City=Lyon")});
        noIptc = makeImage(dir + QStringLiteral("no-iptc.jpg"));
    }
    static inline QString dir, tagged, cityOnly, noIptc;
};

TEST_F(IptcFixture, EveryNameAgainstExiftool) {
    struct Case {
        const char* name;
        const char* exiftoolTag;
        const char* expected;
    } cases[] = {
        {"IPTC Creator Title", nullptr, "Staff Photographer"},
        {"IPTC Caption", "Caption-Abstract", "Boats in the harbour"},
        {"IPTC Keyword", nullptr, "Beach; Sea; Summer"},
        {"IPTC City", "City", "Zürich"},
        {"IPTC Caption Writer", "Writer-Editor", "Ann Writer"},
        {"IPTC Copyrights", "CopyrightNotice", "© 2019 Ann"},
        {"IPTC Country", "Country-PrimaryLocationName", "Switzerland"},
        {"IPTC Credits", "Credit", "Ann Photo"},
        {"IPTC Headline", "Headline", "Evening light"},
        {"IPTC Subject Code", "SubjectReference", "IPTC:04000000"},
        {"IPTC State Province", "Province-State", "ZH"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        mMeta meta;
        const QString value = meta.hGetSomeIPTC(tagged, QString::fromUtf8(c.name));
        EXPECT_EQ(value, QString::fromUtf8(c.expected));
        if (c.exiftoolTag) {
            EXPECT_EQ(value, testsupport::exiftool(tagged, QString::fromLatin1(c.exiftoolTag)));
        }
        // The same name on a photo that lacks the item, or has no IPTC at all, reads "".
        EXPECT_EQ(meta.hGetSomeIPTC(cityOnly, QString::fromUtf8(c.name)),
                  QString::fromUtf8(c.name) == u"IPTC City" ? QStringLiteral("Lyon") : QString());
        EXPECT_EQ(meta.hGetSomeIPTC(noIptc, QString::fromUtf8(c.name)), QString());
    }
}

TEST_F(IptcFixture, UnknownNameReturnsThePreviousValueOfTheSameObject) {
    const QString description = QStringLiteral("IPTC Description");
    mMeta fresh;
    EXPECT_EQ(fresh.hGetSomeIPTC(tagged, description), QString());

    mMeta meta;
    EXPECT_EQ(meta.hGetSomeIPTC(tagged, QStringLiteral("IPTC City")), QStringLiteral("Zürich"));
    EXPECT_EQ(meta.hGetSomeIPTC(tagged, description), QStringLiteral("Zürich"));
    // Carried over to the next photo, as long as that photo has IPTC data.
    EXPECT_EQ(meta.hGetSomeIPTC(cityOnly, description), QStringLiteral("Zürich"));
    EXPECT_EQ(meta.hGetSomeIPTC(noIptc, description), QString());
    EXPECT_EQ(meta.hGetSomeIPTC(cityOnly, QStringLiteral("iptc city")), QStringLiteral("Zürich"));
    // A missing file reads nothing and leaves the value alone.
    EXPECT_EQ(meta.hGetSomeIPTC(dir + QStringLiteral("missing.jpg"), description), QString());
    EXPECT_EQ(meta.hGetSomeIPTC(cityOnly, description), QStringLiteral("Zürich"));
    // A known name that the photo lacks clears it.
    EXPECT_EQ(meta.hGetSomeIPTC(cityOnly, QStringLiteral("IPTC Headline")), QString());
    EXPECT_EQ(meta.hGetSomeIPTC(tagged, description), QString());
}

TEST(MetaReader, KeywordJoiningSkipsTheSeparatorWhileTheTextIsEmpty) {
    const QString dir = testsupport::freshDir(QStringLiteral("meta/keywords"));
    struct Case {
        QStringList keywords;
        QString expected;
    } cases[] = {
        {{QStringLiteral("Beach"), QStringLiteral("Sea"), QStringLiteral("Summer")},
         QStringLiteral("Beach; Sea; Summer")},
        {{QStringLiteral("Solo")}, QStringLiteral("Solo")},
        {{QString(), QStringLiteral("Sea")}, QStringLiteral("Sea")},
        {{QStringLiteral("Sea"), QString(), QStringLiteral("Sky")}, QStringLiteral("Sea; ; Sky")},
        {{}, QString()},
    };
    int n = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.keywords.join(u'|').toStdString());
        const QString file = makeImage(dir + QString::number(n++) + QStringLiteral(".jpg"));
        auto image = Exiv2::ImageFactory::open(QFile::encodeName(file).toStdString());
        image->readMetadata();
        Exiv2::IptcData iptc;
        iptc["Iptc.Application2.City"] = "Somewhere";
        for (const QString& keyword : c.keywords) {
            Exiv2::StringValue value(keyword.toStdString());
            iptc.add(Exiv2::IptcKey("Iptc.Application2.Keywords"), &value);
        }
        image->setIptcData(iptc);
        image->writeMetadata();
        EXPECT_EQ(mMeta().hGetSomeIPTC(file, QStringLiteral("IPTC Keyword")), c.expected);
    }
}

TEST(MetaReader, PixelSizeFromTheHeader) {
    const QString dir = testsupport::freshDir(QStringLiteral("meta/pixels"));
    struct Case {
        const char* name;
        int width, height;
    } cases[] = {{"wide.jpg", 64, 20},   {"tall.jpg", 17, 90},  {"small.png", 33, 12},
                 {"gray.png", 5, 7},     {"big.tif", 300, 200}, {"one.jpg", 1, 1},
                 {"plain.jpg", 640, 480}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const QString file = makeImage(dir + QString::fromLatin1(c.name), c.width, c.height);
        mMeta meta;
        EXPECT_EQ(meta.hGetPixelFormat(file),
                  (QStringList{QString::number(c.width), QString::number(c.height)}));
        const auto source = meta.getMyImageSource(file);
        ASSERT_TRUE(source);
        EXPECT_EQ(meta.hGetPixelFormatFromSource(*source), (QList<qint64>{c.width, c.height}));
    }
}

TEST(MetaReader, ColourProfileNames) {
    const QString dir = testsupport::freshDir(QStringLiteral("meta/profiles"));
    struct Case {
        const char* name;
        const char* options;
        int bands;
        const char* expected;
    } cases[] = {
        {"plain.jpg", "", 3, "sRGB"},        {"plain.png", "", 3, "sRGB"},
        {"plain.tif", "", 3, "sRGB"},        {"gray.jpg", "", 1, "Gray"},
        {"gray.png", "", 1, "Gray"},         {"gray.tif", "", 1, "Gray"},
        {"p3.jpg", "profile=p3", 3, "sP3C"}, {"p3.png", "profile=p3", 3, "sP3C"},
        {"p3.tif", "profile=p3", 3, "sP3C"}, {"srgb.jpg", "profile=srgb", 3, "sRGB"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const QString file = makeImage(dir + QString::fromLatin1(c.name), 20, 20,
                                       QString::fromLatin1(c.options), c.bands);
        EXPECT_EQ(mMeta().hGetColorProfile(file), QString::fromLatin1(c.expected));
        if (*c.options) {
            EXPECT_EQ(mMeta().hGetColorProfile(file),
                      testsupport::exiftool(file, QStringLiteral("ProfileDescription")));
        }
    }
    const QString adobe = makeImage(dir + QStringLiteral("adobe.jpg"));
    tag(adobe, {QStringLiteral("-ColorSpace#=65535"), QStringLiteral("-InteropIndex=R03")});
    EXPECT_EQ(mMeta().hGetColorProfile(adobe), QStringLiteral("Adobe RGB (1998)"));
    EXPECT_EQ(mMeta().hGetColorProfile(dir + QStringLiteral("missing.jpg")), QString());
}

namespace {

const MetaTreeNode* child(const QList<MetaTreeNode>& nodes, const QString& key) {
    for (const MetaTreeNode& node : nodes)
        if (node.key == key) return &node;
    return nullptr;
}

void expectSortedAndWellFormed(const QList<MetaTreeNode>& nodes) {
    for (qsizetype i = 1; i < nodes.size(); ++i) EXPECT_LT(nodes[i - 1].key, nodes[i].key);
    for (const MetaTreeNode& node : nodes) {
        EXPECT_FALSE(node.key.isEmpty());
        if (!node.children.isEmpty()) {
            EXPECT_EQ(node.val, QString()) << node.key.toStdString();
            expectSortedAndWellFormed(node.children);
        }
    }
}

}  // namespace

TEST(MetaReader, TreeGroupsEveryFamily) {
    const QString dir = testsupport::freshDir(QStringLiteral("meta/tree"));
    const QString file = makeImage(dir + QStringLiteral("tagged.jpg"));
    tag(file, {QStringLiteral("-UserComment=Harbour at dusk"),
               QStringLiteral("-DateTimeOriginal=2019:07:14 18:03:22"),
               QStringLiteral("-IPTC:City=Lyon"), QStringLiteral("-IPTC:Keywords=Beach"),
               QStringLiteral("-IPTC:Keywords=Sea"), QStringLiteral("-XMP-dc:Creator=Ann")});
    mMeta meta;
    const QList<MetaTreeNode> tree = meta.propTree(file);
    EXPECT_EQ(meta.myVarTree.size(), tree.size());
    ASSERT_EQ(tree.size(), 3);
    EXPECT_EQ(tree[0].key, QStringLiteral("Exif"));
    EXPECT_EQ(tree[1].key, QStringLiteral("IPTC"));
    EXPECT_EQ(tree[2].key, QStringLiteral("XMP"));
    expectSortedAndWellFormed(tree);

    const MetaTreeNode* photo = child(tree[0].children, QStringLiteral("Photo"));
    ASSERT_TRUE(photo);
    const MetaTreeNode* comment = child(photo->children, QStringLiteral("User Comment"));
    ASSERT_TRUE(comment);
    EXPECT_EQ(comment->val, QStringLiteral("Harbour at dusk"));
    const MetaTreeNode* date = child(photo->children, QStringLiteral("Date and Time (original)"));
    ASSERT_TRUE(date);
    EXPECT_EQ(date->val, QStringLiteral("2019:07:14 18:03:22"));

    const MetaTreeNode* application = child(tree[1].children, QStringLiteral("Application2"));
    ASSERT_TRUE(application);
    const MetaTreeNode* city = child(application->children, QStringLiteral("City"));
    ASSERT_TRUE(city);
    EXPECT_EQ(city->val, QStringLiteral("Lyon"));
    const MetaTreeNode* keywords = child(application->children, QStringLiteral("Keywords"));
    ASSERT_TRUE(keywords);
    EXPECT_EQ(keywords->val, QStringLiteral("Beach; Sea"));

    const MetaTreeNode* dc = child(tree[2].children, QStringLiteral("dc"));
    ASSERT_TRUE(dc);
    ASSERT_FALSE(dc->children.isEmpty());
    EXPECT_TRUE(dc->children[0].val.contains(QStringLiteral("Ann")));

    // A file without metadata has an empty tree; so has a file that is not an image.
    EXPECT_TRUE(meta.propTree(makeImage(dir + QStringLiteral("bare.png"))).isEmpty());
    EXPECT_TRUE(meta.propTree(dir + QStringLiteral("missing.jpg")).isEmpty());
    EXPECT_TRUE(meta.myVarTree.isEmpty());
}

TEST(MetaReader, EditorShowsCommentOrMessage) {
    const QString dir = testsupport::freshDir(QStringLiteral("meta/editor"));
    const QString commented = makeImage(dir + QStringLiteral("commented.jpg"));
    tag(commented, {QStringLiteral("-UserComment=Quay")});
    const QString plain = makeImage(dir + QStringLiteral("plain.jpg"));
    const QString text = dir + QStringLiteral("notes.jpg");
    metafixtures::writeBytes(text, "just some words, not an image\n");

    mMeta meta;
    EXPECT_FALSE(meta.hiDoNothing(commented).isEmpty());
    EXPECT_EQ(meta.tfExifUserComment, QStringLiteral("Quay"));
    EXPECT_FALSE(meta.hiDoNothing(plain).isEmpty());
    EXPECT_EQ(meta.tfExifUserComment, QStringLiteral("No user comment available."));
    EXPECT_TRUE(meta.hiDoNothing(text).isEmpty());
    EXPECT_TRUE(meta.myVarTree.isEmpty());
    EXPECT_EQ(meta.tfExifUserComment, QStringLiteral("This file type is not supported."));
}

#include <exiv2/exiv2.hpp>

#include "metadata/KLFileProperty.h"
#include "metadata/MetaFixtures.h"
#include "metadata/mMeta.h"

using namespace metafixtures;
using testsupport::exiftool;

TEST(KLFileProperty, FileNameParts) {
    const std::pair<QString, QStringList> cases[] = {
        {"/photos/archive.tar.gz", {"archive.tar.gz", "gz", "archive.tar"}},
        {"/photos/.hidden", {".hidden", "", ".hidden"}},
        {"/photos/Été à Zürich.png", {"Été à Zürich.png", "png", "Été à Zürich"}}};
    for (const auto& [path, parts] : cases)
        EXPECT_EQ(KLFileProperty().hGetFileNameProps(path), parts) << path;
}

// Comments as cameras store them, written byte for byte through Exiv2: an 8-byte charset prefix,
// the text, often padding.
TEST(MetaReader, UserCommentsAgainstExiftool) {
    const QString dir = testsupport::freshDir("meta/comments");
    const QByteArray ascii("ASCII\0\0\0", 8), nuls(40, '\0');
    const QString text = "Grüße, 東京";
    const QByteArray ucs2(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
    const std::pair<QByteArray, QString> cases[] = {
        {ascii + " Sunset at the pier", " Sunset at the pier"},  // a leading space is kept
        {ascii + "   ", ""},                                     // spaces only: no comment
        {ascii + "Hello" + nuls, "Hello"},
        {ascii + nuls, ""},
        {QByteArray(8, '\0') + "Hi there", "Hi there"},
        {QByteArray("UNICODE\0", 8) + ucs2 + nuls, text},
        {"AB", ""},
    };
    int n = 0;
    for (const auto& [raw, expected] : cases) {
        SCOPED_TRACE(n);
        const QString file = makeImage(dir + QString::number(n++) + ".jpg");
        auto image = Exiv2::ImageFactory::open(QFile::encodeName(file).toStdString());
        image->exifData()["Exif.Photo.UserComment"] = Exiv2::DataValue(
            reinterpret_cast<const Exiv2::byte*>(raw.constData()), long(raw.size()));
        image->writeMetadata();
        EXPECT_EQ(mMeta().hGetExifUc(file, "EXIF User Comment"), expected);
        // exiftool's reading is the truth; a comment of blanks or nothing reads as none. A value
        // shorter than its 8-byte character-code header is no comment; exiftool shows its bytes.
        const QString truth = exiftool(file, "UserComment");
        EXPECT_EQ(raw.size() < 8 || truth.trimmed().isEmpty() ? QString() : truth, expected);
    }
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

TEST(MetaReader, EveryNameTheEditorAndTheProfileAgainstExiftool) {
    const QString dir = testsupport::freshDir("meta/names");
    QStringList assignments{"-sep", ", ", "-IPTC:CodedCharacterSet=UTF8",
                            "-DateTimeOriginal=2019:07:14 18:03:22", "-UserComment=Harbour"};
    for (const auto& item : kIptc) assignments << "-IPTC:" + item.tag + "=" + item.stored;
    const QString tagged = makeImage(dir + "tagged.jpg"), cityOnly = makeImage(dir + "city.jpg");
    const QString bare = makeImage(dir + "bare.jpg", 40, 30, "strip");
    tag(tagged, assignments);
    tag(cityOnly, {"-IPTC:City=Lyon"});
    mMeta meta;

    // Every EXIF name but the user comment (tagged too) reads the creation date.
    for (const QString name : {"EXIF Creation Date", "EXIF Creaton Date", "exif user comment"}) {
        EXPECT_EQ(meta.hGetExifUc(tagged, name), "2019:07:14 18:03:22") << name;
        EXPECT_EQ(meta.hGetExifUc(bare, name), QString());
    }

    for (const auto& c : kIptc) {
        SCOPED_TRACE(c.name);
        // exiftool lists repeated items with ", ": the title is the first, keywords all of them.
        const QStringList truth = exiftool(tagged, c.tag).split(", ");
        EXPECT_EQ(meta.hGetSomeIPTC(tagged, c.name), c.expected);
        EXPECT_EQ(c.expected, c.name == "IPTC Creator Title" ? truth.first() : truth.join("; "));
        // A photo that lacks the item (the creator title included), or has no IPTC at all.
        EXPECT_EQ(meta.hGetSomeIPTC(cityOnly, c.name), c.name == "IPTC City" ? "Lyon" : "");
        EXPECT_EQ(meta.hGetSomeIPTC(bare, c.name), QString());
    }

    // "IPTC Description" is no name of the reader: it repeats the same reader's previous value
    // (kept on purpose), for a photo with IPTC data only; a known name replaces that value.
    EXPECT_EQ(mMeta().hGetSomeIPTC(tagged, "IPTC Description"), QString());
    QStringList seen;
    const std::pair<QString, const char*> reads[] = {
        {tagged, "IPTC City"},      {tagged, "IPTC Description"}, {cityOnly, "IPTC Description"},
        {bare, "IPTC Description"}, {cityOnly, "IPTC Headline"},  {tagged, "IPTC Description"}};
    for (const auto& [photo, name] : reads) seen << meta.hGetSomeIPTC(photo, name);
    EXPECT_EQ(seen.join('|'), "Zürich|Zürich|Zürich|||");

    // Keywords are joined with no separator while the joined text is still empty.
    for (const auto& [stored, joined] : {std::pair{"|Sea", "Sea"}, {"Sea||Sky", "Sea; ; Sky"}}) {
        tag(cityOnly, {"-sep", "|", "-IPTC:Keywords=" + QString(stored)});
        EXPECT_EQ(meta.hGetSomeIPTC(cityOnly, "IPTC Keyword"), joined);
    }

    // The editor's tree (its layout checked through "meta tree" and the window) and the profile.
    const QString adobe = makeImage(dir + "adobe.jpg");
    const QString p3 = makeImage(dir + "p3.tif", 40, 30, "profile=p3");
    tag(adobe, {"-ColorSpace#=65535", "-InteropIndex=R03"});
    mMeta editor;
    EXPECT_TRUE(editor.hiDoNothing(bare).isEmpty());
    EXPECT_EQ(editor.tfExifUserComment, "No user comment available.");
    EXPECT_EQ(editor.hGetColorProfile(bare), "sRGB");
    EXPECT_EQ(editor.hGetColorProfile(p3), exiftool(p3, "ProfileDescription"));
    EXPECT_EQ(editor.hGetColorProfile(adobe), "Adobe RGB (1998)");
}

TEST(MetaReader, EveryCameraPhotoReads) {
    const QStringList photos = testsupport::mateBackgroundJpegs();
    ASSERT_FALSE(photos.isEmpty()) << "mate-backgrounds is not installed";
    for (const QString& photo : photos) {
        SCOPED_TRACE(photo);
        mMeta meta;
        QString header;  // "PATH: 1900x1200 uchar, 3 bands, srgb, jpegload"
        ASSERT_EQ(testsupport::runProgram("vipsheader", {photo}, &header), 0);
        EXPECT_EQ(meta.hGetPixelFormat(photo).join("x"),
                  header.section(": ", -1).section(' ', 0, 0));
        EXPECT_EQ(meta.hGetExifUc(photo, "EXIF User Comment").trimmed(),
                  exiftool(photo, "UserComment").trimmed());
        EXPECT_EQ(meta.hGetExifUc(photo, "EXIF Creation Date"),
                  exiftool(photo, "EXIF:DateTimeOriginal"));
        EXPECT_EQ(meta.hGetSomeIPTC(photo, "IPTC City"), exiftool(photo, "IPTC:City"));
        for (const auto& item : kIptc) meta.hGetSomeIPTC(photo, item.name);
        EXPECT_FALSE(meta.hGetColorProfile(photo).isEmpty());
        meta.hiDoNothing(photo);
    }
}

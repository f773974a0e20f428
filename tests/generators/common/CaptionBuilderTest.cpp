#include "generators/GeneratorFixtures.h"
#include "generators/common/CaptionBuilder.h"

// Items in order, empty values and unknown names skipped, the separator between values; the file
// name item is the name with its extension in the gallery and the base name in the other kinds.
TEST(CaptionBuilder, ItemsInOrderSkippingEmptyValues) {
    const QString src = gen::freshDir("captions-src");
    const QString photo = gen::makePhoto(src, "shot.jpg", 40, 30);
    fixtures::tag(photo, {"-IPTC:City=Lyon", "-IPTC:Headline=Sunset",
                          "-EXIF:DateTimeOriginal=2019:07:14 18:03:22"});
    const QString bare = gen::makePhoto(src, "bare.jpg", 40, 30);
    using F = CaptionBuilder::FileName;
    const std::tuple<QString, QString, QString, QString, F, QString> cases[] = {
        {"IPTC City;Show Filename", " - ", bare, "", F::WithExtension, "bare.jpg"},
        {"IPTC City;Show Filename", " - ", photo, "", F::WithExtension, "Lyon - shot.jpg"},
        {"Show Filename;IPTC City", " / ", photo, "", F::BaseName, "shot / Lyon"},
        {"EXIF User Comment;Nonsense;IPTC Headline", "|", photo, "Hello", F::BaseName,
         "Hello|Sunset"},
        {"EXIF User Comment;EXIF Creation Date", ", ", photo, "", F::WithExtension,
         "2019:07:14 18:03:22"},
        {"", "-", photo, "Hello", F::WithExtension, ""},
    };
    for (const auto& [items, separator, path, description, rule, caption] : cases) {
        CaptionBuilder builder(items, separator, rule);
        EXPECT_EQ(builder.caption({QUrl::fromLocalFile(path), description}), caption) << items;
    }
    EXPECT_EQ(CaptionBuilder::withItem("", "IPTC City"), "IPTC City");
    EXPECT_EQ(CaptionBuilder::withItem("IPTC City", "Show Filename"), "IPTC City;Show Filename");
}

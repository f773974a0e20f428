#include <gtest/gtest.h>

#include "metadata/KLFileProperty.h"

TEST(KLFileProperty, FileNameParts) {
    struct Case {
        const char* path;
        QStringList parts;
    } cases[] = {
        {"/a/b/IMG_1.jpeg", {"IMG_1.jpeg", "jpeg", "IMG_1"}},
        {"IMG_1.JPG", {"IMG_1.JPG", "JPG", "IMG_1"}},
        {"/photos/archive.tar.gz", {"archive.tar.gz", "gz", "archive.tar"}},
        {"/photos/README", {"README", "", "README"}},
        {"/photos/.hidden", {".hidden", "", ".hidden"}},
        {"/photos/dotted.dir/plain", {"plain", "", "plain"}},
        {"/photos/Été à Zürich.png", {"Été à Zürich.png", "png", "Été à Zürich"}},
        {"/photos/trailing/", {"trailing", "", "trailing"}},
    };
    const KLFileProperty property;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(property.hGetFileNameProps(QString::fromUtf8(c.path)), c.parts);
    }
}

TEST(KLFileProperty, NoColourLabelsHere) {
    EXPECT_EQ(KLFileProperty().klGetFileLabel(QStringLiteral("/usr/share")),
              QStringLiteral("none"));
    EXPECT_EQ(KLFileProperty().klGetFileLabel(QStringLiteral("/no/such/file")),
              QStringLiteral("none"));
}

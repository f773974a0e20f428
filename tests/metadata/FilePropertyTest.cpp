#include <gtest/gtest.h>

#include "metadata/KLFileProperty.h"

TEST(KLFileProperty, FileNamePartsAndLabel) {
    const std::pair<QString, QStringList> cases[] = {
        {"/a/b/IMG_1.jpeg", {"IMG_1.jpeg", "jpeg", "IMG_1"}},
        {"/photos/archive.tar.gz", {"archive.tar.gz", "gz", "archive.tar"}},
        {"/photos/.hidden", {".hidden", "", ".hidden"}},
        {"/photos/Été à Zürich.png", {"Été à Zürich.png", "png", "Été à Zürich"}},
    };
    const KLFileProperty property;
    for (const auto& [path, parts] : cases)
        EXPECT_EQ(property.hGetFileNameProps(path), parts) << path.toStdString();
    // No colour labels on this platform, and none for a missing file.
    EXPECT_EQ(property.klGetFileLabel("/usr/share"), "none");
    EXPECT_EQ(property.klGetFileLabel("/no/such/file"), "none");
}

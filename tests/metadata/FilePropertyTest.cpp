#include <gtest/gtest.h>

#include "metadata/KLFileProperty.h"

TEST(KLFileProperty, FileNameParts) {
    const std::pair<QString, QStringList> cases[] = {
        {"/photos/archive.tar.gz", {"archive.tar.gz", "gz", "archive.tar"}},
        {"/photos/.hidden", {".hidden", "", ".hidden"}},
        {"/photos/Été à Zürich.png", {"Été à Zürich.png", "png", "Été à Zürich"}},
    };
    for (const auto& [path, parts] : cases)
        EXPECT_EQ(KLFileProperty().hGetFileNameProps(path), parts) << path.toStdString();
}

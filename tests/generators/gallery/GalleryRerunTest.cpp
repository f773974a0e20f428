// Running a gallery again into the same folder, on real camera photos: what is unchanged is kept as
// the same file, what changed is made again, and the folder always ends as a full run leaves it.
#include <gtest/gtest.h>

#include <QDateTime>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <functional>

#include "generators/common/RunManifest.h"
#include "generators/gallery/cResponsiveDesign.h"
#include "support/TestSupport.h"

using testsupport::freshDir;

namespace {

QByteArray readFile(const QString& path) {
    return testsupport::readFile(path, "<missing>");
}

// Three small camera photos copied as p1.jpg, p2.jpg, p3.jpg, and a fourth as spare.jpg.
QStringList copyPhotos(const QString& dir) {
    QStringList chosen;
    for (const QString& jpeg : testsupport::mateBackgroundJpegs())
        if (QFileInfo(jpeg).size() < 400000 && chosen.size() < 4) chosen.append(jpeg);
    EXPECT_EQ(chosen.size(), 4);
    QStringList copies;
    for (int i = 0; i < chosen.size(); ++i) {
        copies.append(dir + (i < 3 ? QStringLiteral("p%1.jpg").arg(i + 1) : "spare.jpg"));
        EXPECT_TRUE(QFile::copy(chosen[i], copies.last()));
    }
    return copies;
}

// Every file under `dir` but the hidden record: relative path -> identity (inode and time).
QMap<QString, RunManifest::FileState> identities(const QString& dir) {
    QMap<QString, RunManifest::FileState> files;
    for (QDirIterator it(dir, QDir::Files, QDirIterator::Subdirectories); it.hasNext();) {
        const QString path = it.next();
        files.insert(path.mid(dir.size()), RunManifest::stateOf(path));
    }
    return files;
}

RunResult runGallery(const QString& dest, const QStringList& photos, const QStringList& set,
                     RecordingUserInterface& ui, bool rebuild = false) {
    std::vector<std::pair<QString, QString>> overrides = {
        {"tfSmallCropWidth", "40"}, {"pubPhotoRatio", "0"},   {"tfSmallCropHeight", "30"},
        {"tfBigCropWidth", "120"},  {"tfBigCropHeight", "0"}, {"ifNumberOfColumns", "2"},
        {"ifNumberOfRows", "1"}};
    for (const QString& s : set) overrides.push_back({s.section('=', 0, 0), s.section('=', 1)});
    QList<PhotoEntry> entries;
    for (const QString& photo : photos) entries.append({QUrl::fromLocalFile(photo), {}});
    RunOptions options{dest, 2, false, false, rebuild};
    return cResponsiveDesign::run(entries, testsupport::settingsWith(overrides), ui, options);
}

}  // namespace

TEST(GalleryRerun, KeepsWhatIsUnchangedAndEndsAsAFullRun) {
    using Change = std::function<void(const QString& dest, const QStringList& photos)>;
    const Change none = [](const QString&, const QStringList&) {};
    const struct {
        const char* name;
        Change change;
        QStringList set;
        QStringList remade;  // images made again; every other file keeps its identity
        size_t alerts = 0;
        bool rebuild = false;
    } cases[] = {
        {"identical second run", none, {}, {}, 0},
        {"one photo replaced",
         [](const QString&, const QStringList& p) {
             QFile::remove(p[1]);
             QFile::copy(p[3], p[1]);
         },
         {},
         {"KLimages_b/p2.jpeg", "KLimages_s/p2.jpeg"},
         0},
        {"photo's time changed",
         [](const QString&, const QStringList& p) {
             QFile file(p[0]);
             ASSERT_TRUE(file.open(QIODevice::ReadWrite) &&
                         file.setFileTime(QDateTime::currentDateTime().addDays(-1),
                                          QFileDevice::FileModificationTime));
         },
         {},
         {"KLimages_b/p1.jpeg", "KLimages_s/p1.jpeg"}},
        {"rebuild",
         none,
         {},
         {"KLimages_b/p1.jpeg", "KLimages_b/p2.jpeg", "KLimages_b/p3.jpeg", "KLimages_s/p1.jpeg",
          "KLimages_s/p2.jpeg", "KLimages_s/p3.jpeg"},
         0,
         true},
        {"big image size changed",
         none,
         {"tfBigCropWidth=100"},
         {"KLimages_b/p1.jpeg", "KLimages_b/p2.jpeg", "KLimages_b/p3.jpeg", "KLimages_s/p1.jpeg",
          "KLimages_s/p2.jpeg", "KLimages_s/p3.jpeg"},
         0},
        {"big image deleted",
         [](const QString& d, const QStringList&) { QFile::remove(d + "KLimages_b/p3.jpeg"); },
         {},
         {"KLimages_b/p3.jpeg", "KLimages_s/p3.jpeg"},
         0},
        {"thumbnail altered",
         [](const QString& d, const QStringList&) {
             QFile file(d + "KLimages_s/p1.jpeg");
             ASSERT_TRUE(file.open(QIODevice::Append));
             file.write("x");
         },
         {},
         {"KLimages_b/p1.jpeg", "KLimages_s/p1.jpeg"},
         0},
        {"record damaged",
         [](const QString& d, const QStringList&) {
             QFile file(d + ".orvella-manifest");
             ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
             file.write("{\"format\": 1, \"files\": [{\"path\": \"KLimages_b/p1.jpeg\"");
         },
         {},
         {"KLimages_b/p1.jpeg", "KLimages_b/p2.jpeg", "KLimages_b/p3.jpeg", "KLimages_s/p1.jpeg",
          "KLimages_s/p2.jpeg", "KLimages_s/p3.jpeg"},
         1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const QStringList photos = copyPhotos(freshDir("gallery-rerun-src"));
        const QString dest = freshDir("gallery-rerun-out");
        RecordingUserInterface ui;
        const RunResult first = runGallery(dest, photos.mid(0, 3), {}, ui);
        ASSERT_TRUE(first.ok && first.failures.isEmpty())
            << first.failures.join('\n').toStdString();
        ASSERT_TRUE(QFile::exists(dest + ".orvella-manifest"));
        c.change(dest, photos);
        const QMap<QString, RunManifest::FileState> before = identities(dest);

        const RunResult second = runGallery(dest, photos.mid(0, 3), c.set, ui, c.rebuild);
        EXPECT_TRUE(second.ok && second.failures.isEmpty())
            << second.failures.join('\n').toStdString();
        EXPECT_EQ(ui.alerts.size(), c.alerts);
        const QMap<QString, RunManifest::FileState> after = identities(dest);
        QStringList remade;
        for (auto it = after.cbegin(); it != after.cend(); ++it)
            if (it.key().startsWith("KLimages_") && before.value(it.key()) != *it)
                remade.append(it.key());
        EXPECT_EQ(remade, c.remade);
        for (auto it = after.cbegin(); it != after.cend(); ++it) {
            // Nothing but the images named changed identity, unless a setting changed.
            if (c.set.isEmpty() && !it.key().startsWith("KLimages_")) {
                EXPECT_EQ(before.value(it.key()), *it) << it.key().toStdString();
            }
        }

        // Byte for byte what a full run into an empty folder writes.
        const QString full = freshDir("gallery-rerun-full");
        RecordingUserInterface fullUi;
        ASSERT_TRUE(runGallery(full, photos.mid(0, 3), c.set, fullUi).ok);
        const QMap<QString, RunManifest::FileState> expected = identities(full);
        EXPECT_EQ(after.keys(), expected.keys());
        for (const QString& file : expected.keys())
            EXPECT_EQ(readFile(dest + file), readFile(full + file)) << file.toStdString();
    }
}

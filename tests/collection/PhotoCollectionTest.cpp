#include <gtest/gtest.h>

#include <QDir>
#include <QRandomGenerator>

#include "collection/PhotoCollection.h"
#include "metadata/MetaFixtures.h"

namespace {

using metafixtures::makeImage;

// Records named as given, each with a description "about NAME".
QList<cCollectionViewItem> named(const QStringList& list) {
    QList<cCollectionViewItem> records(list.size());
    for (qsizetype i = 0; i < list.size(); ++i) {
        records[i].myPhotoName = list[i];
        records[i].myPhotoURL = QUrl::fromLocalFile("/photos/" + list[i]);
        records[i].myPhotoDescription = "about " + list[i];
    }
    return records;
}

// The names of the records in display order, or of the photos a generator receives.
QString names(const PhotoCollection& collection, bool published = false) {
    QStringList result;
    for (const PhotoEntry& entry : collection.hGetPhotosFromArrayController())
        if (published) result.append(entry.url.fileName());
    for (const auto& record : collection.arrangedObjects())
        if (!published) result.append(record.myPhotoName);
    return result.join(u' ');
}

TEST(PhotoCollection, RecordsFromPhotoFiles) {
    const QString dir = testsupport::freshDir("collection/records");
    // File, pixel size, EXIF user comment, and the orientation and caption expected.
    const std::tuple<QString, int, int, QString, QString, QString> cases[] = {
        {"square.jpg", 3000, 3000, " Sunset at the pier", "V", " Sunset at the pier"},
        {"blank.jpg", 64, 48, "     ", "H", ""},  // spaces only: no caption
        {"landscape.png", 641, 480, "", "H", ""},
        {"portrait.tif", 480, 641, "", "V", ""},
    };
    QStringList paths;
    for (const auto& [file, width, height, comment, orientation, caption] : cases) {
        paths.append(makeImage(dir + file, width, height));
        metafixtures::tag(paths.last(), {"-UserComment=" + comment});
    }
    PhotoCollection collection;
    collection.setCellImageSize(0);
    ASSERT_EQ(collection.appendPhotos(paths), 4);
    EXPECT_EQ(collection.appendPhotos({paths[0]}), 1);  // the same file again: a second record
    const auto& records = collection.arrangedObjects();
    for (int i = 0; i < 4; ++i) {
        const auto& [file, width, height, comment, orientation, caption] = cases[i];
        SCOPED_TRACE(file.toStdString());
        EXPECT_EQ(records[i].myPhotoName, file);
        EXPECT_EQ(records[i].myPhotoPxSize, testsupport::exiftool(paths[i], "ImageSize"));
        EXPECT_EQ(records[i].myPhotoOrientation, orientation);
        EXPECT_EQ(records[i].myPhotoDescription, caption);
        EXPECT_EQ(records[i].myPhotoHighLight, 0);
    }
    EXPECT_EQ(records[0].myPhotoPxSize, "3000x3000");
    EXPECT_EQ(collection.tfImageCount(), "5");
    ASSERT_EQ(collection.hGetPhotosFromArrayController().size(), 5);
    EXPECT_EQ(collection.hGetPhotosFromArrayController()[4].url, records[0].myPhotoURL);
}

TEST(PhotoCollection, BadFilesAreSkippedAndTheRestAdded) {
    const QString dir = testsupport::freshDir("collection/bad");
    const QStringList photos = testsupport::mateBackgroundJpegs();
    ASSERT_FALSE(photos.isEmpty());
    const QByteArray photo = metafixtures::bytes(photos.first());
    QByteArray noise(4096, '\0');
    QRandomGenerator(7).fillRange(reinterpret_cast<quint32*>(noise.data()), noise.size() / 4);
    // A photo cut in half keeps its header, so it has a pixel size and is added.
    metafixtures::writeBytes(dir + "zero.jpg", {});
    metafixtures::writeBytes(dir + "random.jpg", noise);
    metafixtures::writeBytes(dir + "cut.jpg", photo.left(photo.size() / 2));
    QDir().mkpath(dir + "x.jpg");
    ASSERT_TRUE(QFile::rename(makeImage(dir + "real.png", 20, 10), dir + "png-named.jpg"));
    const QStringList paths = {dir + "zero.jpg",      makeImage(dir + "good1.jpg", 20, 10),
                               dir + "cut.jpg",       dir + "random.jpg",
                               dir + "x.jpg",         dir + "missing.jpg",
                               dir + "png-named.jpg", makeImage(dir + "good2.tif", 10, 20)};
    RecordingUserInterface ui;
    PhotoCollection collection;
    collection.setCellImageSize(64);
    EXPECT_EQ(collection.appendPhotos(paths, &ui), 4);
    EXPECT_EQ(names(collection), "good1.jpg cut.jpg png-named.jpg good2.tif");
    EXPECT_EQ(collection.arrangedObjects()[1].myPhotoPxSize,
              testsupport::exiftool(photos.first(), "ImageSize"));
    EXPECT_EQ(ui.steps, std::vector<double>(8, 12.0));  // 100 / 8 in whole numbers, every file
    EXPECT_TRUE(ui.alerts.empty());
    collection.appendPhotos({}, &ui);  // a cancelled dialog still stops the bar
    EXPECT_EQ(ui.starts, 1);
    EXPECT_EQ(ui.stops, 2);
}

TEST(PhotoCollection, SortRulesAreCaseInsensitiveAndStayInForce) {
    PhotoCollection collection;
    collection.appendRecords(named({"banana", "Apple", "cherry", "apple2"}));
    collection.setSortingModeAz();
    EXPECT_EQ(names(collection), "Apple apple2 banana cherry");
    collection.setSortingModezA();
    EXPECT_EQ(names(collection, true), "cherry banana apple2 Apple");
    collection.appendRecords(named({"Blueberry", "zebra"}));
    EXPECT_EQ(names(collection), "zebra cherry Blueberry banana apple2 Apple");
    // A manual move replaces the rule with the order the user made.
    collection.acceptDrop({5}, 0);
    EXPECT_EQ(names(collection), "Apple zebra cherry Blueberry banana apple2");
    EXPECT_EQ(collection.sortMode(), PhotoCollection::Sort::None);
}

TEST(PhotoCollection, DropMovesRecordsByTheEstablishedAlgorithm) {
    // Five records "0" to "4"; expectations worked out by hand from the drop algorithm. A drop
    // after the last record (5) goes to the end; dragging {0, 1} to 3 moves "2" second, not the
    // dragged "1"; indexes outside the list move nothing.
    const std::tuple<QList<int>, int, QString> cases[] = {
        {{3}, 1, "0 3 1 2 4"},    {{1}, 4, "0 2 3 4 1"},    {{1}, 5, "0 2 3 4 1"},
        {{4}, 5, "0 1 2 3 4"},    {{0}, 0, "0 1 2 3 4"},    {{0, 1}, 3, "1 3 0 4 2"},
        {{3, 1}, 0, "1 3 0 2 4"}, {{2, 3}, 5, "0 1 3 2 4"}, {{0, 4}, 2, "1 2 0 4 3"},
        {{}, 2, "0 1 2 3 4"},     {{9, -1}, 2, "0 1 2 3 4"}};
    for (const auto& [dragged, drop, after] : cases) {
        PhotoCollection collection;
        collection.appendRecords(named({"0", "1", "2", "3", "4"}));
        EXPECT_TRUE(collection.acceptDrop(dragged, drop));
        EXPECT_EQ(names(collection), after) << "drop at " << drop;
        EXPECT_EQ(collection.tfImageCount(), "5");
    }
}

TEST(PhotoCollection, OnlyPublishedRecordsReachTheGeneratorsUntilRemoved) {
    // Select and highlight values as stored: only 1 counts as set.
    QList<cCollectionViewItem> records = named({"a", "b", "c", "d", "e"});
    const int select[] = {1, 0, 2, 1, 1}, highlight[] = {1, 1, 0, 0, 2};
    for (int i = 0; i < 5; ++i) {
        records[i].myPhotoSelect = select[i];
        records[i].myPhotoHighLight = highlight[i];
    }
    PhotoCollection collection;
    collection.appendRecords(records);
    EXPECT_EQ(names(collection, true), "a d e");
    auto grid = collection.hGetGridPhotos();
    ASSERT_EQ(grid.size(), 3);
    EXPECT_EQ(grid[1].url.fileName(), "d");
    EXPECT_EQ((QList<int>{grid[0].highlight, grid[1].highlight, grid[2].highlight}),
              (QList<int>{1, 0, 2}));  // carried as stored; the grid treats only 1 as set
    // Unticking publish through the checkbox binding removes the record from every list.
    EXPECT_TRUE(collection.setData(collection.index(0), false, PhotoCollection::SelectRole));
    EXPECT_TRUE(collection.setData(collection.index(1), Qt::Checked, PhotoCollection::SelectRole));
    EXPECT_TRUE(
        collection.setData(collection.index(4), "new text", PhotoCollection::DescriptionRole));
    EXPECT_EQ(names(collection, true), "b d e");
    grid = collection.hGetGridPhotos();
    EXPECT_EQ(grid[0].highlight, 1);
    EXPECT_EQ(grid[2].description, "new text");
    collection.hRemoveSelectedObject({});  // no selection: nothing removed
    EXPECT_EQ(collection.tfImageCount(), "5");
    collection.hRemoveSelectedObject({0, 2, 17});
    EXPECT_EQ(names(collection), "b d e");
    collection.hRemoveAllPhoto();
    EXPECT_EQ(collection.tfImageCount(), "0");
}

}  // namespace

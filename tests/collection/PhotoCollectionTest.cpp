#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <vips/vips8>

#include "collection/PhotoCollection.h"
#include "imaging/VipsRuntime.h"
#include "support/TestSupport.h"

namespace {

// A black image of that size written by libvips (format from the extension).
QString makeImage(const QString& path, int width, int height) {
    VipsRuntime::ensureStarted();
    vips::VImage::black(width, height, vips::VImage::option()->set("bands", 3))
        .write_to_file(path.toUtf8().constData());
    return path;
}

void setUserComment(const QString& path, const QString& comment) {
    ASSERT_EQ(testsupport::runProgram("exiftool",
                                      {"-overwrite_original", "-UserComment=" + comment, path}),
              0);
}

cCollectionViewItem named(const QString& name) {
    cCollectionViewItem record;
    record.myPhotoName = name;
    record.myPhotoURL = QUrl::fromLocalFile("/photos/" + name);
    return record;
}

QStringList names(const PhotoCollection& collection) {
    QStringList result;
    for (const auto& record : collection.arrangedObjects()) result.append(record.myPhotoName);
    return result;
}

QStringList publishedNames(const PhotoCollection& collection) {
    QStringList result;
    for (const PhotoEntry& entry : collection.hGetPhotosFromArrayController())
        result.append(entry.url.fileName());
    return result;
}

void fill(PhotoCollection& collection, const QStringList& list) {
    QList<cCollectionViewItem> records;
    for (const QString& name : list) records.append(named(name));
    collection.appendRecords(records);
}

// The counts announced by countChanged.
struct CountSpy {
    explicit CountSpy(PhotoCollection& collection) {
        QObject::connect(&collection, &PhotoCollection::countChanged,
                         [this](int count) { counts.append(count); });
    }
    QList<int> counts;
};

TEST(PhotoCollection, PixelSizeAndOrientationFromTheHeader) {
    const QString dir = testsupport::freshDir("collection/size");
    struct Case {
        QString file;
        int width, height;
        QString orientation, pxSize;
    };
    const Case cases[] = {
        {"square.jpg", 3000, 3000, "V", "3000x3000"},
        {"landscape.png", 641, 480, "H", "641x480"},
        {"portrait.tif", 480, 641, "V", "480x641"},
    };
    QStringList paths;
    for (const Case& c : cases) paths.append(makeImage(dir + c.file, c.width, c.height));
    PhotoCollection collection;
    collection.setCellImageSize(0);
    ASSERT_EQ(collection.appendPhotos(paths), 3);
    for (int i = 0; i < 3; ++i) {
        const cCollectionViewItem& record = collection.arrangedObjects()[i];
        EXPECT_EQ(record.myPhotoName, cases[i].file);
        EXPECT_EQ(record.path(), paths[i]);
        EXPECT_EQ(record.myPhotoOrientation, cases[i].orientation) << cases[i].file.toStdString();
        EXPECT_EQ(record.myPhotoPxSize, cases[i].pxSize);
        EXPECT_EQ(record.myPhotoSelect, 1);
        EXPECT_EQ(record.myPhotoHighLight, 0);
        EXPECT_TRUE(record.myPhoto.isNull());  // no cell images without a size
    }
}

TEST(PhotoCollection, CellImageShrinksToTheCellSize) {
    const QString dir = testsupport::freshDir("collection/cell");
    PhotoCollection collection;
    collection.setCellImageSize(160);
    ASSERT_EQ(collection.appendPhotos(
                  {makeImage(dir + "wide.jpg", 3000, 2000), makeImage(dir + "tall.png", 300, 600)}),
              2);
    const QImage wide = collection.arrangedObjects()[0].myPhoto;
    EXPECT_EQ(wide.width(), 160);
    EXPECT_NEAR(wide.height(), 107, 1);
    const QImage tall = collection.arrangedObjects()[1].myPhoto;
    EXPECT_EQ(tall.height(), 160);
    EXPECT_EQ(tall.width(), 80);
    EXPECT_EQ(qGray(tall.pixel(40, 80)), 0);
    EXPECT_EQ(collection.data(collection.index(1), Qt::DecorationRole).value<QImage>().size(),
              tall.size());
}

TEST(PhotoCollection, CaptionsFromTheExifUserComment) {
    const QString dir = testsupport::freshDir("collection/caption");
    struct Case {
        QString file;
        std::optional<QString> comment;
        QString caption;
    };
    const Case cases[] = {
        {"pier.jpg", " Sunset at the pier", " Sunset at the pier"},
        {"blank.jpg", "     ", ""},
        {"none.jpg", std::nullopt, ""},
        {"umlaut.jpg", "Grüße aus Köln", "Grüße aus Köln"},
    };
    QStringList paths;
    for (const Case& c : cases) {
        paths.append(makeImage(dir + c.file, 64, 48));
        if (c.comment) setUserComment(paths.last(), *c.comment);
    }
    PhotoCollection collection;
    collection.setCellImageSize(0);
    ASSERT_EQ(collection.appendPhotos(paths), 4);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(collection.arrangedObjects()[i].myPhotoDescription, cases[i].caption)
            << cases[i].file.toStdString();
    }
    EXPECT_EQ(collection.hGetPhotosFromArrayController()[0].description, " Sunset at the pier");
}

TEST(PhotoCollection, DuplicatesAreAddedAndBothPublished) {
    const QString dir = testsupport::freshDir("collection/dup");
    const QString path = makeImage(dir + "a.jpg", 40, 30);
    PhotoCollection collection;
    collection.setCellImageSize(0);
    CountSpy spy(collection);
    EXPECT_EQ(collection.appendPhotos({path}), 1);
    EXPECT_EQ(collection.appendPhotos({path}), 1);
    EXPECT_EQ(collection.tfImageCount(), "2");
    EXPECT_EQ(spy.counts, (QList<int>{1, 2}));
    const auto published = collection.hGetPhotosFromArrayController();
    ASSERT_EQ(published.size(), 2);
    EXPECT_EQ(published[0].url, published[1].url);
}

TEST(PhotoCollection, BadFilesAreSkippedAndTheRestAdded) {
    const QString dir = testsupport::freshDir("collection/bad");
    QFile(dir + "zero.jpg").open(QIODevice::WriteOnly);
    {
        QFile random(dir + "random.jpg");
        ASSERT_TRUE(random.open(QIODevice::WriteOnly));
        QByteArray bytes;
        quint32 x = 12345;
        for (int i = 0; i < 4096; ++i) bytes.append(char((x = x * 1103515245u + 12345u) >> 24));
        random.write(bytes);
    }
    QDir().mkpath(dir + "x.jpg");
    {
        // A PNG under a JPEG name is still an image.
        makeImage(dir + "real.png", 20, 10);
        QFile::rename(dir + "real.png", dir + "png-named.jpg");
    }
    // A real photo cut in half: its header still gives the size, its cell image what decodes.
    const QStringList photos = testsupport::mateBackgroundJpegs();
    ASSERT_FALSE(photos.isEmpty());
    {
        QFile photo(photos.first());
        ASSERT_TRUE(photo.open(QIODevice::ReadOnly));
        QFile cut(dir + "cut.jpg");
        ASSERT_TRUE(cut.open(QIODevice::WriteOnly));
        cut.write(photo.read(photo.size() / 2));
    }
    const QStringList paths = {dir + "zero.jpg",      makeImage(dir + "good1.jpg", 20, 10),
                               dir + "cut.jpg",       dir + "random.jpg",
                               dir + "x.jpg",         dir + "missing.jpg",
                               dir + "png-named.jpg", makeImage(dir + "good2.tif", 10, 20)};
    RecordingUserInterface ui;
    PhotoCollection collection;
    collection.setCellImageSize(64);
    EXPECT_EQ(collection.appendPhotos(paths, &ui), 4);
    EXPECT_EQ(names(collection),
              (QStringList{"good1.jpg", "cut.jpg", "png-named.jpg", "good2.tif"}));
    const QString truth = testsupport::exiftool(photos.first(), "ImageSize");
    EXPECT_EQ(collection.arrangedObjects()[1].myPhotoPxSize, truth);
    EXPECT_EQ(ui.starts, 1);
    EXPECT_EQ(ui.stops, 1);
    EXPECT_EQ(ui.steps, std::vector<double>(8, 12.0));  // 100 / 8 in whole numbers, every file
    EXPECT_TRUE(ui.alerts.empty());
}

TEST(PhotoCollection, ProgressStepIsAWholeNumber) {
    const QString dir = testsupport::freshDir("collection/progress");
    const QString path = makeImage(dir + "p.png", 8, 8);
    RecordingUserInterface ui;
    PhotoCollection collection;
    collection.setCellImageSize(0);
    collection.appendPhotos({path, path, path}, &ui);
    EXPECT_EQ(ui.steps, (std::vector<double>{33, 33, 33}));
    collection.appendPhotos({}, &ui);  // a cancelled dialog still stops the bar
    EXPECT_EQ(ui.starts, 1);
    EXPECT_EQ(ui.stops, 2);
    EXPECT_EQ(collection.count(), 3);
}

TEST(PhotoCollection, SortRulesAreCaseInsensitiveAndStayInForce) {
    PhotoCollection collection;
    fill(collection, {"banana.jpg", "Apple.jpg", "cherry.jpg", "apple.JPG"});
    collection.setSortingModeAz();
    EXPECT_EQ(names(collection),
              (QStringList{"Apple.jpg", "apple.JPG", "banana.jpg", "cherry.jpg"}));
    collection.setSortingModezA();
    EXPECT_EQ(publishedNames(collection),
              (QStringList{"cherry.jpg", "banana.jpg", "Apple.jpg", "apple.JPG"}));
    collection.appendRecords({named("Blueberry.jpg"), named("zebra.jpg")});
    EXPECT_EQ(names(collection), (QStringList{"zebra.jpg", "cherry.jpg", "Blueberry.jpg",
                                              "banana.jpg", "Apple.jpg", "apple.JPG"}));
    EXPECT_EQ(collection.sortMode(), PhotoCollection::Sort::ZtoA);
}

TEST(PhotoCollection, AppendedPhotosArePlacedByTheSortRule) {
    const QString dir = testsupport::freshDir("collection/sorted-append");
    PhotoCollection collection;
    collection.setCellImageSize(0);
    collection.appendPhotos({makeImage(dir + "b.png", 4, 4), makeImage(dir + "D.png", 4, 4)});
    collection.setSortingModeAz();
    collection.appendPhotos({makeImage(dir + "c.png", 4, 4), makeImage(dir + "A.png", 4, 4)});
    EXPECT_EQ(names(collection), (QStringList{"A.png", "b.png", "c.png", "D.png"}));
}

TEST(PhotoCollection, DropMovesRecordsByTheEstablishedAlgorithm) {
    // Five records "0" to "4"; expectations worked out by hand from the drop algorithm.
    struct Case {
        QList<int> dragged;
        int drop;
        QString after;
    };
    const Case cases[] = {
        {{3}, 1, "03124"},
        {{1}, 4, "02341"},
        {{1}, 5, "02341"},  // after the last record: to the end
        {{4}, 5, "01234"},
        {{0}, 0, "01234"},
        {{2}, 2, "01234"},
        {{0, 1}, 3, "13042"},  // the second move takes "2", not the dragged "1"
        {{3, 1}, 0, "13024"},
        {{2, 3}, 5, "01324"},
        {{0, 4}, 2, "12043"},
        {{}, 2, "01234"},
        {{9, -1}, 2, "01234"},  // no valid index: nothing to move
    };
    for (const Case& c : cases) {
        PhotoCollection collection;
        fill(collection, {"0", "1", "2", "3", "4"});
        CountSpy spy(collection);
        EXPECT_TRUE(collection.acceptDrop(c.dragged, c.drop));
        EXPECT_EQ(names(collection).join(QString()), c.after) << "drop at " << c.drop;
        EXPECT_EQ(collection.tfImageCount(), "5");
        for (const int count : spy.counts) EXPECT_EQ(count, 5);
    }
}

TEST(PhotoCollection, ManualReorderClearsTheSortRule) {
    PhotoCollection collection;
    fill(collection, {"c", "a", "b"});
    collection.setSortingModeAz();
    ASSERT_EQ(names(collection).join(QString()), "abc");
    collection.acceptDrop({2}, 0);
    EXPECT_EQ(names(collection).join(QString()), "cab");
    EXPECT_EQ(collection.sortMode(), PhotoCollection::Sort::None);
    collection.appendRecords({named("0")});
    EXPECT_EQ(names(collection).join(QString()), "cab0");
}

TEST(PhotoCollection, RemovingRecords) {
    PhotoCollection collection;
    fill(collection, {"0", "1", "2", "3"});
    CountSpy spy(collection);
    collection.hRemoveSelectedObject({});
    EXPECT_EQ(collection.count(), 4);
    EXPECT_TRUE(spy.counts.isEmpty());
    collection.hRemoveSelectedObject({0, 2, 17});
    EXPECT_EQ(names(collection).join(QString()), "13");
    EXPECT_EQ(spy.counts, QList<int>{2});
    collection.hRemoveAllPhoto();
    EXPECT_EQ(collection.tfImageCount(), "0");
    EXPECT_EQ(collection.rowCount(), 0);
}

TEST(PhotoCollection, OnlyPublishedRecordsReachTheGenerators) {
    // select/highlight values: only 1 counts as set.
    QList<cCollectionViewItem> records;
    const std::vector<std::tuple<QString, int, int, QString>> table = {
        {"a", 1, 1, "H"}, {"b", 0, 1, "V"}, {"c", 2, 0, "H"}, {"d", 1, 0, "V"}, {"e", 1, 2, "H"}};
    for (const auto& [name, select, highlight, orientation] : table) {
        cCollectionViewItem record = named(name);
        record.myPhotoSelect = select;
        record.myPhotoHighLight = highlight;
        record.myPhotoOrientation = orientation;
        record.myPhotoDescription = "about " + name;
        records.append(record);
    }
    PhotoCollection collection;
    collection.appendRecords(records);
    EXPECT_EQ(publishedNames(collection), (QStringList{"a", "d", "e"}));
    EXPECT_EQ(collection.hGetPhotosFromArrayController()[1].description, "about d");
    const auto grid = collection.hGetGridPhotos();
    ASSERT_EQ(grid.size(), 3);
    EXPECT_EQ(grid[0].highlight, 1);
    EXPECT_EQ(grid[0].orientation, "H");
    EXPECT_EQ(grid[1].highlight, 0);
    EXPECT_EQ(grid[1].url.fileName(), "d");
    EXPECT_EQ(grid[2].highlight, 2);  // carried as it is; the grid treats only 1 as set

    // Unticking publish through the checkbox binding removes the record from every list.
    EXPECT_TRUE(collection.setData(collection.index(0), false, PhotoCollection::SelectRole));
    EXPECT_TRUE(collection.setData(collection.index(1), Qt::Checked, PhotoCollection::SelectRole));
    EXPECT_TRUE(collection.setData(collection.index(3), true, PhotoCollection::HighlightRole));
    EXPECT_EQ(publishedNames(collection), (QStringList{"b", "d", "e"}));
    EXPECT_EQ(collection.hGetGridPhotos()[1].highlight, 1);
    EXPECT_TRUE(
        collection.setData(collection.index(4), "new text", PhotoCollection::DescriptionRole));
    EXPECT_EQ(collection.hGetGridPhotos()[2].description, "new text");
}

}  // namespace

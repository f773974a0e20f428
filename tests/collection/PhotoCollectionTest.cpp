#include "collection/PhotoCollection.h"
#include "metadata/MetaFixtures.h"

using namespace metafixtures;

// Records named as given, with the publish and highlight values as stored (only 1 counts as set).
static QList<cCollectionViewItem> named(const QStringList& list, const QList<int>& select = {},
                                        const QList<int>& highlight = {}) {
    QList<cCollectionViewItem> records(list.size());
    for (qsizetype i = 0; i < list.size(); ++i) {
        records[i].myPhotoName = list[i];
        records[i].myPhotoURL = QUrl::fromLocalFile("/photos/" + list[i]);
        records[i].myPhotoSelect = select.value(i, 1);
        records[i].myPhotoHighLight = highlight.value(i, 0);
    }
    return records;
}

// What each part sees, one word a record: the names in display order, the photos a generator
// receives, or the Responsive Grid's entries with their orientation and highlight flag.
enum class View { Records, Published, Grid };
static QString names(const PhotoCollection& collection, View view = View::Records) {
    QStringList records, published, grid;
    for (const auto& record : collection.arrangedObjects()) records << record.myPhotoName;
    for (const PhotoEntry& e : collection.hGetPhotosFromArrayController())
        published << e.url.fileName();
    for (const PhotoEntry& e : collection.hGetGridPhotos())
        grid << e.url.fileName() + ':' + e.orientation + QString::number(e.highlight);
    return (view == View::Records ? records : view == View::Published ? published : grid).join(' ');
}

// Sizes, orientations and captions of records are checked against exiftool through the window's
// photos of every format and through projects; here a caption's leading space stays and a photo
// given twice is two records.
TEST(PhotoCollection, BadFilesAreSkippedAndTheRestAdded) {
    const QString dir = testsupport::freshDir("collection/bad");
    const QByteArray photo = readFile(makeImage(dir + "whole.jpg", 400, 300));
    tag(dir + "whole.jpg", {"-UserComment= Sunset"});
    writeFile(dir + "zero.jpg", {});
    writeFile(dir + "random.jpg", photo.mid(photo.size() / 2));  // compressed data, no header
    writeFile(dir + "cut.jpg", photo.left(photo.size() / 2));    // keeps its header: added
    QDir().mkpath(dir + "x.jpg");
    ASSERT_TRUE(QFile::rename(makeImage(dir + "real.png", 20, 10), dir + "png-named.jpg"));
    makeImage(dir + "good.tif", 10, 20);
    QStringList paths;
    for (const QString name : {"zero.jpg", "whole.jpg", "cut.jpg", "random.jpg", "x.jpg",
                               "missing.jpg", "png-named.jpg", "good.tif", "whole.jpg"})
        paths << dir + name;
    RecordingUserInterface ui;
    PhotoCollection collection;
    EXPECT_EQ(collection.appendPhotos(paths, &ui), 5);
    EXPECT_EQ(names(collection), "whole.jpg cut.jpg png-named.jpg good.tif whole.jpg");
    EXPECT_EQ(collection.arrangedObjects()[1].myPhotoPxSize, "400x300");
    EXPECT_EQ(collection.arrangedObjects()[4].myPhotoDescription, " Sunset");
    EXPECT_EQ(ui.steps, std::vector<double>(9, 11.0));  // 100 / 9 in whole numbers, every file
    EXPECT_TRUE(ui.alerts.empty());
    collection.appendPhotos({}, &ui);  // a cancelled dialog still stops the bar
    EXPECT_EQ(std::pair(ui.starts, ui.stops), std::pair(1, 2));
}

TEST(PhotoCollection, CaseInsensitiveSortRulesStayUntilADropMovesRecordsByTheAlgorithm) {
    PhotoCollection collection;
    collection.appendRecords(named({"banana", "Apple", "cherry", "apple2"}));
    collection.setSortingModeAz();
    EXPECT_EQ(names(collection), "Apple apple2 banana cherry");
    collection.setSortingModezA();
    EXPECT_EQ(names(collection, View::Published), "cherry banana apple2 Apple");
    collection.appendRecords(named({"Blueberry", "zebra"}));
    EXPECT_EQ(names(collection), "zebra cherry Blueberry banana apple2 Apple");
    // A manual move replaces the rule with the order the user made.
    collection.acceptDrop({5}, 0);
    EXPECT_EQ(names(collection), "Apple zebra cherry Blueberry banana apple2");
    // Five records "0" to "4"; expectations worked out by hand from the drop algorithm. A drop
    // after the last record (5) goes to the end; dragging {0, 1} to 3 moves "2" second, not the
    // dragged "1"; indexes outside the list move nothing.
    const std::tuple<QList<int>, int, QString> cases[] = {
        {{3}, 1, "0 3 1 2 4"},    {{1}, 4, "0 2 3 4 1"},    {{1}, 5, "0 2 3 4 1"},
        {{4}, 5, "0 1 2 3 4"},    {{0}, 0, "0 1 2 3 4"},    {{0, 1}, 3, "1 3 0 4 2"},
        {{3, 1}, 0, "1 3 0 2 4"}, {{2, 3}, 5, "0 1 3 2 4"}, {{0, 4}, 2, "1 2 0 4 3"},
        {{}, 2, "0 1 2 3 4"},     {{9, -1}, 2, "0 1 2 3 4"}};
    for (const auto& [dragged, drop, after] : cases) {
        PhotoCollection five;
        five.appendRecords(named({"0", "1", "2", "3", "4"}));
        EXPECT_TRUE(five.acceptDrop(dragged, drop));
        EXPECT_EQ(names(five), after) << "drop at " << drop;
    }
}

TEST(PhotoCollection, OnlyPublishedRecordsReachTheGeneratorsUntilRemoved) {
    PhotoCollection collection;
    collection.appendRecords(named({"a", "b", "c", "d", "e"}, {1, 0, 2, 1, 1}, {1, 1, 0, 0, 2}));
    EXPECT_EQ(names(collection, View::Published), "a d e");
    EXPECT_EQ(names(collection, View::Grid), "a:1 d:0 e:2");  // carried as stored
    // Unticking publish through the checkbox binding removes the record from every list.
    EXPECT_TRUE(collection.setData(collection.index(0), false, PhotoCollection::SelectRole));
    EXPECT_TRUE(collection.setData(collection.index(1), Qt::Checked, PhotoCollection::SelectRole));
    EXPECT_EQ(names(collection, View::Published), "b d e");
    EXPECT_EQ(names(collection, View::Grid), "b:1 d:0 e:2");
    collection.hRemoveSelectedObject({});  // no selection: nothing removed
    EXPECT_EQ(collection.tfImageCount(), "5");
    collection.hRemoveSelectedObject({0, 2, 17});
    EXPECT_EQ(names(collection), "b d e");
}

#include <gtest/gtest.h>

#include <QDir>
#include <QRandomGenerator>
#include <atomic>
#include <thread>
#include <vector>

#include "metadata/MetaFixtures.h"
#include "metadata/mMeta.h"

using metafixtures::makeImage;

namespace {

const QStringList kAllNames = {
    QStringLiteral("EXIF User Comment"),   QStringLiteral("EXIF Creation Date"),
    QStringLiteral("IPTC Creator Title"),  QStringLiteral("IPTC Caption"),
    QStringLiteral("IPTC Keyword"),        QStringLiteral("IPTC City"),
    QStringLiteral("IPTC Caption Writer"), QStringLiteral("IPTC Copyrights"),
    QStringLiteral("IPTC Country"),        QStringLiteral("IPTC Credits"),
    QStringLiteral("IPTC Headline"),       QStringLiteral("IPTC Subject Code"),
    QStringLiteral("IPTC State Province"), QStringLiteral("IPTC Description")};

// Everything a reader can say about one file, in one text, for comparisons.
QString readEverything(mMeta& meta, const QString& file) {
    QStringList all;
    for (const QString& name : kAllNames)
        all << (name.startsWith(QStringLiteral("EXIF")) ? meta.hGetExifUc(file, name)
                                                        : meta.hGetSomeIPTC(file, name));
    all << meta.hGetPixelFormat(file).join(u'x') << meta.hGetColorProfile(file);
    all << QString::number(meta.propTree(file).size());
    return all.join(u'|');
}

QString vipsheader(const QString& file, const char* field) {
    QString out;
    testsupport::runProgram(QStringLiteral("vipsheader"),
                            {QStringLiteral("-f"), QString::fromLatin1(field), file}, &out);
    return out.trimmed();
}

}  // namespace

TEST(MetaRobustness, BadFilesReadEmptyAndAreNeverWritten) {
    const QString dir = testsupport::freshDir(QStringLiteral("meta/bad"));
    const QString good = makeImage(dir + QStringLiteral("good.jpg"), 400, 300);
    metafixtures::tag(good,
                      {QStringLiteral("-UserComment=Present"), QStringLiteral("-IPTC:City=Lyon")});
    const QByteArray goodBytes = metafixtures::bytes(good);

    const QString zero = dir + QStringLiteral("zero.jpg");
    metafixtures::writeBytes(zero, QByteArray());
    const QString truncated = dir + QStringLiteral("truncated.jpg");
    const QStringList mate = testsupport::mateBackgroundJpegs();
    metafixtures::writeBytes(truncated, mate.isEmpty()
                                            ? goodBytes.left(300)
                                            : metafixtures::bytes(mate.first()).left(1000));
    const QString random = dir + QStringLiteral("random.jpg");
    QByteArray noise(4096, '\0');
    QRandomGenerator generator(42);
    for (char& c : noise) c = char(generator.bounded(256));
    metafixtures::writeBytes(random, noise);
    const QString directory = dir + QStringLiteral("folder.jpg");
    QDir().mkpath(directory);
    const QString missing = dir + QStringLiteral("missing.jpg");
    const QString textFile = dir + QStringLiteral("text.png");
    metafixtures::writeBytes(textFile, "not a picture");
    const QString headerOnly = dir + QStringLiteral("header-only.jpg");
    metafixtures::writeBytes(headerOnly, goodBytes.left(20));

    for (const QString& file :
         {zero, truncated, random, directory, missing, textFile, headerOnly}) {
        SCOPED_TRACE(file.toStdString());
        const QByteArray before = metafixtures::bytes(file);
        mMeta meta;
        for (const QString& name : kAllNames) {
            EXPECT_EQ(meta.hGetExifUc(file, name), QString());
            EXPECT_EQ(meta.hGetSomeIPTC(file, name), QString());
        }
        EXPECT_TRUE(meta.propTree(file).isEmpty());
        // A truncated photo still has its header, and with it a pixel size.
        if (file != truncated) {
            EXPECT_EQ(meta.hGetPixelFormat(file), QStringList());
            EXPECT_EQ(meta.hGetColorProfile(file), QString());
            EXPECT_FALSE(meta.getMyImageSource(file));
        }
        EXPECT_EQ(meta.hSetExifData(file, QStringLiteral("Never")), QStringLiteral("Failed"));
        EXPECT_EQ(metafixtures::bytes(file), before);
    }
    // Cut in the middle of its image data: the metadata still reads, but nothing is written.
    const QString half = dir + QStringLiteral("half.jpg");
    metafixtures::writeBytes(half, goodBytes.left(goodBytes.size() - 40));
    EXPECT_EQ(mMeta().hGetExifUc(half, QStringLiteral("EXIF User Comment")),
              QStringLiteral("Present"));
    EXPECT_EQ(mMeta().hSetExifData(half, QStringLiteral("Never")), QStringLiteral("Failed"));
    EXPECT_EQ(metafixtures::bytes(half), goodBytes.left(goodBytes.size() - 40));
    EXPECT_EQ(mMeta().hSetExifData(good, QStringLiteral("Fine")), QStringLiteral("OK"));

    EXPECT_EQ(QFileInfo(missing).exists(), false);
    EXPECT_TRUE(QFileInfo(directory).isDir());
    // No temporary file is left behind by the failed writes.
    EXPECT_EQ(QDir(dir).entryList(QDir::Files | QDir::Hidden).size(), 7);
}

TEST(MetaRobustness, PngNamedJpgStillReads) {
    const QString dir = testsupport::freshDir(QStringLiteral("meta/renamed"));
    const QString png = makeImage(dir + QStringLiteral("real.png"), 21, 13);
    const QString disguised = dir + QStringLiteral("disguised.jpg");
    ASSERT_TRUE(QFile::copy(png, disguised));
    mMeta meta;
    EXPECT_EQ(meta.hGetPixelFormat(disguised),
              (QStringList{QStringLiteral("21"), QStringLiteral("13")}));
    EXPECT_EQ(meta.hGetExifUc(disguised, QStringLiteral("EXIF User Comment")), QString());
    EXPECT_EQ(meta.hSetExifData(disguised, QStringLiteral("Still a PNG")), QStringLiteral("OK"));
    EXPECT_EQ(testsupport::exiftool(disguised, QStringLiteral("UserComment")),
              QStringLiteral("Still a PNG"));
    EXPECT_EQ(testsupport::exiftool(disguised, QStringLiteral("FileType")), QStringLiteral("PNG"));
}

TEST(MetaRobustness, EveryCameraPhotoReads) {
    const QStringList photos = testsupport::mateBackgroundJpegs();
    if (photos.isEmpty()) GTEST_SKIP() << "mate-backgrounds is not installed";
    for (const QString& photo : photos) {
        SCOPED_TRACE(photo.toStdString());
        mMeta meta;
        const QString comment = meta.hGetExifUc(photo, QStringLiteral("EXIF User Comment"));
        const QString truthComment = testsupport::exiftool(photo, QStringLiteral("UserComment"));
        if (truthComment.trimmed().isEmpty()) {
            EXPECT_TRUE(comment.trimmed().isEmpty());
        } else {
            EXPECT_EQ(comment.trimmed(), truthComment.trimmed());
        }
        EXPECT_EQ(meta.hGetExifUc(photo, QStringLiteral("EXIF Creation Date")),
                  testsupport::exiftool(photo, QStringLiteral("EXIF:DateTimeOriginal")));
        EXPECT_EQ(meta.hGetSomeIPTC(photo, QStringLiteral("IPTC City")),
                  testsupport::exiftool(photo, QStringLiteral("IPTC:City")));
        for (const QString& name : kAllNames) meta.hGetSomeIPTC(photo, name);
        EXPECT_EQ(meta.hGetPixelFormat(photo),
                  (QStringList{vipsheader(photo, "width"), vipsheader(photo, "height")}));
        EXPECT_FALSE(meta.hGetColorProfile(photo).isEmpty());
        meta.propTree(photo);
        meta.hiDoNothing(photo);
        if (meta.tfExifUserComment != u"No user comment available.") {
            EXPECT_EQ(meta.tfExifUserComment, comment);
        }
    }
}

TEST(MetaRobustness, ThreadsWithTheirOwnReadersAgreeWithOneThread) {
    const QString dir = testsupport::freshDir(QStringLiteral("meta/threads"));
    QStringList files = testsupport::mateBackgroundJpegs().mid(0, 6);
    const QString tagged = makeImage(dir + QStringLiteral("tagged.jpg"));
    metafixtures::tag(tagged,
                      {QStringLiteral("-UserComment=Threads"), QStringLiteral("-IPTC:City=Lyon"),
                       QStringLiteral("-XMP-dc:Creator=Ann")});
    files << tagged << dir + QStringLiteral("missing.jpg");

    QStringList expected;
    {
        mMeta meta;
        for (const QString& file : files) expected << readEverything(meta, file);
    }
    std::atomic<int> mismatches{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            mMeta meta;
            for (int round = 0; round < 2; ++round)
                for (qsizetype i = 0; i < files.size(); ++i)
                    if (readEverything(meta, files[i]) != expected[i]) ++mismatches;
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(mismatches.load(), 0);
}

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include "services/KLbookmarks.h"
#include "services/cNSStringHandling.h"
#include "support/TestSupport.h"

// A bookmark resolves while its file or folder exists, through its base64 text too; data made
// elsewhere and vanished paths give nothing.
TEST(Bookmarks, ResolveOnlyWhatStillExists) {
    const QString dir = testsupport::freshDir("bookmarks");
    const QString folder = dir + "folder with space/ünïcode";
    ASSERT_TRUE(QDir().mkpath(folder));
    const QString file = dir + "pattern.png";
    QFile(file).open(QIODevice::WriteOnly);

    for (const QString& path : {folder, file}) {
        SCOPED_TRACE(path.toStdString());
        const QByteArray bookmark = KLbookmarks::bookmarkForURL(QUrl::fromLocalFile(path));
        ASSERT_FALSE(bookmark.isEmpty());
        const QString text = cNSStringHandling::hConvertNSdToNSstr(bookmark);
        EXPECT_FALSE(text.contains(u'\''));
        EXPECT_EQ(KLbookmarks::urlForBookmark(cNSStringHandling::hConvertNSstrToNSd(text)),
                  QUrl::fromLocalFile(path));
    }
    // A folder given with its separator is the same folder.
    EXPECT_EQ(KLbookmarks::bookmarkForURL(QUrl::fromLocalFile(folder + "/")),
              KLbookmarks::bookmarkForURL(QUrl::fromLocalFile(folder)));

    const QByteArray gone = KLbookmarks::bookmarkForURL(QUrl::fromLocalFile(file));
    ASSERT_TRUE(QFile::remove(file));
    EXPECT_TRUE(KLbookmarks::urlForBookmark(gone).isEmpty());  // stale
    EXPECT_EQ(KLbookmarks::pathInBookmark(gone), file);

    const QByteArray foreign[] = {"",
                                  "book\0mark",
                                  "KLbookmark/1\n",
                                  "KLbookmark/1\nrelative",
                                  QByteArray("KLbookmark/1\n/tmp\0/x", 20),
                                  "KLbookmark/1\n/\xff\xfe",
                                  QByteArray(4096, 'x')};
    for (const QByteArray& data : foreign) EXPECT_TRUE(KLbookmarks::urlForBookmark(data).isEmpty());
    EXPECT_TRUE(KLbookmarks::bookmarkForURL(QUrl("https://example.org/a")).isEmpty());
}

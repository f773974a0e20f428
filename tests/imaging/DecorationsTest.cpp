#include <QPainter>

#include "ImagingFixtures.h"

TEST(Frame, OnlyTheInnerHalfOfTheStrokeShows) {
    const QString dir = testsupport::freshDir(QStringLiteral("frame"));
    fixtures::save(fixtures::solid(200, 150, {100, 100, 100}), dir + "t.png");
    ASSERT_EQ(KLImageHandling().addBorderToImage2(dir + "t.png", QColor(255, 0, 0), 10), "OK");
    EXPECT_EQ(fixtures::sizeOf(dir + "t.png"), fixtures::Size(200, 150));
    // width 10: five pixels of frame inside each edge, the photo from the sixth on
    for (const QPoint p : {QPoint(0, 0), QPoint(4, 75), QPoint(5, 75), QPoint(194, 75),
                           QPoint(195, 75), QPoint(100, 4), QPoint(100, 5), QPoint(100, 145)}) {
        const bool frame = p.x() < 5 || p.y() < 5 || p.x() >= 195 || p.y() >= 145;
        EXPECT_EQ(fixtures::pixel(dir + "t.png", p.x(), p.y()),
                  (frame ? fixtures::Pixel{255, 0, 0} : fixtures::Pixel{100, 100, 100}));
    }
}

TEST(Frame, JpegKeepsItsMetadataThroughCropAndFramePngDoesNot) {
    const QString dir = testsupport::freshDir(QStringLiteral("frame-meta"));
    for (const QString name : {"a.jpg", "b.png"}) {
        fixtures::save(fixtures::solid(120, 90, {50, 60, 70}), dir + name);
        fixtures::tagArtist(dir + name);
        ASSERT_EQ(testsupport::exiftool(dir + name, "Artist"), "Keldra");
        KLImageHandling images;
        if (name == u"a.jpg") {
            ASSERT_EQ(images.cropImage(dir + name, 100, 80, dir, "myCropThumb", 4), "OK");
        }
        ASSERT_EQ(images.addBorderToImage2(dir + name, Qt::white, 4), "OK");
    }
    EXPECT_EQ(testsupport::exiftool(dir + "a.jpg", "Artist"), "Keldra");
    EXPECT_EQ(testsupport::exiftool(dir + "b.png", "Artist"), "");
}

TEST(Rotation, CanvasIsTheTurnedBoundingBoxWithTransparentCorners) {
    QImage image(200, 100, QImage::Format_ARGB32);  // red, a green marker at the top right
    image.fill(Qt::red);
    QPainter(&image).fillRect(180, 0, 20, 20, Qt::green);
    KLImageHandling images;
    for (const auto& [angle, size] :
         {std::pair{"90", QSize(100, 200)}, {"45", QSize(212, 212)}, {"0", QSize(200, 100)}}) {
        const QImage turned = images.hRotatePictureBase(image, angle);
        EXPECT_NEAR(turned.width(), size.width(), 1) << angle;
        EXPECT_NEAR(turned.height(), size.height(), 1) << angle;
    }
    const QImage diagonal = images.hRotatePictureBase(image, "45");
    const int right = diagonal.width() - 1, bottom = diagonal.height() - 1;
    for (const QPoint p :
         {QPoint(0, 0), QPoint(right, 0), QPoint(0, bottom), QPoint(right, bottom)})
        EXPECT_EQ(diagonal.pixelColor(p).alpha(), 0) << p.x() << "," << p.y();
    EXPECT_EQ(diagonal.pixelColor(right / 2, bottom / 2).rgba(), qRgb(255, 0, 0));
    // "0" keeps every pixel; "90" turns counter-clockwise: the top right goes to the top left
    EXPECT_EQ(images.hRotatePictureBase(image, "0").convertToFormat(QImage::Format_ARGB32), image);
    EXPECT_EQ(images.hRotatePictureBase(image, "90").pixelColor(10, 10).rgba(), qRgb(0, 255, 0));
}

#include <QPainter>

#include "ImagingFixtures.h"

using fixtures::Pixel;
using fixtures::Size;

// Width, height, size, mode: the target width and height. A mode-8 case keeps the size of the
// case before it, and a photo already small enough is kept with width and height exchanged in
// modes 6 and 7 (on purpose: stretched).
TEST(Resize, ModesGiveTheTargetSizeWrittenInTheSourceType) {
    const std::array<int, 6> cases[] = {
        {4000, 3000, 800, 0, 800, 600},    {4000, 3000, 500, 1, 666, 500},
        {4000, 3000, 800, 2, 800, 600},    {4000, 3000, 10, 3, 400, 300},
        {4000, 3000, 1200, 5, 1200, 900},  {4000, 3000, 1000, 6, 1000, 750},
        {4000, 3000, 500, 7, 666, 500},    {4000, 3000, 3000, 7, 3000, 4000},
        {3000, 4000, 800, 1, 600, 800},    {3000, 4000, 800, 2, 600, 800},
        {3000, 4000, 200, 4, 200, 266},    {3000, 4000, 1000, 6, 750, 1000},
        {3000, 4000, 5000, 7, 4000, 3000}, {4000, 3000, 200, 4, 266, 200},
        {3000, 4000, 999, 8, 266, 200},    {3000, 3000, 300, 0, 300, 300},
        {3000, 3000, 800, 2, 800, 800},    {3000, 3000, 200, 4, 200, 200},
        {300, 200, 500, 7, 200, 300},      {300, 200, 500, 6, 200, 300}};
    KLImageHandling sizes;  // one object for all, for the mode-8 case
    for (const auto& [width, height, size, mode, w, h] : cases) {
        ASSERT_TRUE(sizes.computeTargetSize(width, height, size, mode));
        EXPECT_EQ(Size(sizes.newImgW, sizes.newImgH), Size(w, h))
            << width << "x" << height << " " << size << " mode " << mode;
    }
    // Read back: the size and the type of the source; a fresh object has no previous size to keep.
    const QString dir = testsupport::freshDir("resize"), out = testsupport::freshDir("resize/out");
    for (const QString name : {"a.jpg", "b.png", "c.TIF", "d.gif"}) {
        fixtures::save(fixtures::solid(300, 400, {90, 140, 200}), dir + name);
        ASSERT_EQ(KLImageHandling().resizeImage(dir + name, 150, 7, out), "OK");
        EXPECT_EQ(fixtures::sizeOf(out + name), Size(112, 150));
        EXPECT_EQ(fixtures::loader(out + name), fixtures::loader(dir + name));
    }
    EXPECT_EQ(KLImageHandling().resizeImage(dir + "a.jpg", 200, -1, out), "Failed");
}

// A 200 x 150 box in a 266 x 200 image; the first pixel of the cut tells where it was. Thumbnail
// boxes are not shifted, big ones by (10, -20), which pushes some over the edge: they keep only
// the part on the image. One object for all: position 9 keeps the corner of the crop before.
TEST(Crop, PositionsCutTheBoxAtTheirCorner) {
    const QString dir = testsupport::freshDir("crop");
    KLImageHandling images(CropShifts{0, 0, 10, -20});
    const std::array<int, 6> cases[] = {
        // position, big: x, y, width, height
        {0, 0, 0, 0, 200, 150},   {1, 0, 33, 0, 200, 150},  {2, 0, 66, 0, 200, 150},
        {3, 0, 0, 25, 200, 150},  {4, 0, 33, 25, 200, 150}, {5, 0, 66, 25, 200, 150},
        {6, 0, 0, 50, 200, 150},  {7, 0, 33, 50, 200, 150}, {8, 0, 66, 50, 200, 150},
        {9, 0, 66, 50, 200, 150}, {4, 1, 43, 5, 200, 150},  {8, 1, 76, 30, 190, 150},
        {0, 1, 10, 0, 200, 130}};
    for (const auto& [position, big, x, y, w, h] : cases) {
        SCOPED_TRACE(::testing::Message() << "position " << position << (big ? " big" : ""));
        fixtures::save(fixtures::coordinates(266, 200), dir + "a.png");
        ASSERT_EQ(images.cropImage(dir + "a.png", 200, 150, dir, big ? "myCropBig" : "myCropThumb",
                                   position),
                  "OK");
        EXPECT_EQ(fixtures::sizeOf(dir + "a.png"), Size(w, h));
        const Pixel p = fixtures::pixel(dir + "a.png", 0, 0);  // see fixtures::coordinates
        EXPECT_EQ(std::pair(int(p[0]) + 256 * (int(p[2]) / 16), int(p[1]) + 256 * (int(p[2]) % 16)),
                  std::pair(x, y));
    }
}

// Width 10: five pixels of frame inside each edge, the photo from the sixth on. A JPEG keeps its
// metadata through crop and frame, a PNG does not.
TEST(Frame, OnlyTheInnerHalfOfTheStrokeShows) {
    const QString dir = testsupport::freshDir("frame");
    fixtures::save(fixtures::solid(200, 150, {100, 100, 100}), dir + "t.png");
    ASSERT_EQ(KLImageHandling().addBorderToImage2(dir + "t.png", QColor(255, 0, 0), 10), "OK");
    EXPECT_EQ(fixtures::sizeOf(dir + "t.png"), Size(200, 150));
    for (const QPoint p : {QPoint(0, 0), QPoint(4, 75), QPoint(5, 75), QPoint(194, 75),
                           QPoint(195, 75), QPoint(100, 4), QPoint(100, 5), QPoint(100, 145)}) {
        const bool frame = p.x() < 5 || p.y() < 5 || p.x() >= 195 || p.y() >= 145;
        EXPECT_EQ(fixtures::pixel(dir + "t.png", p.x(), p.y()),
                  (frame ? Pixel{255, 0, 0} : Pixel{100, 100, 100}));
    }
    for (const QString name : {"a.jpg", "b.png"}) {
        fixtures::save(fixtures::solid(120, 90, {50, 60, 70}), dir + name);
        fixtures::tag(dir + name, {"-Artist=Keldra"});
        KLImageHandling images;
        if (name == u"a.jpg") {
            ASSERT_EQ(images.cropImage(dir + name, 100, 80, dir, "myCropThumb", 4), "OK");
        }
        ASSERT_EQ(images.addBorderToImage2(dir + name, Qt::white, 4), "OK");
        EXPECT_EQ(testsupport::exiftool(dir + name, "Artist"), name == u"a.jpg" ? "Keldra" : "");
    }
}

// Red, a green marker at the top right. "90" turns counter-clockwise: the marker goes to the top
// left; "0" keeps every pixel.
TEST(Rotation, CanvasIsTheTurnedBoundingBoxWithTransparentCorners) {
    QImage image(200, 100, QImage::Format_ARGB32);
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
    EXPECT_EQ(images.hRotatePictureBase(image, "0").convertToFormat(QImage::Format_ARGB32), image);
    EXPECT_EQ(images.hRotatePictureBase(image, "90").pixelColor(10, 10).rgba(), qRgb(0, 255, 0));
}

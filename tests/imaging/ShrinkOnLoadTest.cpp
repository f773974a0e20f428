#include <libheif/heif.h>

#include "ImagingFixtures.h"
#include "imaging/PictureData.h"

namespace {

// A HEIC of the coordinates picture with a thumbnail of 160 pixels on its longest side, written
// through libheif (libvips writes no thumbnails).
void writeHeicWithThumbnail(const QString& path, int width, int height) {
    const vips::VImage pixels = fixtures::coordinates(width, height).copy_memory();
    heif_context* context = heif_context_alloc();
    heif_encoder* encoder = nullptr;
    heif_context_get_encoder_for_format(context, heif_compression_HEVC, &encoder);
    heif_image* image = nullptr;
    heif_image_create(width, height, heif_colorspace_RGB, heif_chroma_interleaved_RGB, &image);
    heif_image_add_plane(image, heif_channel_interleaved, width, height, 8);
    int stride = 0;
    uint8_t* plane = heif_image_get_plane(image, heif_channel_interleaved, &stride);
    const auto* data = static_cast<const uint8_t*>(pixels.data());
    for (int y = 0; y < height; ++y) memcpy(plane + y * stride, data + y * width * 3, width * 3);
    heif_image_handle* handle = nullptr;
    heif_context_encode_image(context, image, encoder, nullptr, &handle);
    heif_context_encode_thumbnail(context, image, handle, encoder, nullptr, 160, nullptr);
    EXPECT_EQ(heif_context_write_to_file(context, QFile::encodeName(path).constData()).code,
              heif_error_Ok);
    heif_image_handle_release(handle);
    heif_image_release(image);
    heif_encoder_release(encoder);
    heif_context_free(context);
}

}  // namespace

// Decoded for a fraction of its size, a photo is shrunk by its reader where the format allows
// (JPEG by a power of two keeping twice the pixels asked, WebP to the size asked, HEIF to its
// thumbnail when large enough), never below what was asked; the picture still reports the photo's
// own size. A JPEG stored 800 x 400 and tagged to be seen turned (400 x 800) is shrunk by its
// upright sides and comes out upright.
TEST(ShrinkOnLoad, ReadersShrinkWhereTheyCan) {
    const QString dir = testsupport::freshDir("shrink-on-load");
    fixtures::save(fixtures::coordinates(800, 600), dir + "photo.jpg");
    fixtures::save(fixtures::coordinates(800, 600), dir + "photo.png");
    fixtures::save(fixtures::coordinates(1001, 751), dir + "odd.webp");
    writeHeicWithThumbnail(dir + "thumb.heic", 800, 600);
    fixtures::save(fixtures::coordinates(800, 600), dir + "plain.heic");
    fixtures::save(fixtures::coordinates(800, 400), dir + "turned.jpg");
    fixtures::tag(dir + "turned.jpg", {"-Orientation#=6"});
    const std::tuple<QString, double, fixtures::Size> cases[] = {
        {"photo.jpg", 0.1, {200, 150}},  // needs 80 x 60: shrink 4
        {"photo.jpg", 0.05, {100, 75}},
        {"photo.jpg", 0.5, {800, 600}},
        {"photo.png", 0.1, {800, 600}},
        {"odd.webp", 0.1, {101, 76}},   // needs 101 x 76 (75.1 rounded up)
        {"odd.webp", 0.5, {501, 376}},  // needs 501 x 376 (375.5 rounded up)
        {"thumb.heic", 0.1, {160, 120}},
        {"thumb.heic", 0.25, {800, 600}},  // needs 200 x 150: the thumbnail is too small
        {"plain.heic", 0.1, {800, 600}},
        {"turned.jpg", 0.25, {200, 400}}};  // needs 100 x 200: shrink 2
    for (const auto& [file, scale, pixels] : cases) {
        SCOPED_TRACE(testing::Message() << file << " at " << scale);
        const QString path = dir + file;
        QString error;
        const Picture picture = PhotoDecoder::decode(path, scale, &error);
        ASSERT_FALSE(picture.isNull()) << error;
        const int w = picture.data().pixels.width(), h = picture.data().pixels.height();
        const int rounding = file.endsWith(".webp") ? 1 : 0;  // of the other side
        EXPECT_TRUE(w >= pixels.first && w <= pixels.first + rounding) << w;
        EXPECT_TRUE(h >= pixels.second && h <= pixels.second + rounding) << h;
        const PhotoHeader header = PhotoDecoder::header(path);
        EXPECT_EQ(fixtures::Size(picture.width(), picture.height()),
                  fixtures::Size(header.width, header.height));
    }
}

// While a run remembers the headers of its photos they are not read again: a photo replaced in
// the meantime still answers with the header read first, until the run forgets them.
TEST(ShrinkOnLoad, RememberedHeadersAnswerUntilForgotten) {
    const QString path = testsupport::freshDir("remembered-headers") + "photo.jpg";
    fixtures::save(fixtures::solid(60, 40, {10, 20, 30}), path);
    int width = 0, height = 0;
    {
        const PhotoDecoder::RememberedHeaders outer({path}, {PhotoDecoder::header(path)});
        fixtures::save(fixtures::solid(30, 90, {10, 20, 30}), path);
        { const PhotoDecoder::RememberedHeaders inner({path}, {PhotoDecoder::header(path)}); }
        ASSERT_TRUE(PhotoDecoder::uprightSize(path, &width, &height));
        EXPECT_EQ(fixtures::Size(width, height), fixtures::Size(60, 40));
    }
    ASSERT_TRUE(PhotoDecoder::uprightSize(path, &width, &height));
    EXPECT_EQ(fixtures::Size(width, height), fixtures::Size(30, 90));
}

// An alpha opaque everywhere is dropped while decoding, for many images or for one, the colours
// untouched; a single pixel short of opaque keeps it.
TEST(ShrinkOnLoad, OnlyAnAlphaWithTransparencyIsKept) {
    const QString dir = testsupport::freshDir("opaque-alpha");
    const vips::VImage rgb = fixtures::coordinates(64, 48);
    const vips::VImage corner = (vips::VImage::xyz(64, 48)[0] + vips::VImage::xyz(64, 48)[1]) == 0;
    fixtures::save(fixtures::srgb(rgb.bandjoin(255)), dir + "opaque.png");
    fixtures::save(
        fixtures::srgb(rgb.bandjoin(corner.ifthenelse(254, 255).cast(VIPS_FORMAT_UCHAR))),
        dir + "almost.png");
    for (const auto& [file, bands] : {std::pair{"opaque.png", 3}, std::pair{"almost.png", 4}}) {
        for (const Picture& picture : {PhotoDecoder::decode(dir + file, 1.0),
                                       PhotoDecoder::decodeForOneUse(dir + file, 1.0)}) {
            ASSERT_FALSE(picture.isNull()) << file;
            const vips::VImage pixels = picture.data().pixels;
            EXPECT_EQ(pixels.bands(), bands) << file;
            const vips::VImage colours =
                pixels.extract_band(0, vips::VImage::option()->set("n", 3));
            EXPECT_EQ((colours - rgb).abs().max(), 0) << file;
        }
    }
}

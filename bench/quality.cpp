// How close the images made from a photo shrunk while decoding come to a reference made from the
// whole photo (Lanczos3 to the same size, then the same cut), against vipsthumbnail's. Built and
// run by bench/quality. QUALITY_REFERENCE_GAP=2 makes the reference as libvips' resize does by
// default instead: boxes averaged first down to twice the size, Lanczos3 for the rest.
//
//   quality OURS_DIR PHOTO...
//
// For each kind of derivative (the gallery's big image and thumbnail, the slide, the grid's cell
// and big images; default settings) and each photo: the reference, vipsthumbnail's image
// (thumbnail() to the same size, the same cut), the image made after shrinking by 1, 2, 4 and 8
// while decoding, and the image orvella wrote (OURS_DIR/KIND/BASE.*). Prints the mean absolute
// difference (0..255) and SSIM (luminance, 11x11 Gaussian window of sigma 1.5) of each, averaged
// over the photos, and for each margin m the figures of the rule "the largest shrink that leaves m
// times the pixels asked".

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <vector>
#include <vips/vips8>

using vips::VImage;

namespace {

struct Geometry {
    int width = 0, height = 0;                   // the photo scaled
    int cutX = 0, cutY = 0, cutW = 0, cutH = 0;  // the part kept
};

// The kinds with the default settings; W x H is the upright photo.
Geometry geometryOf(const std::string& kind, int W, int H) {
    Geometry g;
    auto byLongest = [&](int S) {
        if (W > H) {
            g.width = S;
            g.height = int(std::trunc(H * (S * 100.0 / W) / 100.0));
        } else {
            g.height = S;
            g.width = int(std::trunc(W * (S * 100.0 / H) / 100.0));
        }
    };
    // Scaled to cover a w x h box, rounded as orvella's crops round, the centre kept.
    auto covering = [&](int w, int h) {
        const double scale = std::max(double(w) / W, double(h) / H);
        g.width = std::max(w, int(std::lround(W * scale)));
        g.height = std::max(h, int(std::lround(H * scale)));
        g.cutW = w;
        g.cutH = h;
    };
    if (kind == "big") {
        byLongest(1200);
    } else if (kind == "thumb") {  // the 600 x 450 crop of the photo
        covering(600, 450);
    } else if (kind == "slide") {  // covers 960 x 640, centre kept
        const double fh = 640 * 100.0 / H, fw = 960 * 100.0 / W;
        if (fh > fw) {
            g.width = int(std::trunc(W * fh / 100.0));
            g.height = 640;
        } else {
            g.width = 960;
            g.height = int(std::trunc(H * fw / 100.0));
        }
        g.cutW = 960;
        g.cutH = 640;
    } else if (kind == "grid") {  // the 960 x 720 cell
        covering(960, 720);
    } else {  // gridbig: the grid's big image, longest side 1200
        const double scale = std::min(1.0, 1200.0 / std::max(W, H));
        g.width = std::max(1, int(std::lround(W * scale)));
        g.height = std::max(1, int(std::lround(H * scale)));
    }
    if (g.cutW == 0) {
        g.cutW = g.width;
        g.cutH = g.height;
    }
    g.cutX = std::max(0, (g.width - g.cutW) / 2);
    g.cutY = std::max(0, (g.height - g.cutH) / 2);
    g.cutW = std::min(g.cutW, g.width - g.cutX);
    g.cutH = std::min(g.cutH, g.height - g.cutY);
    return g;
}

VImage rgb8(VImage image) {
    image = image.colourspace(VIPS_INTERPRETATION_sRGB);
    // Onto white, as orvella writes a photo with transparency into a JPEG.
    if (image.bands() == 4)
        image =
            image.flatten(VImage::option()->set("background", std::vector<double>{255, 255, 255}));
    if (image.bands() > 3) image = image.extract_band(0, VImage::option()->set("n", 3));
    return image.cast(VIPS_FORMAT_UCHAR);
}

// Lanczos3 all the way (libvips' resize with no "gap"), or with libvips' default gap of 2 (boxes
// averaged first, down to twice the size) when QUALITY_REFERENCE_GAP says so.
double referenceGap() {
    const char* gap = std::getenv("QUALITY_REFERENCE_GAP");
    return gap ? std::atof(gap) : 0.0;
}

VImage scaledAndCut(const VImage& decoded, const Geometry& g) {
    VImage out = decoded.resize(double(g.width) / decoded.width(),
                                VImage::option()
                                    ->set("vscale", double(g.height) / decoded.height())
                                    ->set("gap", referenceGap()));
    if (out.width() < g.cutX + g.cutW || out.height() < g.cutY + g.cutH)
        out = out.embed(0, 0, g.cutX + g.cutW, g.cutY + g.cutH,
                        VImage::option()->set("extend", VIPS_EXTEND_COPY));
    return out.extract_area(g.cutX, g.cutY, g.cutW, g.cutH).copy_memory();
}

VImage opened(const std::string& path, int shrink) {
    const char* loader = vips_foreign_find_load(path.c_str());
    auto* options = VImage::option();
    if (shrink > 1 && loader && std::string(loader) == "VipsForeignLoadJpegFile")
        options->set("shrink", shrink);
    else if (shrink > 1 && loader && std::string(loader) == "VipsForeignLoadWebpFile")
        options->set("scale", 1.0 / shrink);
    else if (shrink > 1)
        return VImage();
    return rgb8(VImage::new_from_file(path.c_str(), options).autorot());
}

double meanAbsoluteDifference(const VImage& a, const VImage& b) {
    return (a.cast(VIPS_FORMAT_FLOAT) - b.cast(VIPS_FORMAT_FLOAT)).abs().avg();
}

double structuralSimilarity(const VImage& a, const VImage& b) {
    const auto luma = [](const VImage& v) {
        return v.colourspace(VIPS_INTERPRETATION_B_W).extract_band(0).cast(VIPS_FORMAT_FLOAT);
    };
    const VImage x = luma(a), y = luma(b);
    const VImage mask = VImage::gaussmat(
        1.5, 0.01,
        VImage::option()->set("separable", true)->set("precision", VIPS_PRECISION_FLOAT));
    const auto blur = [&](const VImage& v) {
        return v.convsep(mask, VImage::option()->set("precision", VIPS_PRECISION_FLOAT))
            .copy_memory();
    };
    const double c1 = std::pow(0.01 * 255, 2), c2 = std::pow(0.03 * 255, 2);
    const VImage mx = blur(x), my = blur(y);
    const VImage sxx = blur(x * x) - mx * mx, syy = blur(y * y) - my * my,
                 sxy = blur(x * y) - mx * my;
    const VImage map =
        ((mx * my * 2 + c1) * (sxy * 2 + c2)) / ((mx * mx + my * my + c1) * (sxx + syy + c2));
    return map.avg();
}

struct Figures {
    double mad = 0, ssim = 0;
    int count = 0;
    void add(const VImage& image, const VImage& reference) {
        mad += meanAbsoluteDifference(image, reference);
        ssim += structuralSimilarity(image, reference);
        ++count;
    }
    void print(const char* name) const {
        if (count)
            std::printf("    %-34s MAD %6.3f  SSIM %.5f  (%d photos)\n", name, mad / count,
                        ssim / count, count);
    }
};

// A JPEG round trip at the quality orvella writes its JPEGs with, for the kinds it writes as JPEG.
VImage asWritten(const VImage& image, bool jpeg) {
    if (!jpeg) return image;
    VipsBlob* blob = image.jpegsave_buffer(VImage::option()->set("Q", 92));
    size_t length = 0;
    const void* data = vips_blob_get(blob, &length);
    VImage back = VImage::new_from_buffer(data, length, "").copy_memory();
    vips_area_unref(VIPS_AREA(blob));
    return back;
}

std::string oursOf(const std::string& dir, const std::string& kind, const std::string& photo) {
    const std::string base = std::filesystem::path(photo).stem().string();
    for (const char* ext : {".png", ".jpeg", ".jpg", ".JPG"}) {
        const std::string path = dir + "/" + kind + "/" + base + ext;
        if (std::filesystem::exists(path)) return path;
    }
    return {};
}

}  // namespace

int main(int argc, char** argv) {
    if (VIPS_INIT(argv[0])) return 1;
    if (argc < 3) {
        std::fprintf(stderr, "usage: quality OURS_DIR PHOTO...\n");
        return 2;
    }
    const std::string ours = argv[1];
    const std::vector<double> margins = {1.0, 1.25, 1.5, 1.75, 2.0, 3.0};
    bool allMet = true;
    for (const std::string kind : {"big", "thumb", "slide", "grid", "gridbig"}) {
        const bool jpeg = kind == "slide" || kind == "grid" || kind == "gridbig";
        Figures thumbnail, written;
        std::map<int, Figures> byShrink;
        std::map<double, Figures> byMargin;
        for (int i = 2; i < argc; ++i) {
            const std::string path = argv[i];
            const VImage whole = opened(path, 1);
            const Geometry g = geometryOf(kind, whole.width(), whole.height());
            const VImage reference = scaledAndCut(whole, g);
            const VImage vt = rgb8(VImage::thumbnail(
                path.c_str(), g.width,
                VImage::option()->set("height", g.height)->set("size", VIPS_SIZE_FORCE)));
            thumbnail.add(asWritten(scaledAndCut(vt, g), jpeg), reference);
            std::map<int, VImage> made;
            for (const int k : {1, 2, 4, 8}) {
                const VImage decoded = k == 1 ? whole : opened(path, k);
                if (decoded.is_null() || decoded.width() < g.width || decoded.height() < g.height)
                    break;
                made[k] = asWritten(scaledAndCut(decoded, g), jpeg);
                byShrink[k].add(made[k], reference);
            }
            for (const double m : margins) {
                int chosen = 1;
                for (const int k : {2, 4, 8})
                    if (whole.width() / k >= m * g.width && whole.height() / k >= m * g.height &&
                        made.count(k))
                        chosen = k;
                byMargin[m].add(made[chosen], reference);
            }
            if (const std::string file = oursOf(ours, kind, path); !file.empty())
                written.add(rgb8(VImage::new_from_file(file.c_str())), reference);
        }
        std::printf("%s (%s)\n", kind.c_str(), jpeg ? "written as JPEG Q92" : "lossless");
        thumbnail.print("vipsthumbnail");
        for (const auto& [k, f] : byShrink)
            f.print(("shrink " + std::to_string(k) + " on load").c_str());
        for (const auto& [m, f] : byMargin) {
            char name[64];
            const bool met = f.mad / f.count <= thumbnail.mad / thumbnail.count + 1e-9 &&
                             f.ssim / f.count >= thumbnail.ssim / thumbnail.count - 1e-9;
            std::snprintf(name, sizeof name, "margin %.2f%s", m, met ? " (as close)" : "");
            f.print(name);
        }
        if (written.count) {
            const bool met = written.mad / written.count <= thumbnail.mad / thumbnail.count &&
                             written.ssim / written.count >= thumbnail.ssim / thumbnail.count;
            allMet = allMet && met;
            written.print(met ? "orvella (as close: yes)" : "orvella (as close: NO)");
        }
    }
    vips_shutdown();
    return allMet ? 0 : 3;
}

#pragma once

#include <QString>

// Photos in the formats of phones and the web, made once per build (in its test output) by libvips
// from one of Debian's mate-backgrounds photos shrunk to 480 x 300, captions set by exiftool:
//   photo.jpg, tall.jpg    the sRGB original and its pixels turned a quarter: the references
//   land-EXT.EXT           `vips copy photo.jpg` for heic, avif, webp and jxl ("Land EXT")
//   tall-EXT.EXT           `vips copy tall.jpg` ("Tall EXT")
//   turned-EXT.EXT         webp and jxl: landscape pixels, EXIF orientation 6 ("Turned EXT")
//   p3.heic, nclx.heic     photo.jpg in Display P3, its ICC profile or an nclx box only ("P3")
namespace formatfixtures {

// The folder, ending with "/".
QString folder();
// The reference a fixture is seen as: "tall" for tall and turned photos, else "photo".
QString referenceOf(const QString& fileName);
// The mean difference (0..255) of two images as a colour-managed viewer shows them: each taken
// into sRGB through its own profile, the second resized to the first's size.
double shownDifference(const QString& a, const QString& b);

}  // namespace formatfixtures

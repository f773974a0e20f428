#pragma once

#include <QStringList>

// Photos in the formats of phones and the web, made once per build from a mate-backgrounds photo
// shrunk to 480 x 300 (libvips; captions by exiftool): land-EXT.EXT and tall-EXT.EXT (pixels
// turned) for heic, avif, webp, jxl; turned-EXT.EXT (EXIF orientation 6) for webp and jxl;
// p3.heic (Display P3, ICC profile) and nclx.heic (Display P3 named by an nclx box only). Their
// JPEG references photo.jpg and tall.jpg lie beside them.
namespace formatfixtures {

QString folder();      // ends with "/"
QStringList photos();  // the fixtures, without the references
// The reference a fixture shows: "tall" for tall and turned photos, else "photo".
QString referenceOf(const QString& fileName);
// The mean difference (0..255) of two images as a colour-managed viewer shows them (each through
// its own profile), the second resized to the first's size.
double shownDifference(const QString& a, const QString& b);

}  // namespace formatfixtures

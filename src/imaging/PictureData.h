#pragma once

// The inside of a Picture, for the imaging sources (which include libvips themselves).

#include <vips/vips8>

#include "imaging/Picture.h"

struct Picture::Data {
    vips::VImage pixels;  // in memory: 3 bands, or 4 with alpha; may be smaller than width x height
    int width = 0;
    int height = 0;
    QString type;
    bool carriesMetadata = false;  // its source's EXIF, IPTC and XMP travel with it

    // The same picture with other pixels, now at their own size.
    Picture with(const vips::VImage& image) const;
};

#pragma once

#include <QString>
#include <QStringList>

// The photos the program takes in, by file name extension: the one list behind the window's file
// dialogs and drops, folders given to the command line, the image tools and the photo types the
// image code reads.
namespace PhotoFileTypes {

// Lower case, in the order dialogs offer them: png, jpg, jpeg, tif, tiff, then the formats of
// today's phones and the web: heic, heif, avif, webp, jxl.
const QStringList& extensions();
// A photo by its extension, in any case.
bool isPhotoFileName(const QString& fileName);
// The extensions in both cases as a file dialog's patterns: "*.png *.jpg ... *.PNG *.JPG ...".
QString dialogPatterns();

}  // namespace PhotoFileTypes

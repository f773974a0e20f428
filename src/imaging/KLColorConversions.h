#pragma once

#include <QString>
#include <functional>
#include <memory>

// Recoloured copies of a photo: fixed effects chosen by a code ("0".."11") and enhancements that
// take one value ("0".."10"). The copy goes to folder + the photo's file name and is written only
// for the extensions tif/TIF/tiff/TIFF, jpg/JPG/jpeg/JPEG and png (lower case); every operation
// answers "OK". One object remembers the filter of its last call: an unknown code runs it again.
class KLColorConversions {
  public:
    KLColorConversions();
    ~KLColorConversions();
    KLColorConversions(const KLColorConversions&) = delete;
    KLColorConversions& operator=(const KLColorConversions&) = delete;

    QString convertColorTo(const QString& path, const QString& folder, const QString& code);
    QString enhanceColorTo(const QString& path, const QString& folder, const QString& code,
                           float value);
    // Blurs the photo and discards the result: it writes nothing.
    QString hApplyGaussianBlur(const QString& path, float radius);
    // The value the enhancement field shows after enhancement `index` is chosen.
    static QString hSetDefaultValue(int index, const QString& currentText);

    // True when a copy of a photo with this file name would be written (the exact extension).
    static bool writesFileNamed(const QString& fileName);

    // Whether the last convert/enhance call wrote a file, and where it went.
    bool lastWritten = false;
    QString lastOutputPath;

  private:
    struct Filter;
    QString run(const QString& path, const QString& folder, std::shared_ptr<Filter> filter);

    std::shared_ptr<Filter> filter_;  // the filter of the last call, with its input photo
};

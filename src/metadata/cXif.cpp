#include "metadata/cXif.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <algorithm>
#include <exiv2/exiv2.hpp>
#include <iterator>

#include "metadata/mMeta.h"
#include "services/Log.h"

namespace {

const QString kStamp = QStringLiteral("Keldra");
const QString kFailed = QStringLiteral("Failed");

// The value a missing key receives: 0 in the tag's own type. The versions and the pixel size are
// what every EXIF writer fills in itself, so they get their real values.
Exiv2::Value::AutoPtr completion(const Exiv2::ExifKey& key, const Exiv2::Image& image) {
    const std::string name = key.tagName();
    std::string text = "0";
    if (name == "ExifVersion")
        text = "48 50 51 50";  // "0232"
    else if (name == "FlashpixVersion")
        text = "48 49 48 48";  // "0100"
    else if (name == "PixelXDimension")
        text = std::to_string(image.pixelWidth());
    else if (name == "PixelYDimension")
        text = std::to_string(image.pixelHeight());
    const Exiv2::TypeId type = key.defaultTypeId();
    if (type == Exiv2::unsignedRational || type == Exiv2::signedRational) text = "0/1";
    if (type == Exiv2::comment) text = "charset=Ascii ";
    Exiv2::Value::AutoPtr value = Exiv2::Value::create(type);
    value->read(text);
    return value;
}

bool sameFile(const QString& a, const QString& b) {
    const QFileInfo first(a);
    const QFileInfo second(b);
    if (first.absoluteFilePath() == second.absoluteFilePath()) return true;
    return second.exists() && first.canonicalFilePath() == second.canonicalFilePath();
}

}  // namespace

QByteArray cXif::exifBlockOf(const QString& path) {
    const mMeta exiv2;  // sets Exiv2 up once for the process
    try {
        Exiv2::Image::AutoPtr image =
            Exiv2::ImageFactory::open(QFile::encodeName(path).toStdString());
        if (!image.get() || !image->good()) return {};
        image->readMetadata();
        Exiv2::ExifData exif;
        for (const Exiv2::Exifdatum& datum : image->exifData()) {
            // The strips, tiles, sizes and compression belong to the image data of this file;
            // the pixels are handed over upright.
            const std::string group = datum.groupName();
            if (group == "Image" || group == "Photo" || group == "GPSInfo" || group == "Iop") {
                static const char* const structural[] = {"ImageWidth",
                                                         "ImageLength",
                                                         "BitsPerSample",
                                                         "Compression",
                                                         "PhotometricInterpretation",
                                                         "StripOffsets",
                                                         "SamplesPerPixel",
                                                         "RowsPerStrip",
                                                         "StripByteCounts",
                                                         "PlanarConfiguration",
                                                         "TileWidth",
                                                         "TileLength",
                                                         "TileOffsets",
                                                         "TileByteCounts",
                                                         "SampleFormat",
                                                         "ExtraSamples",
                                                         "Predictor",
                                                         "InterColorProfile",
                                                         "XMLPacket",
                                                         "IPTCNAA",
                                                         "ImageResources",
                                                         "Orientation"};
                const std::string name = datum.tagName();
                if (std::find(std::begin(structural), std::end(structural), name) !=
                    std::end(structural))
                    continue;
                exif.add(datum);
            }
        }
        if (exif.empty()) return {};
        Exiv2::Blob blob;
        Exiv2::ExifParser::encode(blob, Exiv2::littleEndian, exif);
        if (blob.empty()) return {};
        return QByteArrayLiteral("Exif\0\0") +
               QByteArray(reinterpret_cast<const char*>(blob.data()), qsizetype(blob.size()));
    } catch (const std::exception& e) {
        klLog() << "EXIF of" << path << "not readable:" << e.what();
    } catch (...) {
        klLog() << "EXIF of" << path << "not readable";
    }
    return {};
}

QStringList cXif::keys() {
    return {"ExposureTime",
            "FNumber",
            "ExposureProgram",
            "SpectralSensitivity",
            "ISOSpeedRatings",
            "OECF",
            "ExifVersion",
            "DateTimeOriginal",
            "DateTimeDigitized",
            "ComponentsConfiguration",
            "CompressedBitsPerPixel",
            "ShutterSpeedValue",
            "ApertureValue",
            "BrightnessValue",
            "ExposureBiasValue",
            "MaxApertureValue",
            "SubjectDistance",
            "MeteringMode",
            "LightSource",
            "Flash",
            "FocalLength",
            "SubjectArea",
            "MakerNote",
            "UserComment",
            "SubSecTime",
            "SubSecTimeDigitized",
            "FlashpixVersion",
            "ColorSpace",
            "PixelXDimension",
            "PixelYDimension",
            "RelatedSoundFile",
            "FlashEnergy",
            "SpatialFrequencyResponse",
            "FocalPlaneXResolution",
            "FocalPlaneYResolution",
            "FocalPlaneResolutionUnit",
            "SubjectLocation",
            "ExposureIndex",
            "SensingMethod",
            "FileSource",
            "SceneType",
            "CFAPattern",
            "CustomRendered",
            "ExposureMode",
            "WhiteBalance",
            "DigitalZoomRatio",
            "FocalLengthIn35mmFilm",
            "SceneCaptureType",
            "GainControl",
            "Contrast",
            "Saturation",
            "Sharpness",
            "DeviceSettingDescription",
            "SubjectDistanceRange",
            "ImageUniqueID",
            "Gamma"};
}

QString cXif::writeXif(const QString& input, const QString& output) {
    rememberedValues.clear();
    if (sameFile(input, output)) {
        klLog() << "EXIF completion refused: the output is the input" << input;
        return kFailed;
    }
    QByteArray data;
    {
        QFile file(input);
        if (!file.open(QIODevice::ReadOnly)) return kFailed;
        data = file.readAll();
        if (file.error() != QFile::NoError || data.isEmpty()) return kFailed;
    }
    const mMeta exiv2;  // sets Exiv2 up once for the process
    try {
        Exiv2::Image::AutoPtr image = Exiv2::ImageFactory::open(
            reinterpret_cast<const Exiv2::byte*>(data.constData()), long(data.size()));
        if (!image.get() || !image->good()) return kFailed;
        image->readMetadata();
        Exiv2::ExifData exif = image->exifData();
        for (const QString& name : keys()) {
            const Exiv2::ExifKey key("Exif.Photo." + name.toStdString());
            const auto it = exif.findKey(key);
            if (it != exif.end()) {
                rememberedValues.append(QString::fromStdString(it->toString()));
            } else {
                exif.add(key, completion(key, *image).get());
                rememberedValues.append(QString());
            }
        }
        Exiv2::CommentValue comment;
        comment.read("charset=Ascii " + kStamp.toStdString());
        exif["Exif.Photo.UserComment"].setValue(&comment);
        const Exiv2::Rational gamma = Exiv2::floatToRationalCast(99.999f);
        exif["Exif.Photo.Gamma"] = Exiv2::URational(uint32_t(gamma.first), uint32_t(gamma.second));
        image->setExifData(exif);
        image->writeMetadata();

        Exiv2::BasicIo& io = image->io();
        if (io.open() != 0) return kFailed;
        const Exiv2::DataBuf bytes = io.read(long(io.size()));
        io.close();
        QSaveFile file(output);
        if (bytes.size_ <= 0 || !file.open(QIODevice::WriteOnly) ||
            file.write(reinterpret_cast<const char*>(bytes.pData_), bytes.size_) != bytes.size_ ||
            !file.commit()) {
            klLog() << "EXIF completion not written:" << output << file.errorString();
            return kFailed;
        }
        return kStamp;
    } catch (const std::exception& e) {
        klLog() << "EXIF of" << input << "not completed:" << e.what();
    } catch (...) {
        klLog() << "EXIF of" << input << "not completed";
    }
    return kFailed;
}

#include "services/cColorWellHandling.h"

#include "services/TextValues.h"
#include "services/cNSColorHandling.h"

const std::array<const char*, 14> cColorWellHandling::kTextFieldOfColorWell = {
    "tfNSColorWellObjBGCt",
    "tfNSColorWellObjBGCc",
    "tfNSColorWellObjBCc",
    "tfNSColorWellObjTCt",
    "tfNSColorWellObjPhotoNameCt",
    "tfNSColorWellObjUserExifCommentCt",
    "tfNSColorWellObjBsImage",
    "tfNSColorWellObjThumbnail",
    "tfNSColorWellObjThumbnailShadow",
    "tfNSColorWellObjBbImage",
    "tfNSColorWellObjLightBox",
    "tfNSColorWellObjLightBoxShadow",
    "tfNSColorWellObjRDLightboxBgColor",
    "tfNSColorWellObjRGLightboxBgColor",
};

const std::array<const char*, 22> cColorWellHandling::kColorWellOfTextField = {
    "ascNSColorWellObjBGCt",
    "ascNSColorWellObjTCt",
    "ascNSColorWellObjBGCc",
    nullptr,
    "ascNSColorWellObjBsImage",
    "ascNSColorWellObjBbImage",
    "ascNSColorWellObjPhotoNameCt",
    "ascNSColorWellObjUserExifCommentCt",
    "ascNSColorWellObjLightBox",
    "ascNSColorWellObjLightBoxShadow",
    nullptr,
    "ascNSColorWellObjThumbnail",
    "ascNSColorWellObjThumbnailShadow",
    "ascNSColorWellObjSsDescriptionTextColor",
    "ascNSColorWellObjSsCaptionTextColor",
    "ascNSColorWellObjSsBackgroundColor",
    "ascNSColorWellObjRGBackgroundColor",
    "ascNSColorWellObjRGDescriptionColor",
    "ascNSColorWellObjRgMetaDataColor",
    "ascNSColorWellObjSsDotColor",
    "ascNSColorWellObjRDLightboxBgColor",
    "ascNSColorWellObjRGLightboxBgColor",
};

std::optional<cColorWellHandling::FieldUpdate> cColorWellHandling::hCallHEXfromColorwell(
    int tag, const QColor& color) {
    if (tag < 0 || tag >= int(kTextFieldOfColorWell.size())) return std::nullopt;
    return FieldUpdate{QString::fromLatin1(kTextFieldOfColorWell[tag]),
                       cNSColorHandling::getHEXValue(color)};
}

std::optional<cColorWellHandling::WellUpdate> cColorWellHandling::controlTextDidEndEditing(
    int tag, const QString& text) {
    if (tag < 0 || tag >= int(kColorWellOfTextField.size())) return std::nullopt;
    const char* well = kColorWellOfTextField[tag];
    if (!well) return std::nullopt;
    return WellUpdate{QString::fromLatin1(well), cNSColorHandling::colorFromHexRGB(text)};
}

QString cColorWellHandling::boxRadius(int rcTypeIndex, const QString& frameThickness,
                                      const QString& boxThickness, const QString& rcRadius) {
    if (rcTypeIndex != 0) return QStringLiteral("50");
    const qint64 sum = qint64(TextValues::intValue(frameThickness)) +
                       2 * qint64(TextValues::intValue(boxThickness)) +
                       qint64(TextValues::intValue(rcRadius));
    return QString::number(sum);
}

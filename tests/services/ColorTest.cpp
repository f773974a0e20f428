#include <gtest/gtest.h>

#include "services/cColorWellHandling.h"
#include "services/cNSColorHandling.h"

namespace {

TEST(ColorHandling, HexTruncatesEachComponent) {
    EXPECT_EQ(cNSColorHandling::getHEXValue(QColor::fromRgbF(1.0f, 0.5f, 0.0f)), "FF7F00");
    EXPECT_EQ(cNSColorHandling::hGetHexFromRGB(QColor::fromRgbF(1.0f, 0.5f, 0.0f)), "FF7F00");
    EXPECT_EQ(cNSColorHandling::getHEXValue(QColor::fromRgbF(0.999f, 0.0039f, 0.25f)), "FE003F");
    // Not an RGB colour: converted first.
    EXPECT_EQ(cNSColorHandling::getHEXValue(QColor::fromHsv(0, 0, 255)), "FFFFFF");
}

TEST(ColorHandling, EveryColourTextRoundTrips) {
    for (int v = 0; v < 256; ++v) {
        const QString text = QString::asprintf("%02X%02X%02X", v, 255 - v, (v * 37) & 255);
        EXPECT_EQ(cNSColorHandling::getHEXValue(cNSColorHandling::colorFromHexRGB(text)), text);
    }
}

TEST(ColorHandling, ScansTextAsOneHexNumber) {
    struct Case {
        QString text;
        QString hex;
    };
    const Case cases[] = {
        {"FF8800", "FF8800"},
        {"ff8800", "FF8800"},
        {"  0x00ff00", "00FF00"},
        {"#FF0000", "000000"},
        {"", "000000"},
        {"zz", "000000"},
        {"12", "000012"},
        {"ABCDEFzz", "ABCDEF"},
        {"1234567", "234567"},       // bits above blue-green-red are ignored
        {"FFFFFFFFFFFF", "FFFFFF"},  // too large for 32 bits: saturates
    };
    cNSColorHandling handling;
    for (const Case& c : cases) {
        const QColor color = handling.colorFromHexToRGB(c.text);
        EXPECT_EQ(cNSColorHandling::getHEXValue(color), c.hex) << c.text.toStdString();
        EXPECT_EQ(color.alphaF(), 1.0f);
    }
}

TEST(ColorHandling, SetHexValueNeedsExactlySixLeadingDigits) {
    struct Case {
        QString text;
        std::optional<QString> hex;
    };
    const Case cases[] = {
        {"#ff8800", "FF8800"},  {"ff8800", "FF8800"},       {"ff8800zz", "FF8800"},
        {"ff88", std::nullopt}, {"#ff88000", std::nullopt}, {"##ff8800", std::nullopt},
        {"", std::nullopt},     {" ff8800", std::nullopt},
    };
    for (const Case& c : cases) {
        const auto color = cNSColorHandling::setHEXValue(c.text);
        ASSERT_EQ(color.has_value(), c.hex.has_value()) << c.text.toStdString();
        if (color) {
            EXPECT_EQ(cNSColorHandling::getHEXValue(*color), *c.hex);
        }
    }
}

TEST(ColorWellHandling, WellTagsChooseTheirTextFields) {
    const std::vector<std::pair<int, QString>> cases = {{0, "tfNSColorWellObjBGCt"},
                                                        {1, "tfNSColorWellObjBGCc"},
                                                        {3, "tfNSColorWellObjTCt"},
                                                        {10, "tfNSColorWellObjLightBox"},
                                                        {13, "tfNSColorWellObjRGLightboxBgColor"}};
    for (const auto& [tag, field] : cases) {
        const auto update = cColorWellHandling::hCallHEXfromColorwell(tag, QColor(255, 127, 0));
        ASSERT_TRUE(update) << tag;
        EXPECT_EQ(update->fieldName, field);
        EXPECT_EQ(update->hex, "FF7F00");
    }
    EXPECT_FALSE(cColorWellHandling::hCallHEXfromColorwell(14, Qt::red));
    EXPECT_FALSE(cColorWellHandling::hCallHEXfromColorwell(-1, Qt::red));
}

TEST(ColorWellHandling, FieldTagsChooseTheirColourWells) {
    const std::vector<std::pair<int, QString>> cases = {{0, "ascNSColorWellObjBGCt"},
                                                        {1, "ascNSColorWellObjTCt"},
                                                        {2, "ascNSColorWellObjBGCc"},
                                                        {9, "ascNSColorWellObjLightBoxShadow"},
                                                        {11, "ascNSColorWellObjThumbnail"},
                                                        {18, "ascNSColorWellObjRgMetaDataColor"},
                                                        {21, "ascNSColorWellObjRGLightboxBgColor"}};
    for (const auto& [tag, well] : cases) {
        const auto update = cColorWellHandling::controlTextDidEndEditing(tag, "00FF80");
        ASSERT_TRUE(update) << tag;
        EXPECT_EQ(update->wellName, well);
        EXPECT_EQ(update->color, QColor(0, 255, 128));
    }
    for (int tag : {3, 10, 22, 99, -1}) {
        EXPECT_FALSE(cColorWellHandling::controlTextDidEndEditing(tag, "00FF80")) << tag;
    }
    // "#" is not skipped when a field sets its well.
    EXPECT_EQ(cColorWellHandling::controlTextDidEndEditing(0, "#FF0000")->color, QColor(0, 0, 0));
}

TEST(ColorWellHandling, BoxRadius) {
    EXPECT_EQ(cColorWellHandling::boxRadius(1, "10", "5", "3"), "50");
    EXPECT_EQ(cColorWellHandling::boxRadius(2, "", "", ""), "50");
    EXPECT_EQ(cColorWellHandling::boxRadius(0, "10", "5", "3"), "23");
    EXPECT_EQ(cColorWellHandling::boxRadius(0, " 4px", "x", "-2"), "2");
    EXPECT_EQ(cColorWellHandling::boxRadius(0, "2147483647", "2147483647", "0"), "6442450941");
}

}  // namespace

#include <gtest/gtest.h>

#include "services/cColorWellHandling.h"
#include "services/cNSColorHandling.h"

// Hex text truncates each component; a colour from text scans one hex number.
TEST(ColorHandling, HexTextAndColourFromText) {
    EXPECT_EQ(cNSColorHandling::getHEXValue(QColor::fromRgbF(1.0f, 0.5f, 0.0f)), "FF7F00");
    EXPECT_EQ(cNSColorHandling::hGetHexFromRGB(QColor::fromRgbF(1.0f, 0.5f, 0.0f)), "FF7F00");
    EXPECT_EQ(cNSColorHandling::getHEXValue(QColor::fromHsv(0, 0, 255)), "FFFFFF");  // made RGB
    const std::pair<QString, QString> cases[] = {
        {"ff8800", "FF8800"},   {"  0x00ff00", "00FF00"}, {"#FF0000", "000000"},
        {"", "000000"},         {"zz", "000000"},         {"12", "000012"},
        {"ABCDEFzz", "ABCDEF"}, {"1234567", "234567"},  // bits above blue-green-red are ignored
    };
    for (const auto& [text, hex] : cases) {
        const QColor color = cNSColorHandling().colorFromHexToRGB(text);
        EXPECT_EQ(cNSColorHandling::getHEXValue(color), hex) << text.toStdString();
        EXPECT_EQ(color.alphaF(), 1.0f);
    }
}

TEST(ColorHandling, SetHexValueNeedsSixLeadingDigits) {
    const std::pair<QString, QString> cases[] = {
        // "" when nothing changes
        {"#ff8800", "FF8800"}, {"ff8800zz", "FF8800"}, {"ff88", ""}, {"#ff88000", ""},
        {"##ff8800", ""},      {" ff8800", ""},        {"", ""}};
    for (const auto& [text, hex] : cases) {
        const auto color = cNSColorHandling::setHEXValue(text);
        EXPECT_EQ(color ? cNSColorHandling::getHEXValue(*color) : QString(), hex)
            << text.toStdString();
    }
}

// The two tag tables are not mirror images of each other; that is kept on purpose.
TEST(ColorWellHandling, TagsChooseFieldsAndWells) {
    using H = cColorWellHandling;
    const QColor orange(255, 127, 0);
    EXPECT_EQ(H::hCallHEXfromColorwell(1, orange).value().fieldName, "tfNSColorWellObjBGCc");
    EXPECT_EQ(H::hCallHEXfromColorwell(13, orange).value().fieldName,
              "tfNSColorWellObjRGLightboxBgColor");
    EXPECT_EQ(H::hCallHEXfromColorwell(0, orange).value().hex, "FF7F00");
    EXPECT_FALSE(H::hCallHEXfromColorwell(14, orange));
    EXPECT_EQ(H::controlTextDidEndEditing(1, "00FF80").value().wellName, "ascNSColorWellObjTCt");
    EXPECT_EQ(H::controlTextDidEndEditing(21, "00FF80").value().wellName,
              "ascNSColorWellObjRGLightboxBgColor");
    EXPECT_EQ(H::controlTextDidEndEditing(2, "00FF80").value().color, QColor(0, 255, 128));
    EXPECT_EQ(H::controlTextDidEndEditing(0, "#FF0000").value().color, QColor(0, 0, 0));
    for (int tag : {3, 10, 22}) EXPECT_FALSE(H::controlTextDidEndEditing(tag, "00FF80")) << tag;
    EXPECT_EQ(H::boxRadius(1, "10", "5", "3"), "50");
    EXPECT_EQ(H::boxRadius(0, "10", "5", "3"), "23");
}

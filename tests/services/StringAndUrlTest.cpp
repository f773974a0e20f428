#include <gtest/gtest.h>

#include "services/TextValues.h"
#include "services/cNSStringHandling.h"
#include "services/cToolBox.h"
#include "support/TestSupport.h"

TEST(StringHandling, SplitKeepsEveryEmptyPart) {
    const std::pair<QString, QStringList> cases[] = {
        {"a;b;", {"a", "b", ""}}, {";a;;b", {"", "a", "", "b"}}, {"", {""}}};
    for (const auto& [text, parts] : cases)
        EXPECT_EQ(cNSStringHandling::hSplitString(text, ";"), parts) << text.toStdString();
}

TEST(StringHandling, Base64WithoutLineBreaks) {
    QByteArray bytes;
    for (int i = 0; i < 300; ++i) bytes.append(char(i * 7));
    const QString text = cNSStringHandling::hConvertNSdToNSstr(bytes);
    EXPECT_EQ(text.size(), 400);  // no line breaks
    EXPECT_EQ(cNSStringHandling::hConvertNSstrToNSd(text), bytes);
    EXPECT_EQ(cNSStringHandling::hConvertNSdToNSstr("Orvella"), "T3J2ZWxsYQ==");
    for (const QString bad : {"T3J2*ZWxsYQ==", "T3J2\nZWxsYQ==", "not base64!"})
        EXPECT_TRUE(cNSStringHandling::hConvertNSstrToNSd(bad).isEmpty()) << bad.toStdString();
}

TEST(ToolBox, PercentEncodesExactlyFourCharacters) {
    EXPECT_EQ(cToolBox::percentEncode("file:///a b/x?y=1&z+2%é#;.html"),
              "file:///a b/x%3Fy%3D1%26z%2B2%é#;.html");
    RecordingUserInterface ui;
    cToolBox(ui).hShowURL2("file:///tmp/My Site/R&D+1/index.html");
    EXPECT_EQ(ui.opened, QStringList{"file:///tmp/My Site/R%26D%2B1/index.html"});
    EXPECT_EQ(cToolBox::hNSStrToUrl("file:///tmp/a?b.html").toLocalFile(), "/tmp/a?b.html");
}

TEST(TextValues, ReadsTheLeadingNumberLikeATextField) {
    const std::pair<QString, int> cases[] = {{"12", 12},
                                             {"  -7px", -7},
                                             {"+3", 3},
                                             {"", 0},
                                             {"abc", 0},
                                             {"3.9", 3},
                                             {"99999999999", 2147483647}};
    for (const auto& [text, value] : cases)
        EXPECT_EQ(TextValues::intValue(text), value) << text.toStdString();
    EXPECT_DOUBLE_EQ(TextValues::doubleValue(" -1.5e1x"), -15.0);
}

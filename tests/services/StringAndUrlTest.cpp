#include <gtest/gtest.h>

#include "services/cNSStringHandling.h"
#include "services/cToolBox.h"
#include "support/TestSupport.h"

namespace {

TEST(StringHandling, SplitKeepsEveryEmptyPart) {
    struct Case {
        QString text, separator;
        QStringList parts;
    };
    const Case cases[] = {
        {"a;b;", ";", {"a", "b", ""}},
        {";a;;b", ";", {"", "a", "", "b"}},
        {"", ";", {""}},
        {"Show Filename;EXIF User Comment", ";", {"Show Filename", "EXIF User Comment"}},
        {"a||b|c", "||", {"a", "b|c"}},
        {"abc", "", {"abc"}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(cNSStringHandling::hSplitString(c.text, c.separator), c.parts)
            << c.text.toStdString();
    }
}

TEST(StringHandling, Base64RoundTripWithoutLineBreaks) {
    QByteArray bytes;
    for (int i = 0; i < 300; ++i) bytes.append(char(i * 7));
    const QString text = cNSStringHandling::hConvertNSdToNSstr(bytes);
    EXPECT_FALSE(text.contains(u'\n'));
    EXPECT_EQ(text.size(), 400);
    EXPECT_EQ(cNSStringHandling::hConvertNSstrToNSd(text), bytes);
    EXPECT_EQ(cNSStringHandling::hConvertNSdToNSstr("Orvella"), "T3J2ZWxsYQ==");
}

TEST(StringHandling, InvalidBase64GivesNothing) {
    for (const QString& bad : {QStringLiteral("T3J2*ZWxsYQ=="), QStringLiteral("T3J2\nZWxsYQ=="),
                               QStringLiteral("T3J2ZWxsYQ==é"), QStringLiteral("not base64!")}) {
        EXPECT_TRUE(cNSStringHandling::hConvertNSstrToNSd(bad).isEmpty()) << bad.toStdString();
    }
}

TEST(StringHandling, SmallEdits) {
    using S = cNSStringHandling;
    EXPECT_EQ(S::hConcatString("a", "", "c"), "ac");
    EXPECT_EQ(S::hInsertStringInString("abc", "X", 1), "aXbc");
    EXPECT_EQ(S::hInsertStringInString("abc", "X", 99), "abcX");
    EXPECT_EQ(S::hSubsectionString("abcdef", 2, 3), "cde");
    EXPECT_EQ(S::hSubsectionString("abc", 5, 3), "");
    EXPECT_EQ(S::hReplaceStringInString("a.b.c", ".", "/"), "a/b/c");
    EXPECT_EQ(S::hRemoveWhiteSpace(" a b\tc\n"), "abc");
    EXPECT_EQ(S::hRemoveNonLetters("IMG_0412 é.jpg"), "IMGéjpg");
    EXPECT_EQ(S::hConvertAccentLetters("Café Ærø naïve"), "Cafe Ærø naive");
    EXPECT_EQ(S::hStripString("  x y \n"), "x y");
    EXPECT_EQ(S::hNSDataToNSString(S::hNSStringToNSData("Zürich")), "Zürich");
}

TEST(ToolBox, PercentEncodesExactlyFourCharacters) {
    EXPECT_EQ(cToolBox::percentEncode("file:///home/a b/x?y=1&z+2%.html"),
              "file:///home/a b/x%3Fy%3D1%26z%2B2%.html");
    EXPECT_EQ(cToolBox::percentEncode("é#;"), "é#;");
}

TEST(ToolBox, ShowUrlHandsTheEncodedTextToTheUserInterface) {
    RecordingUserInterface ui;
    cToolBox(ui).hShowURL2("file:///tmp/My Site/R&D+1/index.html");
    ASSERT_EQ(ui.opened.size(), 1);
    EXPECT_EQ(ui.opened[0], "file:///tmp/My Site/R%26D%2B1/index.html");
}

TEST(ToolBox, UrlFromEncodedText) {
    const QUrl url = cToolBox::hNSStrToUrl("file:///tmp/a?b.html");
    EXPECT_TRUE(url.isLocalFile());
    EXPECT_EQ(url.toLocalFile(), "/tmp/a?b.html");
}

}  // namespace

#include <gtest/gtest.h>

#include "generators/OutputKinds.h"
#include "presets/SettingsStore.h"

TEST(SettingsStore, SetNormalisesOrRefuses) {
    // Popups by title or index, colours with or without "#" (also by the colour well's name),
    // checkboxes 0 or 1; `stored` is "" when the value is refused.
    const std::tuple<QString, QString, QString> cases[] = {
        {"pbTitleFontSize", "18px", "18px"},
        {"pbTitleFontSize", "2", "12px"},
        {"pbTitleFontSize", "19px", ""},
        {"pubPgMetaData", "IPTC City", "6"},
        {"pubPgMetaData", "0", "0"},
        {"pubPgMetaData", "14", ""},
        {"tfHTMLbackgroundColor", "#ff8800", "FF8800"},
        {"ascNSColorWellObjBGCt", "a0b1c2", "A0B1C2"},
        {"tfHTMLbackgroundColor", "ff88", ""},
        {"btShowTitle", "0", "0"},
        {"btShowTitle", "true", ""},
        {"noSuchControl", "1", ""}};
    for (const auto& [name, value, stored] : cases) {
        SCOPED_TRACE((name + " = " + value).toStdString());
        SettingsStore store(OutputKinds::registry());
        QString error;
        EXPECT_EQ(store.set(name, value, &error), !stored.isEmpty());
        if (stored.isEmpty())
            EXPECT_TRUE(error.contains(name)) << error.toStdString();
        else
            EXPECT_EQ(store.text(name), stored);
    }
    SettingsStore store(OutputKinds::registry());
    ASSERT_TRUE(store.set("pubPgMetaData", "IPTC City"));
    EXPECT_EQ(store.title("pubPgMetaData"), "IPTC City");
    EXPECT_EQ(store.index("pbTitleFontSize"), 12);  // the default "32px", by title
    EXPECT_FALSE(store.isOn("btShowFileName"));
}

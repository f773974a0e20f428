#pragma once

#include <QString>
#include <QStringList>

// The pieces of page text that every output kind writes the same way. Pure functions: no file
// access, no settings store.
namespace PageText {

// The XHTML 1.0 Transitional prologue up to and including the viewport meta line.
QString headPrologue();
// The script line that loads jQuery 1.9.1 from the Google CDN (no newline).
QString jQueryLine();

// The web-font families the popups offer; any other title means Trirong.
const QStringList& fontFamilies();
// The family a title stands for: one of fontFamilies(), or "Trirong".
QString fontFamily(const QString& title);
// "<link href=\"https://fonts.googleapis.com/css?family=Exo+2:300,400,500,700,900\"
// rel=\"stylesheet\">" + newline, for the family of `title`.
QString webFontLink(const QString& title);
// "font-family: 'Exo 2', sans-serif;" + newline, or "font-family: 'Trirong', serif;" + newline.
QString fontLine(const QString& title);

// Weight titles as the popups offer them and as CSS numbers: "Light" 300, "Regular" 400,
// "Medium" 500, "Bold" 700, anything else 900.
const QStringList& weightTitles();
QString weight(const QString& title);
// Font sizes offered by the size popups, with their CSS unit.
const QStringList& fontSizes();
// Segments of an alignment control: 0 "left", 1 "center", anything else "right".
const QStringList& alignmentTitles();
QString alignment(int segment);

// "#" + the six hex digits of a colour setting.
QString hashColor(const QString& hex);

// Text for element content: & < > as entities (quotes too, so the same text is safe anywhere).
QString escapeText(const QString& text);
// Text for a double- or single-quoted attribute value.
QString escapeAttribute(const QString& text);

// A value put into a stylesheet declaration: the characters that could end the declaration or
// the rule (; { } < > quotes, backslash, line breaks) are left out.
QString cssValue(const QString& text);

// One path segment of a relative URL: every byte but letters, digits, "-", "_", "." and "~"
// percent-encoded as UTF-8, so any file name a file system allows can be linked.
QString urlSegment(const QString& name);
// A relative URL of a folder and a file name, such as "KLimages_b/My%20photo.jpeg".
QString urlPath(const QString& folder, const QString& fileName);

// A page name as the user typed it, without the ".html" or ".htm" the run adds itself (any case),
// so "album.html" names "album.html" and not "album.html.html".
QString pageName(const QString& typed);

}  // namespace PageText

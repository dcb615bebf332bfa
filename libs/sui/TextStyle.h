// Text styles of the status dialog, and the pieces that its blocks are built from.
#pragma once

#include "plat/DString.h"
#include "plat/String.h"

namespace mui {
class MuContainer;
class MuElement;
class MuImage;
class MuLayout;
class MuStatic;
class MuText;
} // namespace mui

namespace sui {

/// The looks of a text. Size 120 is body text; colours are theme names or "#rrggbb", null for none of its own.
struct TextStyle {
    enum Flag : unsigned { Italic = 1, Underline = 2 };

    int size = 120;
    int weight = 400;
    unsigned flags = 0;
    const char* colour = nullptr;
    const char* background = nullptr;

    plat::String css() const; ///< for the style attribute of marked-up text
    void applyTo(mui::MuElement* element) const;
};

/// `weight`, or the regular one where bold text of this size would fall back to a smaller font.
int weightFor(int size, int weight);

/// `html` inside a div of that style, its links in `colourOfLinks` unless they state a look (null leaves them).
plat::String styledHtml(const TextStyle& style, const char* html, const char* colourOfLinks);

/// `text` (null is empty) without characters that show nothing, such as controls and marks of direction, which could
/// disguise it; invalid UTF-8 becomes U+FFFD. Lines, tabs and blanks stay as they are: for one line see
/// plat::visibleText.
plat::String literalText(const char* text);

/// literalText as markup: escaped.
plat::String escapedText(const char* text);

/// The colour of links in the current theme.
const char* themedLinkColour();

constexpr int iconUnits = 31;    ///< the icon column
constexpr int iconGapUnits = 24; ///< between icon column and text column

/// A row of an icon and a title; the smaller of the two stands in the middle of the other's first line.
struct TitleRow {
    /// `name` is the title's; `rowName` may be "".
    TitleRow(mui::MuContainer* parent, const char* rowName, const char* iconName, const char* imageName,
             const char* name, const char* text);

    mui::MuLayout* row;
    mui::MuImage* icon;
    mui::MuStatic* title;
};

/// A row that begins in the text column: what is added to it stands under a TitleRow's title.
mui::MuLayout* addTextRow(mui::MuContainer* parent, const char* name);

/// A heading of a block.
mui::MuStatic* addHeading(mui::MuContainer* parent, const char* text);

} // namespace sui

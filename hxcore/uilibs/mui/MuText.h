// Text with markup and links.
#pragma once

#include "mui/MuElement.h"
#include "plat/Markup.h"

#include <vector>

namespace mui {

class MuContainer;

/// A marked-up text that wraps, with links that pointer and keys reach.
///
/// A clicked link goes to the link callback; without one nothing happens. Text from outside must be escaped
/// (plat::MString does it). The label is the text without its markup.
class MuText : public MuElement, public plat::Markup::Handler {
public:
    enum class Align { Left = 0, Centre = 1, Right = 2 };

    static MuText* create(MuContainer* parent, const char* name, const char* markup, Align align = Align::Left);

    virtual void setText(const char* markup); ///< free if unchanged
    const char* getText() const { return markup.c_str(); }
    void setLinkCallback(plat::Markup::LinkCallback* callback) { linkCallback = callback; } ///< borrowed, may be null
    Align getAlign() const { return align; }
    virtual void setWrap(bool wrap) = 0;             ///< on at first
    virtual void setSelectable(bool selectable) = 0; ///< off at first
    int getLinkCount() const { return static_cast<int>(links.size()); }
    bool activateLink(int index); ///< false if there is no such link or it is inert

    // MuElement
    const char* getType() override { return "text"; }
    plat::String getState() override;
    bool handleCommand(const char* command, const char* argument) override;

    // plat::Markup::Handler: collects the links
    void addLink(const plat::Markup::Style& style, const char* text, const char* href) override;

protected:
    struct Link {
        plat::String text;
        plat::String href;
    };

    MuText(const char* name, const char* markup, Align align);

    void linkActivated(const char* href); ///< passes it to the link callback

private:
    void parseLinks();

    plat::String markup;
    std::vector<Link> links;
    plat::Markup::LinkCallback* linkCallback = nullptr;
    Align align;
};

} // namespace mui

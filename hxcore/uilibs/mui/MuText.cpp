#include "mui/MuText.h"

#include "mui/MuContainer.h"
#include "mui/muFactories.h"
#include "mui/oneLine.h"
#include "plat/Assert.h"
#include "plat/DString.h"
#include "plat/Exception.h"
#include "plat/numbers.h"

#include <climits>
#include <cstring>

namespace mui {

MuText* MuText::create(MuContainer* parent, const char* name, const char* markup, Align align) {
    ASSERT(muTextFactory);
    MuText* text = muTextFactory(name, markup, static_cast<int>(align));
    parent->add(text);
    return text;
}

MuText::MuText(const char* name, const char* markup_, Align align_)
    : MuElement(name), markup(markup_ ? markup_ : ""), align(align_) {
    parseLinks();
}

void MuText::setText(const char* newMarkup) {
    if (markup == newMarkup)
        return;
    markup = newMarkup ? newMarkup : "";
    parseLinks();
}

void MuText::parseLinks() {
    links.clear();
    label = "";
    try {
        plat::Markup::ParserHtml::instance().parse(markup.c_str(), this);
        label = plat::Markup::strip(markup.c_str());
    } catch (const plat::Exception&) {
        links.clear(); // the widget shows the exception's text in place of the markup
    }
}

void MuText::addLink(const plat::Markup::Style&, const char* text, const char* href) {
    links.push_back({text ? text : href, href});
}

bool MuText::activateLink(int index) {
    if (index < 0 || index >= getLinkCount() || isInert())
        return false;
    // A copy: the callback may set another text.
    const plat::String href = links[static_cast<size_t>(index)].href;
    linkActivated(href.c_str());
    return true;
}

void MuText::linkActivated(const char* href) {
    if (linkCallback)
        linkCallback->linkClicked(href);
}

plat::String MuText::getState() {
    plat::DString state("element Text\n");
    for (size_t i = 0; i < links.size(); ++i)
        state.format("%d %s\n", static_cast<int>(i), oneLine(links[i].href.get()).c_str());
    state.append(commonState());
    return state.take();
}

bool MuText::handleCommand(const char* command, const char* argument) {
    int index = 0;
    return std::strcmp(command, "click") == 0 && plat::parseIntInRange(argument, INT_MIN, INT_MAX, index) &&
           activateLink(index);
}

} // namespace mui

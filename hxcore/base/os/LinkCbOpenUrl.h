// Links in marked-up text that open in the desktop's browser.
#pragma once

#include "os/openUrl.h"
#include "plat/Markup.h"

namespace plat {

class LinkCbOpenUrl : public Markup::LinkCallback {
public:
    void linkClicked(const char* href) override { os::openUrl(href); }
};

} // namespace plat

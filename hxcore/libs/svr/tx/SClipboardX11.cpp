#include "svr/tx/SClipboardX11.h"

#include "plat/ConfigParameter.h"
#include "plat/LogSrc.h"
#include "plat/utf8.h"
#include "tx/TX.h"
#include "tx/latin1.h"

#include <functional>

namespace svr {
namespace {
plat::LogSrc log("SClipboardX11");

plat::IntParameter poll("poll", plat::LocKey("svr_param_sclipboardx11_polltime"), 0, /*isAdvanced=*/false,
                        /*owner=*/nullptr, /*minValue=*/0);
plat::BoolParameter sendPrimary("SendPrimary", plat::LocKey("svr_param_sclipboardx11_sendprimary"),
                                /*defaultValue=*/true);

std::size_t digestOf(std::string_view text) { return std::hash<std::string_view>{}(text); }
} // namespace

void SClipboardX11::start() {
    if (!tx::dpy)
        return;
    if (!mgr)
        mgr.reset(new tx::TXClipboardMgr(this, poll.value(), sendPrimary.value())); // as the private base that we are
    hasLast = false; // who watches from here on knows of nothing
    mgr->start();
}

void SClipboardX11::stop() {
    if (mgr)
        mgr->stop();
}

void SClipboardX11::setCutText(std::string_view text) {
    if (!mgr)
        return;
    const bool valid = plat::utf8::isValid(text.data(), text.data() + text.size());
    const std::string utf8 = valid ? std::string(text) : tx::latin1ToUtf8(text);
    remember(utf8);
    mgr->setText(utf8);
}

void SClipboardX11::textCopied(const std::string& utf8) {
    // A clipboard manager takes over what we offer; a program sets both selections: neither is news.
    if (hasLast && utf8.size() == lastSize && digestOf(utf8) == lastDigest) {
        log.debug("Filtering out duplicate cut text");
        return;
    }
    remember(utf8);
    callback->desktopCutText(utf8);
}

void SClipboardX11::remember(std::string_view text) {
    hasLast = true;
    lastSize = text.size();
    lastDigest = digestOf(text);
}

} // namespace svr

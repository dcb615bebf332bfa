// The screen, as widgets see it.
#pragma once

#include "tx/TXEventHandler.h"
#include "wvw/WRoot.h"

#include <cstddef>
#include <map>
#include <memory>
#include <vector>

namespace tx {

class TXWParent;

/// Tells widgets the size of the screen and shows popup widgets in windows of their own.
class TXWRoot : public wvw::WRoot, public TXEventHandler {
public:
    static TXWRoot& instance();
    ~TXWRoot() override;

    // wvw::WRoot
    rfb::Point screenSize() override;
    void showPopup(wvw::Widget* widget, bool show, bool grab, const rfb::Point& position) override;

    // TXEventHandler: a press outside a popup that grabs closes all popups
    bool handleEvent(XEvent* event) override;

    void closePopups();
    void reap(); ///< destroys windows of closed popups that were still in their own event
    size_t popupCount() const { return popups.size(); }
    TXWParent* findPopup(const wvw::Widget* widget); ///< null if it isn't shown

private:
    TXWRoot();
    void retire(std::unique_ptr<TXWParent> window);

    std::map<const wvw::Widget*, std::unique_ptr<TXWParent>> popups;
    std::vector<std::unique_ptr<TXWParent>> closed; // hidden, and in their own event when they were
};

} // namespace tx

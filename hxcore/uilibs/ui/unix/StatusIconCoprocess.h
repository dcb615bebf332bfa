// The icon in the notification area, in a process of its own.
#pragma once

#include "io/MsgIpc.h"
#include "plat/String.h"
#include "plat/Timer.h"
#include "ui/gtkwrap/AppIndicator.h"
#include "ui/gtkwrap/StatusIcon.h"
#include "ui/unix/StatusIconMenu.h"
#include "ui/unix/StatusIconMenuGtk.h"
#include "ui/unix/StatusNotifierItem.h"

#include <cstdint>
#include <memory>

namespace ui {

/// The helper's end of the link that docs/links/statusIcon.md describes. It lives as long as the link, then quits the
/// loop.
///
/// An icon shows in one of three ways, never in two at once: as GtkStatusIcon in an XEmbed tray, by the indicator
/// library, or as StatusNotifierItem. Asked for either of the first two it also takes the third, where the one asked
/// for can't be had.
class StatusIconCoprocess : private io::MsgIpc::Callback,
                            private io::MsgIpc::Reader,
                            private gtkwrap::StatusIcon::Callback,
                            private gtkwrap::AppIndicator::Callback,
                            private StatusNotifierItem::Callback,
                            private StatusIconMenuGtk::Callback,
                            private plat::Timer::Callback {
public:
    /// Takes the link. `useGtk`: GTK was started and its loop is ours. `programPath` is the indicator's id.
    StatusIconCoprocess(io::Io* link, bool useGtk, const char* programPath);
    ~StatusIconCoprocess() override;
    StatusIconCoprocess(const StatusIconCoprocess&) = delete;
    StatusIconCoprocess& operator=(const StatusIconCoprocess&) = delete;

    /// Starts GTK as far as an icon needs it; false where it can't be used. Once, before the loop is made.
    static bool startGtk(int argc, char** argv);

private:
    // io::MsgIpc::Callback
    void ipcClosed(io::MsgIpc* link) override;
    void ipcError(io::MsgIpc* link, const plat::Exception& failure) override;
    // io::MsgIpc::Reader
    bool readMsg(const char* name, rdr::InStream& in, io::MsgIpc* link) override;
    // gtkwrap::StatusIcon::Callback, gtkwrap::AppIndicator::Callback
    void statusIconChanged() override;
    void statusIconActivated() override { sendActivate(); }
    void indicatorChanged(bool shown) override;
    // StatusNotifierItem::Callback
    bool itemMayRegister() override;
    void itemChanged() override;
    void itemActivated() override { sendActivate(); }
    void itemMenuChosen(uint32_t id) override { sendMenuAction(id); }
    // StatusIconMenuGtk::Callback
    void gtkMenuItemChosen(uint32_t id) override { sendMenuAction(id); }
    // plat::Timer::Callback
    bool timerExpired(plat::Timer* timer) override;

    // One a message
    void readCreate(rdr::InStream& in);
    void readSetImage(rdr::InStream& in);
    void readSetTooltip(rdr::InStream& in);
    void readSetEnv(rdr::InStream& in);
    void readAdd(rdr::InStream& in);
    void readRemove(rdr::InStream& in);
    void readSetText(rdr::InStream& in);
    void readSetEnabled(rdr::InStream& in);
    void readSetChecked(rdr::InStream& in);

    void create(uint32_t type);
    void createStatusIcon();
    void createIndicator();
    void arrange();
    void refresh();
    void refreshStatusIcon();
    void updateShown();
    bool isShown() const;
    void sendEmbedded(bool nowShown);
    void sendActivate();
    void sendMenuAction(uint32_t id);

    bool useGtk;
    plat::String programPath;
    plat::String inheritedBus; // what DBUS_SESSION_BUS_ADDRESS was at first
    io::MsgIpc link;
    StatusIconMenu menu;
    std::unique_ptr<StatusIconMenuGtk> gtkMenu; // null without GTK
    std::unique_ptr<gtkwrap::StatusIcon> icon;  // null until it is asked for
    std::unique_ptr<gtkwrap::AppIndicator> indicator;
    StatusNotifierItem item;
    plat::Timer refreshTimer{this};
    plat::Timer arrangeTimer{this};
    plat::Timer trayTimer{this};
    plat::String image;
    plat::String overlay;
    plat::String tooltip;
    bool hasPicture = false; // of `image`, as the status icon shows it
    bool isCreated = false;  // the client has asked for an icon
    bool indicatorShown = false;
    bool trayWaitIsOver = false; // a tray was there and did not take the icon
    bool shown = false;          // what the client was told
};

} // namespace ui

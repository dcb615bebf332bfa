// The icon in the notification area, from the side of the UI.
#pragma once

#include "io/MsgIpc.h"
#include "plat/String.h"
#include "plat/Timer.h"
#include "ui/Menu.h"
#include "ui/unix/DesktopEnvironment.h"

#include <cstdint>
#include <map>
#include <memory>
#include <sys/types.h>
#include <vector>

namespace ui {

/// The client of the helper process that shows the icon.
///
/// The helper is this program on its road "-statusicon", over a launch pipe. Losing it never hurts: what can't be sent
/// is dropped, and a helper that ended or spoke nonsense is started again, five times at most, after 1 s, 5 s, 25 s and
/// so on, with all that it has to show; one that lived for ten minutes gets its five starts anew.
class StatusIconGtk : private DesktopEnvironment::Callback,
                      private io::MsgIpc::Callback,
                      private io::MsgIpc::Reader,
                      private plat::Timer::Callback {
public:
    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void iconEmbedded(bool shown) = 0; ///< it has appeared in a tray, has gone, or will not appear
        virtual void iconActivated() = 0;          ///< the user clicked it
        virtual bool canUseIndicator() = 0;        ///< the icon theme holds our icons
        virtual void desktopChanged() {}           ///< as desktop() tells; it may delete the icon
    };

    enum class IconType : uint32_t { GtkStatusIcon, AppIndicator };

    /// A line of the icon's menu. Its texts keep their "&" marks on the link.
    class Item : public Menu::Item {
    public:
        uint32_t getId() const { return id; }

        // ui::Menu::Item
        void setText(const char* markedText) override;
        void setEnabled(bool on) override;
        void setChecked(bool on) override;

    private:
        friend class StatusIconGtk;
        Item(StatusIconGtk* owner_, uint32_t id_, const char* markedText, const char* imageName,
             Menu::ActionCallback* target, unsigned itemFlags);

        StatusIconGtk* owner;
        uint32_t id;
    };

    /// Starts the helper: `program`, absolute, or this executable if it is null. The callback is borrowed. Throws
    /// nothing for a helper that can't be started.
    explicit StatusIconGtk(Callback* target, const char* program = nullptr);
    ~StatusIconGtk() override; ///< the helper ends by itself once its link has gone

    /// The menu of the icon. The link knows no place for an item: the lines behind one that is put in front of others
    /// are sent anew.
    Menu* menu() { return &root; }

    /// An empty image hides the icon. `overlay` is the end of an image name that begins with "status", or "".
    void setImage(const char* imageName, const char* overlay);
    void setTooltip(const char* text);

    const DesktopEnvironment& desktop() const { return environment; } ///< which the icon follows
    bool isEmbedded() const { return embedded; }
    pid_t helperPid() const { return helper; } ///< 0 while there is none

private:
    class RootMenu : public Menu {
    public:
        explicit RootMenu(StatusIconGtk* owner_) : owner(owner_) {}

        // ui::Menu
        Menu::Item* addItem(const char* markedText, const char* imageName, Menu::Item* before, ActionCallback* action,
                            unsigned flags) override;
        void removeItem(Menu::Item* item) override;
        int itemCount() const override;
        Menu::Item* itemAt(int index) const override;

        StatusIconGtk* owner;
        std::vector<std::unique_ptr<StatusIconGtk::Item>> items;
    };

    // ui::DesktopEnvironment::Callback
    void desktopChanged() override;
    // io::MsgIpc::Callback
    void ipcClosed(io::MsgIpc* link) override;
    // io::MsgIpc::Reader
    bool readMsg(const char* name, rdr::InStream& in, io::MsgIpc* link) override;
    // plat::Timer::Callback
    bool timerExpired(plat::Timer* timer) override;

    void startHelper();
    void linkLost();
    void helperLost();
    void endHelper(int signal);
    void beginEmbedding();
    void embedTimeout();
    void iconEmbedded(bool shown);
    void sendCreate();
    void sendItem(const Item& item);
    void sendImage();
    void sendTooltip();
    void sendAll();
    void sendRemove(const Item& item);
    void sendFlag(const char* name, const Item& item, bool on);
    template <class Write>
    void send(const char* name, Write write); // what fails is swallowed

    Callback* callback;
    plat::String program;
    io::MsgIpc link;
    RootMenu root;
    uint32_t nextItemId = 1;
    std::map<uint32_t, Item*> items;
    plat::String image;
    plat::String overlay;
    plat::String tooltip;
    bool hasImage = false;
    plat::Timer embedTimer;
    plat::Timer restartTimer;
    bool embedded = false;
    bool exhausted = false;
    bool isLossUntold = false; // the link failed while something was sent
    IconType iconType = IconType::GtkStatusIcon;
    pid_t helper = 0;
    int restarts = 0;
    int64_t startedAt = 0;       // monotonic ticks
    bool isDesktopKnown = false; // the helper was asked for an icon
    DesktopEnvironment environment;
};

} // namespace ui

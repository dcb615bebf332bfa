// The block of the status dialog that says how to connect.
#pragma once

#include "mui/MuButton.h"
#include "mui/MuLayout.h"
#include "mui/MuObserver.h"
#include "plat/Markup.h"

namespace mui {
class MuStatic;
class MuText;
} // namespace mui

namespace sui {

struct StatusDialogModel;
struct TitleRow;

/// The address to connect to, what to do with it, and the other ways, which fold out.
///
/// The elements belong to the dialog; this class knows them for as long.
class MuStatusDialogConnectivity : private mui::MuObserver {
public:
    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void blockResized() = 0; ///< the user folded the list: lay the dialog out again
    };

    /// `links` gets clicked links; both callbacks are borrowed.
    MuStatusDialogConnectivity(mui::MuContainer* parent, plat::Markup::LinkCallback* links, Callback* target);
    ~MuStatusDialogConnectivity() override;

    void update(const StatusDialogModel& model);

private:
    // mui::MuObserver
    void muActivated(mui::MuElement* element) override;

    void addOtherWays(mui::MuContainer* parent);
    void showList(bool open);

    Callback* callback;
    mui::MuLayout* block;
    mui::MuStatic* connText = nullptr;
    mui::MuLayout* detailRow = nullptr;
    mui::MuText* connDetail = nullptr;
    mui::MuLayout* otherWaysRow = nullptr;
    mui::MuButton* arrowBtn = nullptr;
    mui::MuButton* otherWaysBtn = nullptr;
    mui::MuLayout* otherWaysList = nullptr;
    mui::MuStatic* otherWays = nullptr;
    bool isOpen = false;
};

} // namespace sui

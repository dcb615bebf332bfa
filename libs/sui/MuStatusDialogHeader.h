// The bar at the top of the status dialog.
#pragma once

#include "mui/MuButton.h"
#include "mui/MuFrame.h"
#include "mui/MuLayout.h"

namespace mui {
class MuImage;
class MuSpacer;
class MuStatic;
} // namespace mui

namespace sui {

struct StatusDialogModel;

/// The logo, the banner in the middle of the window, and the buttons "alert", "user" and "setting".
///
/// The elements belong to the dialog; this class knows them for as long.
class MuStatusDialogHeader {
public:
    explicit MuStatusDialogHeader(mui::MuContainer* dialog);

    void update(const StatusDialogModel& model);
    void centreText(int widthPx); ///< of the window: before each layout

    mui::MuFrame* getFrame() { return frame; }
    mui::MuButton* getAlertButton() { return alert; }
    mui::MuButton* getUserButton() { return user; }
    mui::MuButton* getSettingButton() { return setting; }

private:
    mui::MuButton* addButton(mui::MuLayout* buttons, const char* name, const char* tooltip);
    void updateBadge(const char* edition);

    mui::MuFrame* frame;
    mui::MuLayout* row;
    mui::MuImage* logo;
    mui::MuImage* badge = nullptr; // made on first use
    mui::MuSpacer* leftSpacer;
    mui::MuStatic* text;
    mui::MuButton* alert;
    mui::MuButton* user;
    mui::MuButton* setting;
};

} // namespace sui

// The block of the status dialog with identity and authentication.
#pragma once

#include "plat/Markup.h"

namespace mui {
class MuContainer;
class MuImage;
class MuLayout;
class MuStatic;
class MuText;
} // namespace mui

namespace sui {

struct StatusDialogModel;

/// How connecting users know this computer, and how they are known.
///
/// The elements belong to the dialog; this class knows them for as long.
class MuStatusDialogSecurity {
public:
    MuStatusDialogSecurity(mui::MuContainer* parent, plat::Markup::LinkCallback* links); ///< borrowed

    void update(const StatusDialogModel& model);

private:
    void addIdentity(mui::MuContainer* parent);
    void addAuthentication(mui::MuContainer* parent, plat::Markup::LinkCallback* links);
    void updateChangeLink(int preset, bool canChangePassword);

    mui::MuLayout* idBlock;
    mui::MuLayout* idValues = nullptr;
    mui::MuText* signature = nullptr;
    mui::MuText* catchphrase = nullptr;
    mui::MuStatic* authentication = nullptr;
    mui::MuImage* shield = nullptr;
    mui::MuText* change = nullptr;
};

} // namespace sui

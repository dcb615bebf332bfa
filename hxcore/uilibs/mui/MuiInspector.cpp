#include "mui/MuiInspector.h"

#include "hxutil/metrics.h"
#include "mui/MuDialog.h"
#include "mui/MuLayout.h"
#include "mui/MuText.h"
#include "plat/Assert.h"
#include "plat/MString.h"

namespace mui {
namespace {
MuiInspector* inspector = nullptr;
constexpr int widthUnits = 1600;
constexpr int heightUnits = 800;
constexpr int placeUnits = 100;
constexpr unsigned clearMs = 200;

plat::String plain(const char* text) {
    plat::MString markup;
    markup.text(text);
    return markup.take();
}
} // namespace

MuiInspector::MuiInspector() : timer(this) {
    ASSERT(!inspector);
    inspector = this;
    const rfb::Point size(hxutil::scaled(widthUnits), hxutil::scaled(heightUnits));
    dialog.reset(MuDialog::create("MuiInspector", "MuiInspector", size, MuDialog::AutoHeight));
    MuLayout* main = MuLayout::create(dialog.get(), "main", Orientation::Vertical);
    idText = MuText::create(main, "muiid", plain("<muiid goes here>").c_str());
    typeText = MuText::create(main, "muitype", plain("<type goes here>").c_str());
    stateText = MuText::create(main, "muistate", plain("<state goes here>").c_str());
    dialog->setPosition({hxutil::scaled(placeUnits), hxutil::scaled(placeUnits)});
    dialog->setShown(true);
    timer.start(clearMs);
}

MuiInspector::~MuiInspector() { inspector = nullptr; }

void MuiInspector::show(MuElement* element) {
    idText->setText(plain(getElementId(element).c_str()).c_str());
    typeText->setText(plain(element->getType()).c_str());
    stateText->setText(plain(element->getState().c_str()).c_str());
    dialog->nativeLayout();
}

plat::String MuiInspector::getElementId(MuElement* element) {
    const char* top = element->getTop()->getName();
    const plat::String name = element->getFullName();
    return name.isEmpty() ? plat::String(top) : plat::strFormat("%s.%s", top, name.c_str());
}

bool MuiInspector::timerExpired(plat::Timer*) {
    for (MuText* text : {idText, typeText, stateText})
        text->setText("");
    return true;
}

} // namespace mui

#include "mui/MuAboutDialog.h"

#include "hxutil/metrics.h"
#include "loc/Localize.h"
#include "loc/format.h"
#include "mui/MuButton.h"
#include "mui/MuButtonBar.h"
#include "mui/MuImage.h"
#include "mui/MuLayout.h"
#include "mui/MuText.h"

namespace mui {
namespace {
constexpr int widthUnits = 800;
constexpr int imageUnits = 88;
} // namespace

MuAboutDialog::MuAboutDialog(MuDialog* parent, const char* productName, const char* imageName, const char* markup,
                             plat::Markup::LinkCallback* links)
    : dialog(MuDialog::create("aboutdlg", loc::formatted(LOC_RAW("mui_aboutdlg_title_fmt"), {productName}).c_str(),
                              {hxutil::scaled(widthUnits), 0}, MuDialog::AutoHeight | MuDialog::FixedSize, parent)) {
    MuLayout* row = MuLayout::create(dialog.get(), nullptr, Orientation::Horizontal);
    row->setSpacing(Mui::instance()->metric(MetricLargeGap));
    const int imageSize = hxutil::scaled(imageUnits);
    MuImage* image = MuImage::create(row, "img", imageName, {imageSize, imageSize});
    row->setChildLayout(image, MuLayout::Natural | MuLayout::Start);
    MuText* text = MuText::create(row, "text", markup);
    row->setChildLayout(text, MuLayout::Stretch | MuLayout::Centre);
    text->setSelectable(true);
    text->setLinkCallback(links);
    MuButtonBar bar(dialog.get(), MuButtonBar::Ok);
    MuButton* ok = bar.getButton(MuButtonBar::Ok);
    dialog->setActionButton(MuDialog::ActionCancel, ok);
    dialog->setDefaultFocus(ok);
    ok->addObserver(this, /*add=*/true);
}

MuAboutDialog::~MuAboutDialog() = default;

void MuAboutDialog::show() { dialog->setShown(true); }

void MuAboutDialog::muActivated(MuElement*) { dialog->close(); }

} // namespace mui

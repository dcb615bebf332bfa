// A dialog of the same content as the status dialog, with FLTK 1.3, for comparison: fltkDialog PNG_DIRECTORY
#include <FL/Fl.H>
#include <FL/Fl_Box.H>
#include <FL/Fl_Button.H>
#include <FL/Fl_Double_Window.H>
#include <FL/Fl_Group.H>
#include <FL/Fl_PNG_Image.H>

#include <string>

namespace {

std::string imageDir;

Fl_PNG_Image* image(const char* name, int size) {
    auto* whole = new Fl_PNG_Image((imageDir + "/" + name + ".png").c_str());
    auto* scaled = static_cast<Fl_PNG_Image*>(whole->copy(size, size));
    delete whole;
    return scaled;
}

void text(int x, int y, int w, int h, const char* words, int size = 12, bool bold = false, Fl_Color colour = FL_BLACK) {
    auto* box = new Fl_Box(x, y, w, h, words);
    box->align(FL_ALIGN_LEFT | FL_ALIGN_INSIDE | FL_ALIGN_WRAP);
    box->labelsize(size);
    box->labelfont(bold ? FL_HELVETICA_BOLD : FL_HELVETICA);
    box->labelcolor(colour);
}

void line(int x, int y, int w, int h, Fl_Color colour) {
    auto* box = new Fl_Box(x, y, w, h);
    box->box(FL_FLAT_BOX);
    box->color(colour);
}

void link(int x, int y, int w, const char* words, Fl_Color colour) {
    text(x, y, w, 15, words, 12, false, colour);
    line(x + 4, y + 15, w - 10, 1, colour);
}

void icon(int x, int y, int size, const char* name) {
    auto* box = new Fl_Box(x, y, size, size);
    box->image(image(name, size));
}

void button(int x, const char* name, const char* tooltip) {
    auto* made = new Fl_Button(x, 5, 32, 32);
    made->box(FL_NO_BOX);
    made->image(image(name, 32));
    made->tooltip(tooltip);
}

} // namespace

int main(int argc, char** argv) {
    imageDir = argc > 1 ? argv[1] : ".";
    const Fl_Color linkColour = fl_rgb_color(56, 56, 200);
    Fl_Double_Window window(780, 439, "Velthar Server");
    window.color(FL_WHITE);
    Fl_Group header(0, 0, 780, 42);
    header.box(FL_FLAT_BOX);
    header.color(fl_rgb_color(236, 236, 236));
    icon(9, 5, 32, "ZEFConnectLogo@2x");
    auto* title = new Fl_Box(200, 0, 380, 42, "Velthar Server - Service Mode");
    title->labelsize(12);
    button(659, "sdWarning@2x", "Status");
    icon(677, 23, 14, "badge1@2x");
    button(699, "sdUser@2x", "Connections");
    button(739, "sdHamburger@2x", "Menu");
    header.end();

    text(35, 77, 400, 21, "Connectivity", 17);
    icon(35, 114, 16, "sdConn@2x");
    text(63, 114, 500, 16, "192.168.4.17", 13, true);
    text(63, 138, 270, 15, "Connecting users can enter this address in");
    link(326, 138, 96, "Velthar Viewer", linkColour);
    icon(38, 164, 10, "rightArrow@2x");
    text(63, 161, 300, 15, "Other ways to connect", 12, false, linkColour);
    line(35, 200, 710, 2, fl_rgb_color(128, 128, 128));
    text(35, 226, 400, 21, "Security", 17);
    icon(35, 263, 16, "sdIdCheck@2x");
    text(63, 263, 500, 16, "Identity check", 13, true);
    text(63, 287, 710, 15,
         "Connecting users should see exactly this signature and catchphrase. If they do not, they should not "
         "continue.");
    text(63, 318, 300, 15, "Signature", 12, true);
    text(63, 333, 300, 15, "2c-7f-19-a4-55-e0-8b-d3");
    text(412, 318, 300, 15, "Catchphrase", 12, true);
    text(412, 333, 330, 15, "Calm harbour otter. Maple violin lantern.");
    icon(35, 364, 16, "sdAuth@2x");
    text(63, 364, 500, 16, "Authentication", 13, true);
    text(63, 388, 140, 15, "ZEF Device Password");
    icon(202, 388, 16, "shield@2x");
    link(222, 388, 122, "Change password", linkColour);
    window.end();
    window.show();
    return Fl::run();
}

// A field, and with "filter" a list of 500 rows that it filters, with FLTK 1.3, for comparison: fltkKeys [filter]
#include <FL/Fl.H>
#include <FL/Fl_Double_Window.H>
#include <FL/Fl_Hold_Browser.H>
#include <FL/Fl_Input.H>

#include <string>

namespace {

void fill(Fl_Widget* field, void* list) {
    auto* browser = static_cast<Fl_Browser*>(list);
    browser->clear();
    for (int i = 0; i < 500; ++i) {
        const std::string number = std::to_string(i);
        const std::string name = "computer-" + number + ".example";
        if (name.find(static_cast<Fl_Input*>(field)->value()) != std::string::npos)
            browser->add((name + "\t" + number).c_str());
    }
}

} // namespace

int main(int argc, char**) {
    static const int widths[] = {600, 100, 0};
    Fl_Double_Window window(0, 0, 900, 560, "Keys");
    Fl_Input field(100, 20, 700, 24, "Filter:");
    Fl_Hold_Browser list(100, 60, 700, 140);
    list.column_widths(widths);
    if (argc > 1) {
        field.when(FL_WHEN_CHANGED);
        field.callback(fill, &list);
        fill(&field, &list);
    } else {
        list.hide();
    }
    window.end();
    Fl::visual(FL_DOUBLE | FL_RGB);
    window.show();
    return Fl::run();
}

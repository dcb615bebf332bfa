// The element toolkit of this process.
#pragma once

#include "plat/NonCopyable.h"

#include <list>
#include <map>
#include <string>
#include <vector>

namespace ui {
class Menu;
}

namespace mui {

class MuElement;
class MuObserver;

/// Which distance a metric is; defaults in units in brackets.
enum Metric {
    MetricSpacing = 0,         ///< [16] between the children of a layout
    MetricCheckIndent = 1,     ///< [8] of text under a check box
    MetricDialogMargin = 2,    ///< [16]
    MetricFrameMargin = 3,     ///< [16]
    MetricMinButtonHeight = 4, ///< [48]
    MetricMinButtonWidth = 5,  ///< [136]
    MetricLargeGap = 6,        ///< [32]
    MetricBarGap = 7,          ///< [40] above a row of buttons
    MetricCount = 8,
};

/// The process-wide register of dialogs, and the metrics that layouts are made with.
///
/// The binding's derived object is made once at start and made current by setInstance.
class Mui : private plat::NonCopyable {
public:
    Mui();
    virtual ~Mui();

    static void setInstance(Mui* mui_); ///< not null, borrowed; it ends with the object
    static Mui* instance();             ///< asserts that there is one
    static bool hasInstance();

    /// Serial numbers count from 0 and are never used again.
    const std::map<int, MuElement*>& getDialogs() const { return dialogs; }
    void addGlobalObserver(MuObserver* observer, bool add); ///< on all dialogs, those to come included; borrowed

    /// Menus that inspection finds by name, which may be empty: not at all; of two with one name the older. Borrowed,
    /// removed before they die.
    void addMenu(const char* name, ui::Menu* menu);
    void removeMenu(ui::Menu* menu);
    ui::Menu* findMenu(const char* name) const; ///< null if there is none
    std::vector<std::string> getMenuNames() const;

    int metric(Metric index) const { return metrics[index]; } ///< pixels
    void setMetrics(const int units[MetricCount]);            ///< scaled here, rounding half away from zero

private:
    friend class MuTopLevelRegister;

    std::map<int, MuElement*> dialogs; // borrowed
    std::list<MuObserver*> globalObservers;
    std::vector<std::pair<std::string, ui::Menu*>> menus;
    int nextSerial = 0;
    int metrics[MetricCount];
};

/// Keeps a top-level element in the register for as long as this member lives.
class MuTopLevelRegister : private plat::NonCopyable {
public:
    explicit MuTopLevelRegister(MuElement* element);
    ~MuTopLevelRegister();
    int getSerial() const { return serial; }

private:
    int serial;
};

} // namespace mui

// The tab of the information center that lists the events.
#pragma once

#include "score/StatusDb.h"
#include "score/StatusEvent.h"
#include "sui/InformationCenterTab.h"

#include <deque>

namespace mui {
class MuButton;
class MuFrame;
class MuList;
class MuSpacer;
class MuStatic;
} // namespace mui

namespace sui {

/// "Messages": what the user should know about, the worst first, with an explanation and what can be done about it.
class StatusTab : public InformationCenterTab, public score::StatusObserver {
public:
    StatusTab(SUiModuleMgr* manager, score::StatusEventDb* eventDb); ///< both borrowed

    void setOptionsDisabled(bool disabled); ///< as the core says; some actions go with the options
    void refresh();                         ///< takes the events afresh and shows them if they are others

    // InformationCenterTab
    void build(mui::MuPager* tabs) override;
    mui::MuElement* firstFocus() override;

private:
    // score::StatusDb::Observer
    void onCommit(score::StatusDb*) override { refresh(); }
    // mui::MuObserver
    void muEvent(mui::MuElement* element, int type) override;

    void buildDetails(mui::MuLayout* parent);
    void buildDetailBody(mui::MuLayout* parent);
    std::deque<score::StatusEvent> sortedEvents() const;
    void show(int selected);
    void fillTable();
    void showDetails();
    void showAction(const score::StatusEvent& event);
    void resolve();

    score::StatusEventDb* events;
    std::deque<score::StatusEvent> shown; // in the order of the rows
    bool optionsDisabled = false;

    // Null before build().
    mui::MuStatic* header = nullptr;
    mui::MuSpacer* above = nullptr; // these two keep the header in the middle while there is nothing else
    mui::MuSpacer* below = nullptr;
    mui::MuLayout* listLayout = nullptr;
    mui::MuList* table = nullptr;
    mui::MuFrame* details = nullptr;
    mui::MuStatic* title = nullptr;
    mui::MuStatic* number = nullptr;
    mui::MuElement* scroll = nullptr;
    mui::MuStatic* text = nullptr;
    mui::MuButton* action = nullptr;
};

/// How the tab sorts: severity descending, then the title whatever its case, null first.
bool standsBefore(const score::StatusEvent& a, const score::StatusEvent& b);

} // namespace sui

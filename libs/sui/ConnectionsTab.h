// The tab of the information center that lists who is connected.
#pragma once

#include "score/ConnectionInfo.h"
#include "sui/ConnectionHistory.h"
#include "sui/InformationCenterTab.h"

#include <vector>

namespace mui {
class MuButton;
class MuFrame;
class MuList;
class MuStatic;
} // namespace mui

namespace sui {

/// "Connections": the table of connections, which can be ended here, and below it those that are over.
class ConnectionsTab : public InformationCenterTab {
public:
    explicit ConnectionsTab(SUiModuleMgr* manager); ///< borrowed

    void addConnection(const score::ConnectionInfo& info);    ///< at the end
    void removeConnection(const score::ConnectionInfo& info); ///< by its identity; an unknown one changes nothing
    const std::vector<score::ConnectionInfo>& connections() const { return data; } ///< in order of arrival
    const ConnectionHistory& history() const { return past; }

    // InformationCenterTab
    void build(mui::MuPager* tabs) override;
    mui::MuElement* firstFocus() override;

private:
    // mui::MuObserver
    void muEvent(mui::MuElement* element, int type) override;

    void buildTable();
    void buildDetails();
    void buildHistory();
    void appendRow(const score::ConnectionInfo& info);
    void showPast(int row);
    void showWhatIsThere();
    void showDetails();
    void disconnect(int i);

    std::vector<score::ConnectionInfo> data;
    std::vector<ConnectionHistory::Start> starts; // of the same connections
    ConnectionHistory past;

    // Null before build().
    mui::MuLayout* nobody = nullptr;
    mui::MuList* table = nullptr;
    mui::MuFrame* details = nullptr;
    mui::MuElement* detailsView = nullptr; // scrolls what is in the frame
    mui::MuStatic* values[4] = {};
    mui::MuButton* disconnectButton = nullptr;
    mui::MuLayout* pastLayout = nullptr;
    mui::MuList* pastTable = nullptr;
};

} // namespace sui

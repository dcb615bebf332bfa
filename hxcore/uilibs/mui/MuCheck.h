// A check box or a radio button.
#pragma once

#include "mui/MuElement.h"

#include <vector>

namespace mui {

class MuContainer;

/// A box with a label that is on, off or neither. Raises EventChanged when the user changes it.
class MuCheck : public MuElement {
public:
    /// Of the members of a group at most one is checked: checking one clears the others, without an event of theirs.
    ///
    /// Made with new; deletes itself when its last member leaves.
    class Group : public MuObserver {
    public:
        void add(MuCheck* member);
        void remove(MuCheck* member); ///< the group may be gone after
        void memberChecked(MuCheck* member);
        /// The next member around the ends that is shown and not inert; `from` itself if there is no other.
        MuCheck* neighbour(MuCheck* from, bool forward) const;

        // MuObserver
        void muChanged(MuElement* element) override;

    private:
        ~Group() override = default;

        std::vector<MuCheck*> members;
    };

    /// With a group it is a radio button. The label may mark its key with "&".
    static MuCheck* create(MuContainer* parent, const char* name, const char* label, Group* group = nullptr);

    ~MuCheck() override;

    virtual void setChecked(bool on); ///< raises no event; not indeterminate any more
    bool isChecked() const { return checked; }
    virtual void setIndeterminate(bool on);
    bool isIndeterminate() const { return indeterminate; }
    bool isRadio() const { return group != nullptr; }
    virtual void setLabel(const char* label);

    // MuElement
    const char* getType() override { return "check"; }
    plat::String getState() override;
    bool handleCommand(const char* command, const char* argument) override;

protected:
    MuCheck(const char* name, const char* label, Group* group);

    Group* getGroup() const { return group; } ///< null for none

    bool checked = false;
    bool indeterminate = false;

private:
    Group* group;
};

} // namespace mui

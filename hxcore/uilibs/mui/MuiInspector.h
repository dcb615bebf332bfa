// Shows which element is which.
#pragma once

#include "plat/NonCopyable.h"
#include "plat/String.h"
#include "plat/Timer.h"

#include <memory>

namespace mui {

class MuDialog;
class MuElement;
class MuText;

/// A dialog for a person who drives the elements by name: it shows the name, type and state of an element.
///
/// One in a process; asserts that there is no other.
class MuiInspector : private plat::Timer::Callback, private plat::NonCopyable {
public:
    MuiInspector();
    ~MuiInspector() override;

    void show(MuElement* element); ///< its name, type and state, until the texts are next cleared
    static plat::String getElementId(MuElement* element); ///< the path that inspection commands take
    MuDialog* getDialog() { return dialog.get(); }

private:
    // plat::Timer::Callback
    bool timerExpired(plat::Timer*) override;

    std::unique_ptr<MuDialog> dialog;
    MuText* idText;
    MuText* typeText;
    MuText* stateText;
    plat::Timer timer;
};

} // namespace mui

// Asks for the address of a viewer that listens.
#pragma once

#include "mui/MuAnimation.h"
#include "mui/MuDialog.h"
#include "mui/MuObserver.h"

#include <memory>

namespace mui {
class MuButton;
class MuEdit;
class MuLayout;
class MuStatic;
} // namespace mui

namespace smisc {

/// A field for the address, then a wheel, then nothing more or why it failed. Enter presses its button, Escape closes.
class AddClientDialog : public mui::MuObserver, private mui::ActionKeyCallback {
public:
    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void connectTo(const char* address) = 0; ///< not blank
    };

    explicit AddClientDialog(Callback* target); ///< borrowed
    ~AddClientDialog() override;

    void show();
    void failed(const char* text); ///< shown literally; only the state goes back if nobody is looking
    void succeeded();              ///< hides it

    // mui::MuObserver
    void muEvent(mui::MuElement* element, int type) override;
    void muActivated(mui::MuElement* element) override;
    void muClosed(mui::MuDialog*) override;

private:
    enum class State { Input, Connecting, Failed };

    bool actionKey(int action, mui::MuDialog*) override;
    void addContent();
    void setState(State next);
    void reset(); // to an empty field
    bool hasAddress();

    Callback* callback;
    std::unique_ptr<mui::MuDialog> dialog;
    mui::MuLayout* viewerRow;
    mui::MuLayout* errorRow;
    mui::MuEdit* edit;
    mui::MuStatic* error;
    mui::MuButton* button;
    std::unique_ptr<mui::MuSpinner> spinner;
    State state = State::Input;
};

} // namespace smisc

// The options of the server.
#pragma once

#include "mui/MuMessageBox.h"
#include "plat/NonCopyable.h"
#include "score/ConfigHelperClient.h"

#include <memory>

namespace sui {

/// Reads the server's configuration through a helper with the rights to change it.
///
/// It has no pages: where they would be shown, a message box says so, and the dialog is finished when that closes.
class OptionsDialog : private mui::MuMessageBox::Callback, private plat::NonCopyable {
public:
    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void optionsFinished() = 0; ///< it is closed; to be deleted from the loop, not from here
    };

    OptionsDialog(mui::MuDialog* parent, Callback* target); ///< both borrowed
    ~OptionsDialog() override;

    /// Starts the helper, elevated in service mode, and waits for the configuration. Throws as
    /// score::ConfigHelperClient does, os::ElevateCancelled among it. Without a core there is nothing to read.
    void load();
    void show();
    void select(const char* section);                       ///< null for the default one
    const char* errorText() const { return failure.get(); } ///< what to tell when load() has thrown; null for none

private:
    // mui::MuMessageBox::Callback
    void messageBoxClosed(mui::MuMessageBox*, unsigned) override { callback->optionsFinished(); }

    Callback* callback;
    score::ConfigHelperClient config;
    plat::String failure;
    mui::MuMessageBox box;
};

} // namespace sui

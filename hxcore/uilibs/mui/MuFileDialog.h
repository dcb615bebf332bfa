// Choosing a file or a folder.
#pragma once

#include "plat/NonCopyable.h"

#include <memory>

namespace mui {

class MuDialog;

/// Asks the user for a path, to read from or to write to.
class MuFileDialog : private plat::NonCopyable {
public:
    /// Exactly one of these runs, once for each showing, from the event loop after the dialog has closed; the dialog
    /// may be deleted in it.
    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void fileChosen(const char* path) = 0;    ///< absolute; null if the user cancelled
        virtual void fileFailed(const char* message) = 0; ///< why the dialog could not be shown or go on
    };

    /// `parent` and `callback` are borrowed; `parent` may be null.
    static std::unique_ptr<MuFileDialog> create(MuDialog* parent, Callback* callback);

    virtual ~MuFileDialog() = default;

    /// `path` is where to begin, absolute or relative to the working directory, a folder or a file that need not exist.
    /// `patterns` are suffixes with commas between them ("png,jpg"), `patternLabel` names them for the user; null for
    /// none. Without `filesMode` folders are chosen.
    virtual void showOpen(const char* title, const char* path, const char* patterns, const char* patternLabel,
                          bool filesMode) = 0;
    virtual void showSave(const char* title, const char* path, const char* patterns, const char* patternLabel,
                          bool filesMode) = 0; ///< asks before a file is overwritten
};

/// Set by the binding at start, beside the factories of elements.
extern MuFileDialog* (*muFileDialogFactory)(MuDialog* parent, MuFileDialog::Callback* callback);

} // namespace mui

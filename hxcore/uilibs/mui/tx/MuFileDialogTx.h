// The file chooser on X11.
#pragma once

#include "mui/MuFileDialog.h"

namespace mui {

class MuFileDialogTxImpl;

/// Makes the dialog on the first show.
class MuFileDialogTx : public MuFileDialog {
public:
    MuFileDialogTx(MuDialog* parent, Callback* callback);
    ~MuFileDialogTx() override;

    // MuFileDialog
    void showOpen(const char* title, const char* path, const char* patterns, const char* patternLabel,
                  bool filesMode) override;
    void showSave(const char* title, const char* path, const char* patterns, const char* patternLabel,
                  bool filesMode) override;

private:
    void show(const char* title, const char* path, const char* patterns, const char* patternLabel, bool saveMode,
              bool filesMode);

    MuDialog* parent;
    Callback* callback;
    std::unique_ptr<MuFileDialogTxImpl> impl;
};

} // namespace mui

#include "mui/tx/MuFileDialogTx.h"

#include "mui/tx/MuFileDialogTxImpl.h"
#include "plat/Exception.h"

namespace mui {

MuFileDialogTx::MuFileDialogTx(MuDialog* parent_, Callback* callback_) : parent(parent_), callback(callback_) {}

MuFileDialogTx::~MuFileDialogTx() = default;

void MuFileDialogTx::showOpen(const char* title, const char* path, const char* patterns, const char* patternLabel,
                              bool filesMode) {
    show(title, path, patterns, patternLabel, /*saveMode=*/false, filesMode);
}

void MuFileDialogTx::showSave(const char* title, const char* path, const char* patterns, const char* patternLabel,
                              bool filesMode) {
    show(title, path, patterns, patternLabel, /*saveMode=*/true, filesMode);
}

void MuFileDialogTx::show(const char* title, const char* path, const char* patterns, const char* patternLabel,
                          bool saveMode, bool filesMode) {
    try {
        if (!impl)
            impl = std::make_unique<MuFileDialogTxImpl>(parent, callback);
        impl->show(title, path, patterns, patternLabel, saveMode, filesMode);
    } catch (const plat::Exception& failure) {
        callback->fileFailed(failure.what()); // we may be gone after
    }
}

} // namespace mui

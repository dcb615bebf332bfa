// A strip that says something about the page it stands on.
#pragma once

#include "mui/MuFrame.h"
#include "plat/Markup.h"

namespace mui {

class MuImage;
class MuText;

/// An icon, a text and perhaps a link on the help colours. The frame is an ordinary element of its parent.
class MuInfoFrame : private plat::Markup::LinkCallback, private plat::NonCopyable {
public:
    enum class Kind { Success, Notify, Error, Preference, Warning, Locked };

    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void infoLinkClicked(MuInfoFrame* info, const char* url) = 0; ///< "app://infoframe//" and the name
    };

    /// `markup` may hold links of its own. `linkName` and `linkText` (plain) may be null: no link.
    MuInfoFrame(MuContainer* parent, const char* name, Kind kind, const char* markup, const char* linkName = nullptr,
                const char* linkText = nullptr, Callback* callback = nullptr);

    void setKind(Kind kind);
    void setText(const char* markup);
    MuFrame* getFrame() { return frame; }

private:
    void linkClicked(const char* href) override;

    Callback* callback;
    MuFrame* frame;
    MuImage* icon;
    MuText* text;
};

} // namespace mui

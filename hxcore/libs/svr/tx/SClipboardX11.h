// The clipboard between the X server's clients and viewers.
#pragma once

#include "plat/NonCopyable.h"
#include "tx/TXClipboardMgr.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace svr {

/// Tells each new text once, and offers what viewers send. Parameters: poll, SendPrimary, UseCutBuffer.
class SClipboardX11 : private tx::TXClipboardMgr::Callback, private plat::NonCopyable {
public:
    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void desktopCutText(const std::string& utf8) = 0; ///< valid, no NULs, not empty
    };

    explicit SClipboardX11(Callback* target) : callback(target) {} ///< borrowed

    void start(); ///< without an X display nothing happens
    void stop();  ///< nothing is told any more; a text that is offered stays

    /// Text of a viewer. What is not UTF-8 is taken for ISO 8859-1, which RFC 6143 7.5.6 asks for.
    void setCutText(std::string_view text);

private:
    void textCopied(const std::string& utf8) override;
    void remember(std::string_view text);

    Callback* callback;
    std::unique_ptr<tx::TXClipboardMgr> mgr; // made at the first start
    bool hasLast = false;
    std::size_t lastSize = 0; // of the text that went either way last
    std::size_t lastDigest = 0;
};

} // namespace svr

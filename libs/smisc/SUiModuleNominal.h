// Features that are known by name.
#pragma once

#include "io/MsgIpc.h"
#include "sui/SUiModule.h"
#include "svr/SAuthentication.h"

#include <initializer_list>

namespace smisc {

/// A feature that the core may offer and that has no face in this program: its name counts among the modules, its
/// authentication schemes are known, and its messages are taken off the link, logged and otherwise left alone.
class SUiModuleNominal : public sui::SUiModule, private io::MsgIpc::Reader {
public:
    struct Scheme {
        const char* name;
        svr::SchemeKind kind;
    };

    SUiModuleNominal(const char* moduleName, sui::SUiModuleMgr* manager,
                     std::initializer_list<const char*> messages = {}, std::initializer_list<Scheme> schemes = {});
    ~SUiModuleNominal() override;

private:
    // io::MsgIpc::Reader: the body is skipped by the link
    bool readMsg(const char* message, rdr::InStream& in, io::MsgIpc* link) override;
};

} // namespace smisc

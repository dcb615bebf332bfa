// The settings of who may connect, and how. The server core acts on them; here they are shown, edited and checked.
#include "plat/ConfigParameter.h"

namespace {
using plat::LocKey;
using plat::StringParameter;

StringParameter authentication("Authentication", LocKey("svr_param_ssecurityfactory_auth"), "SystemAuth");
StringParameter encryption("Encryption", LocKey("svr_param_ssecurityfactory_enc"), "AlwaysOn");
StringParameter securityTypes("SecurityTypes", LocKey("svr_param_ssecurityfactory_types"), "<auto>",
                              /*isAdvanced=*/true);
StringParameter permissions("Permissions", LocKey("svr_param_ssecurityfactory_permissions"), "");
StringParameter guestPermissions("GuestPermissions", LocKey("svr_param_ssecurityfactory_guest_permissions"), "");
StringParameter guestUserName("GuestUserName", LocKey("svr_param_ssecurityfactory_guest_name"), "");
} // namespace

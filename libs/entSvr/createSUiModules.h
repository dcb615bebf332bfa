// The table of modules of this product.
#pragma once

namespace sui {
class SUiModuleMgr;
}

/// Makes all modules in their fixed order; the manager owns them. `section` is where their menu items go.
void createSUiModules(sui::SUiModuleMgr* manager, int section);

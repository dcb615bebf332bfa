// Joins the elements with their windows and widgets.
#pragma once

namespace mui {

/// Fills the factories of all elements. Once at start, after the display is open and a MuiWvw is current.
void fillFactories();

} // namespace mui

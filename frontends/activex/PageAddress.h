// The page that a host's site leads to.
#pragma once

#include <vector>

#include "platform/windows/Win32.h"

namespace kestrelon {

// The addresses of the page behind a site: those of its document, in whatever ways that is found,
// or else of the browser that shows it. "" stands for one that cannot be read. None when the site
// leads to no page, but to an application's form or to its script engine.
//
// The document is asked directly, not late-bound: the page's script could answer in its place.
//
// Asking the site may run any code of the host, which may also take the site away.
std::vector<String> PageAddressesOf(IUnknown& site);

// The window of the page or form behind a site; null where it has none.
HWND WindowOf(IUnknown& site);

}  // namespace kestrelon

#pragma once

#include "host/cls_nimbrel.h"

namespace nimbrel::component {

/// Joins the parts of the add-in to the host that is found by its programmatic identifier, to
/// Windows and to Excel. What it makes stays for as long as the DLL is loaded.
host::Seams Wire();

}  // namespace nimbrel::component

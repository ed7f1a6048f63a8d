#pragma once

#include <vector>

#include "com/com_ptr.h"
#include "com/registration.h"
#include "host/cls_nimbrel.h"

namespace nimbrel::com {

/// The classes that the component has for a host, as they are registered.
ServerEntry ComponentEntry();

/// What makes objects of a class of the component, which get a copy of `seams`; null for a class
/// that it does not have.
ComPtr<IClassFactory> ComponentFactory(REFCLSID class_id, const host::Seams& seams);

}  // namespace nimbrel::com

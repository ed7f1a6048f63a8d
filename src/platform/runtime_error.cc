#include "platform/runtime_error.h"

namespace nimbrel::platform {

void RaiseNothing() {
  throw RuntimeError(kObjectNotSet, "Object variable not set");
}

}  // namespace nimbrel::platform

#include "com/dispatch_object.h"
#include "servers.h"

namespace nimbrel::component {

platform::AutomationServers& Servers(platform::MessageBox& /*messages*/) {
  static com::ComServers servers;
  return servers;
}

}  // namespace nimbrel::component

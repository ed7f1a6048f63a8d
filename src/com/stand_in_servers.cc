#include "com/stand_in_servers.h"

#include "com/dispatch_object.h"

namespace nimbrel::com {

platform::Ref<platform::AutomationObject> StandInServers::CreateObject(
    const std::string& identifier) {
  return (ComServers::IsInstalled(identifier) ? installed_ : stand_ins_).CreateObject(identifier);
}

}  // namespace nimbrel::com

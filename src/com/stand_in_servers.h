#pragma once

#include <string>

#include "platform/automation.h"

namespace nimbrel::com {

/// The programs of this machine, and in place of those that are not installed what stands in for
/// them. Which it is is asked at each start.
class StandInServers final : public platform::AutomationServers {
 public:
  /// Both must live as long as this. `installed` is asked for what has a class here.
  StandInServers(platform::AutomationServers& installed, platform::AutomationServers& stand_ins)
      : installed_(installed), stand_ins_(stand_ins) {}

  platform::Ref<platform::AutomationObject> CreateObject(const std::string& identifier) override;

 private:
  platform::AutomationServers& installed_;
  platform::AutomationServers& stand_ins_;
};

}  // namespace nimbrel::com

#pragma once

#include <cstdint>
#include <string>

#include "platform/ref.h"

namespace nimbrel::model {

/// One weather calendar in memory.
class clsWeatherCal final : public platform::Object {
 public:
  std::string strName;      ///< the calendar's name
  std::int32_t nCount = 0;  ///< the number of periods or windows that were counted for it
};

}  // namespace nimbrel::model

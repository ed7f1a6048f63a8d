#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "platform/automation.h"
#include "platform/ref.h"

namespace nimbrel::cli {

/// Where a reader of a workbook has got to. The add-in only says that something cannot be read; who
/// watched it knows where.
struct CellWatch {
  std::string sheet{};  ///< the sheet that is being read; empty before the first
  /// The cell that was reached last, and whether what it holds may be what ended the reading: it
  /// could not be read, or it holds something.
  std::int32_t row = 0;
  std::int32_t column = 0;
  bool is_suspect = false;
  /// The rows of the sheet of which more than the one cell was read that tells whether there is
  /// anything, in order.
  std::vector<std::int32_t> taken_rows{};
  /// The text of cell A3 of each sheet so far, with the sheet's name in front of it.
  std::vector<std::pair<std::string, std::string>> markers{};
};

/// Makes the objects of other servers, and notes in a CellWatch which cells are read through them.
class WatchedServers final : public platform::AutomationServers {
 public:
  /// Both must outlive all objects made here.
  WatchedServers(platform::AutomationServers& servers, CellWatch& watch)
      : servers_(servers), watch_(watch) {}

  platform::Ref<platform::AutomationObject> CreateObject(const std::string& identifier) override;

 private:
  platform::AutomationServers& servers_;
  CellWatch& watch_;
};

}  // namespace nimbrel::cli

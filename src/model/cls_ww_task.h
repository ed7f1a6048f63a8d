#pragma once

#include <cstdint>
#include <string>

#include "host/corvane8.h"
#include "platform/date.h"
#include "platform/ref.h"
#include "platform/variant.h"
#include "toolkit/list_item.h"

namespace nimbrel::model {

/// One weather window in memory: a non-working period whose start and finish are each uncertain.
/// Stands for the two edge tasks of the plan, and turns one text date and two durations of each
/// into three dates.
class clsWWTask final : public platform::Object {
 public:
  std::string m_strTaskIDStart;        ///< ID of the start edge, and of the window
  std::string m_strTaskDescStart;      ///< description of the start edge, the one that is shown
  platform::Date m_dtStartStart;       ///< earliest start of the non-working period
  platform::Date m_dtLikelyStart;      ///< likely start
  platform::Date m_dtEndStart;         ///< latest start
  std::string m_strTaskIDEnd;          ///< ID of the end edge
  platform::Variant m_strTaskDescEnd;  ///< description of the end edge, a text
  platform::Date m_dtStartEnd;         ///< earliest finish
  platform::Date m_dtLikelyEnd;        ///< likely finish
  platform::Date m_dtEndEnd;           ///< latest finish
  std::string m_strCalName;            ///< name of the window calendar, from the start edge

  /// Reads the window of the start edge `t1` and keeps both edges. Errors are ignored statement by
  /// statement: without a successor link the fields of the end edge stay empty.
  void InitFromTask(const Corvane8::Ref<Corvane8::Task>& t1);

  /// Sets the field of the list column `nCol` from `str`: 0 ID, 1 description, 2 to 4 the earliest,
  /// likely and latest start, 6 to 8 the finishes; any other column sets none. Then each likely and
  /// latest date that is before its edge's earliest date takes that date, and both tasks are
  /// written. Raises error 13, with all as it was, for text that is no date.
  void UpdateFromText(std::string& str, std::int32_t nCol);

  /// Writes both edges. Raises what the host raises, with the steps done so far in the plan, and
  /// error 91 at an edge that is not there.
  void UpdateTask();

  /// Writes the window into a row of the list of windows: the ID of the start edge as its text, the
  /// description and the dates as cells, cell 5 being the blank one. Raises error 6 for a date that
  /// cannot be written, with the cells before it done.
  void PopulateListItem(const toolkit::ListItemRef& lstItem) const;

 private:
  /// Shared with the plan; Nothing before InitFromTask, the end edge also for want of a link.
  Corvane8::Ref<Corvane8::Task> m_taskStart;
  Corvane8::Ref<Corvane8::Task> m_taskEnd;
};

}  // namespace nimbrel::model

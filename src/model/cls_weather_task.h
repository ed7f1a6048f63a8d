#pragma once

#include <cstdint>
#include <string>

#include "host/corvane8.h"
#include "platform/date.h"
#include "platform/ref.h"
#include "platform/variant.h"

namespace nimbrel::model {

/// One event period in memory: reads a period task of the plan into days, fractions and dates,
/// takes one edited text at a time, and writes everything back to the same task.
///
/// All fields are zero or empty until InitFromTask, m_dOccur too. Nothing is refused: a last day
/// before the first, a minimum above the maximum and a probability over 100% are stored as given.
class clsWeatherTask final : public platform::Object {
 public:
  platform::Date m_dtStart;         ///< first day of the period
  platform::Date m_dtEnd;           ///< last day of the period, inclusive; may carry 22:00
  std::int32_t m_nMin = 0;          ///< least non-working length, in whole days
  std::int32_t m_nLikely = 0;       ///< likely length, in whole days
  std::int32_t m_nMax = 0;          ///< greatest length, in whole days
  std::string m_strCalName;         ///< name of the weather calendar
  std::string m_strTaskID;          ///< ID of the task
  platform::Variant m_strTaskDesc;  ///< the period's description, a text
  double m_dOccur = 0.0;            ///< probability of occurrence, 1.0 being 100%

  /// Reads the task `t` and keeps it. Errors are ignored statement by statement: a read that fails
  /// leaves its field as it was.
  void InitFromTask(const Corvane8::Ref<Corvane8::Task>& t);

  /// Sets the field of the list column `nCol` from `str` and writes the task: 0 ID, 1 description,
  /// 2 first day, 3 last day, 4 probability in percent (every "%" is taken out of `str`, in the
  /// caller's text too), 5 to 7 the lengths. Any other column changes no field and still writes the
  /// task. Raises error 13, with the field and the plan as they were, for text that does not parse.
  void UpdateFromText(std::string& str, std::int32_t nCol);

  /// Writes all fields to the task. Away from a plan in days the last day gets the hour 22:00. A
  /// probability of exactly 1.0 makes the task certain. Raises what the host raises, with the steps
  /// done so far in the plan, and error 91 before InitFromTask.
  void UpdateTask();

 private:
  /// Shared with the plan; Nothing before InitFromTask.
  Corvane8::Ref<Corvane8::Task> m_task;
};

}  // namespace nimbrel::model

#pragma once

#include <string>

#include "model/cls_weather_task.h"
#include "platform/date.h"
#include "tests/com/com_test.h"

namespace nimbrel::com {

/// The command that runs the program in Excel's place: "/RegServer" enters it in the registry,
/// "/UnregServer" takes it out.
inline std::wstring ExcelStandIn(const wchar_t* option) {
  return L"\"" + ProgramBeside(L"ExcelStandIn.exe") + L"\" " + option;
}

/// A period to be exported: January 2027, 25%, 4 to 14 days.
inline Ref<model::clsWeatherTask> JanuaryPeriod(const std::string& calendar,
                                                const std::string& description) {
  const auto period = platform::MakeRef<model::clsWeatherTask>();
  period->m_strCalName = calendar;
  period->m_strTaskDesc = description;
  period->m_dtStart = platform::MakeDate(2027, 1, 1);
  period->m_dtEnd = platform::MakeDate(2027, 1, 31);
  period->m_dOccur = 0.25;
  period->m_nMin = 4;
  period->m_nLikely = 7;
  period->m_nMax = 14;
  return period;
}

}  // namespace nimbrel::com

// Weather data to a workbook and back, through the dialog's own buttons and a file on disk: random
// data stays the same in every language that dates are written in.

#include <algorithm>
#include <filesystem>
#include <random>

#include "platform/files.h"
#include "spreadsheet/excel_application.h"
#include "spreadsheet/workbook_viewer.h"
#include "tests/dialog/exchange_fixture.h"

namespace nimbrel::dialog {
namespace {

using model::clsWeatherTask;
using model::clsWWTask;
using platform::Date;

/// A folder that goes with the test.
class ScratchFolder {
 public:
  ScratchFolder() {
    path_ = platform::MakeNewFolder(
        (std::filesystem::temp_directory_path() / "nimbrel-trip-").string());
  }
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  std::string File(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

struct Period {
  std::string calendar;
  std::string description;
  double start, finish;
  std::int32_t min, likely, max;
  friend bool operator==(const Period&, const Period&) = default;
};
struct Window {
  std::string calendar;
  std::string description;
  std::vector<double> dates;
  friend bool operator==(const Window&, const Window&) = default;
};
struct WeatherData {
  std::vector<Period> periods;
  std::vector<double> probabilities;  // apart from the rest, as they are compared otherwise
  std::vector<Window> windows;
};

class WorkbookRoundTrip : public ExchangeButtonsTest,
                          public ::testing::WithParamInterface<std::string> {
 protected:
  WorkbookRoundTrip() {
    Wire(locale_);
    modExcel::Wire({&servers_, &desktop_, {}});
    desktop_.file = folder_.File("weather.xlsx");
    for (const char* const id : {"P1", "P2", "P3", "W1", "W1-END"}) {
      std::erase(plan().tasks, plan().FindTask(id));
    }
    for (const char* const name : {"NORTH SEA", "FROST", "RIVER ICE"}) {
      std::erase(plan().calendars, plan().FindCalendar(name));
    }
    plan().risk_calendars.clear();
  }

  int Random(int least, int most) {
    return std::uniform_int_distribution<int>(least, most)(random_);
  }
  template <class T>
  T OneOf(std::initializer_list<T> values) {
    return values.begin()[Random(0, static_cast<int>(values.size()) - 1)];
  }
  /// A text that is no date and no number in any language: those change on purpose.
  std::string RandomText() {
    std::string text = OneOf<std::string>({"Wind", "=SUM(A1)", "'quoted'", "\"", "<&>", " blank "});
    for (int i = Random(0, 12); i > 0; --i) {
      text += OneOf<std::string>(
          {"a", "Z", " ", "ä", "ß", "Ж", "雨", "🌧", "_x0041_", "%", "\n", ";", "7", "-", "/"});
    }
    return text;
  }
  /// A day that the plan's date format shows in full, in 1901 to 2100.
  Date RandomDay() { return Date{static_cast<double>(Random(400, 73000))}; }

  void AddRandomWeather() {
    // These formats show years in full, and months so that no locale mistakes them for days.
    plan().date_format = OneOf({5, 7, 12, 14});
    plan().time_unit = OneOf({1, 24, 96});
    plan().hours_per_day = OneOf({1, 8, 24});
    for (int calendar = 0; calendar < 3; ++calendar) {
      const std::string name =
          OneOf<std::string>({"RAIN ", "Frost ", "Böe & ", "雪"}) + std::to_string(calendar);
      for (int i = Random(1, 8); i > 0; --i) {
        AddRandomPeriod(name);
      }
      AddRiskCalendar(name);
    }
    for (int calendar = 0; calendar < 2; ++calendar) {
      const std::string name = "ICE " + std::to_string(calendar);
      for (int i = Random(1, 4); i > 0; --i) {
        AddRandomWindow(name);
      }
      AddRiskCalendar(name);
    }
  }
  void AddRandomPeriod(const std::string& calendar) {
    const auto period =
        plan().AddPeriod("E" + std::to_string(++tasks_), calendar, RandomDay(), RandomDay());
    period->description = RandomText();
    const int units = plan().UnitsPerDay();
    period->duration = recording::DurationState{
        1.0 * Random(0, 90) * units, 1.0 * Random(0, 90) * units, 1.0 * Random(0, 90) * units};
    if (Random(0, 2) > 0) {
      period->risk = recording::RiskState{0, Random(0, 10000) / 100.0};
    }
  }
  void AddRandomWindow(const std::string& calendar) {
    const auto day = [this] { return platform::DefaultDateText(RandomDay(), locale_); };
    const std::string id = "W" + std::to_string(++tasks_);
    plan().AddWindow(id, calendar, day(), day());
    plan().Task(id).description = RandomText();
    const int units = plan().UnitsPerDay();
    for (const std::string& edge : {id, id + "-END"}) {
      plan().Task(edge).duration =
          recording::DurationState{0, 1.0 * Random(0, 60) * units, 1.0 * Random(0, 60) * units};
    }
  }

  WeatherData Collect() {
    WeatherData data;
    for (const auto& t : form().m_oStorage.m_colEventTasks) {
      // Only in plans that count in days do periods end at midnight.
      data.periods.push_back({t->m_strCalName, t->m_strTaskDesc.ToText(locale_),
                              t->m_dtStart.serial, platform::DayOf(t->m_dtEnd).serial, t->m_nMin,
                              t->m_nLikely, t->m_nMax});
      data.probabilities.push_back(t->m_dOccur);
    }
    for (const auto& t : form().m_oStorage.m_colWindowTasks) {
      data.windows.push_back(
          {t->m_strCalName,
           t->m_strTaskDescStart,
           {t->m_dtStartStart.serial, t->m_dtLikelyStart.serial, t->m_dtEndStart.serial,
            t->m_dtStartEnd.serial, t->m_dtLikelyEnd.serial, t->m_dtEndEnd.serial}});
    }
    return data;
  }

  const platform::Locale& locale_ = *platform::FindLocale(GetParam());
  ScratchFolder folder_;
  spreadsheet::WorkbookSaver saver_{folder_.File("weather.xlsx")};
  spreadsheet::ExcelServers servers_{saver_};
  std::mt19937 random_;
  int tasks_ = 0;
};

TEST_P(WorkbookRoundTrip, GivesTheSameData) {
  const auto empty = plan();
  for (unsigned seed = 1; seed <= 20; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed) + ", " + GetParam());
    random_.seed(seed);
    plan() = empty;
    desktop_.messages.clear();
    desktop_.answers = {toolkit::Answer::kYes};
    AddRandomWeather();
    NewForm();
    WeatherData before;
    WeatherData after;
    WhileOpen([&] {
      before = Collect();
      form().cmdExport.UserClick();
      form().cmdImport.UserClick();
      after = Collect();
      form().cmdClose.UserClick();
    });
    ASSERT_EQ(desktop_.messages.size(), 2u) << desktop_.messages.back().text;
    ASSERT_EQ(desktop_.messages.back().text, "Import completed!");
    ASSERT_FALSE(before.periods.empty());
    ASSERT_FALSE(before.windows.empty());
    EXPECT_EQ(after.periods, before.periods);
    EXPECT_EQ(after.windows, before.windows);
    ASSERT_EQ(after.probabilities.size(), before.probabilities.size());
    for (std::size_t i = 0; i < before.probabilities.size(); ++i) {
      // Times 100 and back is rounded twice on the way.
      EXPECT_DOUBLE_EQ(after.probabilities[i], before.probabilities[i]);
    }
  }
}

std::vector<std::string> AllLocales() {
  std::vector<std::string> names;
  for (const platform::Locale& locale : platform::KnownLocales()) {
    names.push_back(locale.name);
  }
  return names;
}

INSTANTIATE_TEST_SUITE_P(Locales, WorkbookRoundTrip, ::testing::ValuesIn(AllLocales()),
                         [](const auto& info) {
                           std::string name = info.param;
                           std::replace(name.begin(), name.end(), '-', '_');
                           return name;
                         });

}  // namespace
}  // namespace nimbrel::dialog

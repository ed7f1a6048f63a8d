#include "nimbrel/weather_json.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "engine/objects/host.h"
#include "engine/plan/plan_fault.h"
#include "host/mod_global.h"
#include "model/frm_weather_storage.h"
#include "nimbrel/command_error.h"
#include "nimbrel/input_text.h"
#include "nimbrel/wiring.h"
#include "platform/date.h"

namespace nimbrel::cli {
namespace {

using engine::Plan;
using engine::RiskCalendarDefinition;
using engine::Task;
using engine::TaskKind;
using engine::ThreePoint;
using engine::TimeUnit;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::int32_t Day(int year, int month, int day) {
  return platform::SerialDay(year, month, day);
}

template <class Operation>
void ExpectBadInput(const std::string& text, const Operation& operation) {
  try {
    operation();
    ADD_FAILURE() << "no error; expected: " << text;
  } catch (const CommandError& error) {
    EXPECT_EQ(error.code(), ExitCode::kBadInput) << error.what();
    EXPECT_THAT(error.what(), HasSubstr(text));
  }
}

constexpr const char* kFile = "w.json";

/// A file with everything in it.
constexpr const char* kFullText = R"({
  "events": [
    { "calendar": "NORTH SEA", "periods": [
      { "description": "January", "start": "2027-01-01", "finish": "2027-01-31",
        "probability": 1.0, "min": 4, "likely": 7, "max": 14 },
      { "description": "Gale", "start": "2027-02-01", "finish": "2027-02-28",
        "probability": 0.55, "min": 2, "likely": 2, "max": 2 } ] } ],
  "windows": [
    { "calendar": "RIVER ICE", "windows": [
      { "description": "Frozen", "start": ["2026-12-01", "2026-12-10", "2027-01-05"],
        "finish": ["2027-02-20", "2027-03-05", "2027-03-25"] } ] } ],
  "assign": [
    { "tasks": ["A10", "A30"], "calendars": ["NORTH SEA"], "nosplit": false },
    { "match": "*crane*", "calendars": ["NORTH SEA", "RIVER ICE"], "nosplit": true } ]
})";

Weather FullWeather() {
  return ParseWeatherJson(kFullText, kFile);
}

/// A10 dig, A20 lift by crane, A30 hand over (a milestone), and a summary over the first two.
Plan MakePlan(TimeUnit unit = TimeUnit::kDays) {
  Plan plan;
  plan.start = engine::Instant(Day(2027, 1, 4), 480);
  plan.time_unit = unit;
  plan.default_calendar = plan.AddCalendar(engine::MakeWeekCalendar("Week", 5, 8)).uid;
  const auto add = [&plan](const char* id, const char* description, TaskKind kind) {
    Task task;
    task.id = id;
    task.description = description;
    task.kind = kind;
    task.remaining_minutes = task.original_minutes = kind == TaskKind::kTask ? 4800 : 0;
    return plan.AddTask(task).uid;
  };
  const engine::Uid summary = add("SUM", "Crane work", TaskKind::kSummary);
  add("A10", "Dig", TaskKind::kTask);
  add("A20", "Lift by Crane", TaskKind::kTask);
  add("A30", "Hand over", TaskKind::kFinishMilestone);
  plan.FindTask("A10")->parent = summary;
  plan.FindTask("A20")->parent = summary;
  return plan;
}

// Reading the text.

TEST(ParseWeatherJson, ReadsPeriodsWindowsAndAssignments) {
  const Weather weather = FullWeather();
  EXPECT_THAT(weather.events, ElementsAre(EventCalendar{
                                  "NORTH SEA",
                                  {{"January", Day(2027, 1, 1), Day(2027, 1, 31), 1.0, 4, 7, 14},
                                   {"Gale", Day(2027, 2, 1), Day(2027, 2, 28), 0.55, 2, 2, 2}}}));
  EXPECT_THAT(weather.windows, ElementsAre(WindowCalendar{
                                   "RIVER ICE",
                                   {{"Frozen",
                                     {Day(2026, 12, 1), Day(2026, 12, 10), Day(2027, 1, 5)},
                                     {Day(2027, 2, 20), Day(2027, 3, 5), Day(2027, 3, 25)}}}}));
  EXPECT_THAT(weather.assign,
              ElementsAre(WeatherAssignment{{"A10", "A30"}, std::nullopt, {"NORTH SEA"}, false},
                          WeatherAssignment{{}, "*crane*", {"NORTH SEA", "RIVER ICE"}, true}));
}

TEST(ParseWeatherJson, TakesAPeriodForCertainAndUnnamedIfNothingElseIsSaid) {
  const Weather weather = ParseWeatherJson(
      R"({"events": [{"calendar": "X", "periods": [
         {"start": "2027-01-01", "finish": "2027-01-01", "min": 0, "likely": 0, "max": 1.0}]}]})",
      kFile);
  EXPECT_EQ(weather.events[0].periods[0],
            (WeatherPeriod{"", Day(2027, 1, 1), Day(2027, 1, 1), 1.0, 0, 0, 1}));
  EXPECT_THAT(weather.windows, IsEmpty());
  EXPECT_THAT(weather.assign, IsEmpty());
}

TEST(WeatherJson, WritesWhatIsReadBackTheSame) {
  const Weather weather = FullWeather();
  EXPECT_EQ(ParseWeatherJson(JsonText(WeatherJson(weather)), kFile), weather);
}

struct BadText {
  const char* name;
  std::string text;
  const char* error;
};

/// A file of one period with these members.
std::string Period(const std::string& members) {
  return R"({"events": [{"calendar": "X", "periods": [{)" + members + "}]}]}";
}
/// A period that is right but for what follows.
std::string PeriodWith(const std::string& members) {
  return Period(R"("start": "2027-01-01", "finish": "2027-01-31", )" + members);
}
std::string Window(const std::string& start, const std::string& finish) {
  return R"({"windows": [{"calendar": "X", "windows": [{"start": )" + start + R"(, "finish": )" +
         finish + "}]}]}";
}
std::string Assign(const std::string& members) {
  return R"({"events": [{"calendar": "X", "periods": []}], "assign": [{)" + members + "}]}";
}

class BadWeatherText : public ::testing::TestWithParam<BadText> {};
INSTANTIATE_TEST_SUITE_P(
    Texts, BadWeatherText,
    ::testing::Values(
        BadText{"Nothing", "", "w.json:1: expected JSON, found the end of the file"},
        BadText{"NoJson", "{\n\"events\": [,]}", "w.json:2: expected JSON, found \",]}\""},
        BadText{"TooLargeANumber", "{\n\"a\": 5e2026}",
                "w.json:2: expected a number that is not so large, found \"5e2026\""},
        BadText{"CutOff", "{\"events\": [\n", "w.json:2: expected JSON, found the end of the file"},
        BadText{"NoUtf8", "{\"\xff\": 1}", "w.json:1: expected JSON"},
        BadText{"KeyTwice", R"({"events": [], "events": []})",
                "w.json: expected each key of an object once, found \"events\" twice"},
        BadText{"NoObject", "[1]", "w.json: $: expected an object, found a list"},
        BadText{"UnknownKey", R"({"event": []})",
                "w.json: $: expected only the keys events, windows, assign, found \"event\""},
        BadText{"NoList", R"({"events": {}})",
                "w.json: $.events: expected a list, found an object"},
        BadText{"NoCalendarObject", R"({"events": [3]})",
                "w.json: $.events[0]: expected an object, found 3"},
        BadText{"NoName", R"({"events": [{"periods": []}]})",
                "w.json: $.events[0]: expected the key \"calendar\", found none"},
        BadText{"EmptyName", R"({"events": [{"calendar": " ", "periods": []}]})",
                "w.json: $.events[0].calendar: expected a name, found \" \""},
        BadText{"NameIsNumber", R"({"events": [{"calendar": 5, "periods": []}]})",
                "w.json: $.events[0].calendar: expected a text, found 5"},
        BadText{"NoPeriods", R"({"events": [{"calendar": "X"}]})",
                "w.json: $.events[0]: expected the key \"periods\", found none"},
        BadText{
            "CalendarTwice",
            R"({"events": [{"calendar": "X", "periods": []}, {"calendar": "x", "periods": []}]})",
            "w.json: $.events[1].calendar: expected each calendar once, found \"x\" for the "
            "second time"},
        BadText{"CalendarOfBothKinds",
                R"({"events": [{"calendar": "X", "periods": []}],
                    "windows": [{"calendar": "X", "windows": []}]})",
                "w.json: $.windows[0].calendar: expected each calendar once"},
        BadText{"UnknownPeriodKey", PeriodWith(R"("min": 1, "likely": 1, "max": 1, "mode": 1)"),
                "w.json: $.events[0].periods[0]: expected only the keys"},
        BadText{"MissingLength", PeriodWith(R"("min": 1, "max": 1)"),
                "w.json: $.events[0].periods[0]: expected the key \"likely\", found none"},
        BadText{"NoDate", Period(R"("start": "2027-02-29")"),
                "w.json: $.events[0].periods[0].start: expected a date YYYY-MM-DD, found "
                "\"2027-02-29\""},
        BadText{"DateWithTime", Period(R"("start": "2027-02-28T08:00")"),
                "$.events[0].periods[0].start: expected a date YYYY-MM-DD"},
        BadText{"DateIsNumber", Period(R"("start": 20270228)"),
                "$.events[0].periods[0].start: expected a date YYYY-MM-DD, found 20270228"},
        BadText{"FinishBeforeStart", Period(R"("start": "2027-02-02", "finish": "2027-02-01")"),
                "w.json: $.events[0].periods[0].finish: expected a date not before start, "
                "2027-02-02, found \"2027-02-01\""},
        BadText{"ProbabilityAboveOne",
                PeriodWith(R"("probability": 1.5, "min": 1, "likely": 1, "max": 1)"),
                "w.json: $.events[0].periods[0].probability: expected a number from 0 to 1, found "
                "1.5"},
        BadText{"ProbabilityBelowZero",
                PeriodWith(R"("probability": -0.1, "min": 1, "likely": 1, "max": 1)"),
                "probability: expected a number from 0 to 1, found -0.1"},
        BadText{"ProbabilityIsText",
                PeriodWith(R"("probability": "50%", "min": 1, "likely": 1, "max": 1)"),
                "probability: expected a number from 0 to 1, found \"50%\""},
        BadText{"HalfADay", PeriodWith(R"("min": 0.5, "likely": 1, "max": 1)"),
                "w.json: $.events[0].periods[0].min: expected a whole number of days from 0 to "
                "73050, found 0.5"},
        BadText{"NegativeDays", PeriodWith(R"("min": -1, "likely": 1, "max": 1)"),
                ".min: expected a whole number of days from 0 to 73050, found -1"},
        BadText{"TooManyDays", PeriodWith(R"("min": 1, "likely": 1, "max": 1e9)"),
                ".max: expected a whole number of days from 0 to 73050, found 1000000000.0"},
        BadText{"MinAboveLikely", PeriodWith(R"("min": 3, "likely": 2, "max": 4)"),
                "w.json: $.events[0].periods[0]: expected min <= likely <= max, found 3, 2, 4"},
        BadText{"LikelyAboveMax", PeriodWith(R"("min": 1, "likely": 5, "max": 4)"),
                "expected min <= likely <= max, found 1, 5, 4"},
        BadText{"TwoDates", Window(R"(["2027-01-01", "2027-01-02"])", "[]"),
                "w.json: $.windows[0].windows[0].start: expected three dates: earliest, likely, "
                "latest, found 2"},
        BadText{"EdgeOutOfOrder", Window(R"(["2027-01-03", "2027-01-02", "2027-01-05"])", "[]"),
                "w.json: $.windows[0].windows[0].start[1]: expected a date not before the one "
                "before it, 2027-01-03, found \"2027-01-02\""},
        BadText{"WindowClosesBeforeItOpens",
                Window(R"(["2027-01-03", "2027-01-03", "2027-01-05"])",
                       R"(["2027-01-03", "2027-01-03", "2027-01-04"])"),
                "w.json: $.windows[0].windows[0].finish[2]: expected a date not before that of "
                "start, 2027-01-05, found 2027-01-04"},
        BadText{"NoTasks", Assign(R"("calendars": ["X"])"),
                "w.json: $.assign[0]: expected the key \"tasks\" or \"match\", found neither"},
        BadText{"UnknownCalendar", Assign(R"("tasks": ["A10"], "calendars": ["X", "Y"])"),
                "w.json: $.assign[0].calendars[1]: expected a calendar of this file, found \"Y\""},
        BadText{"MatchIsNoText", Assign(R"("match": ["*"])"),
                "w.json: $.assign[0].match: expected a text, found a list"},
        BadText{"NoSplitIsText", Assign(R"("tasks": ["A10"], "nosplit": "True")"),
                "w.json: $.assign[0].nosplit: expected true or false, found \"True\""}),
    [](const auto& text) { return text.param.name; });

TEST_P(BadWeatherText, IsRefusedByFileAndPath) {
  ExpectBadInput(GetParam().error, [] { ParseWeatherJson(GetParam().text, kFile); });
}

// Setting, reading and clearing.

class WeatherInUnits : public ::testing::TestWithParam<TimeUnit> {};
INSTANTIATE_TEST_SUITE_P(Units, WeatherInUnits,
                         ::testing::Values(TimeUnit::kDays, TimeUnit::kHours, TimeUnit::kQuarters));

TEST_P(WeatherInUnits, IsReadAsItWasSet) {
  Plan plan = MakePlan(GetParam());
  SetWeather(plan, FullWeather(), kFile);
  const Weather read = ReadWeather(plan);
  EXPECT_EQ(read.events, FullWeather().events);
  EXPECT_EQ(read.windows, FullWeather().windows);
  // The tasks that a match picked are listed, those of the same calendars together.
  EXPECT_THAT(
      read.assign,
      ElementsAre(WeatherAssignment{{"A10", "A30"}, std::nullopt, {"NORTH SEA"}, false},
                  WeatherAssignment{{"A20"}, std::nullopt, {"NORTH SEA", "RIVER ICE"}, true}));
  SetWeather(plan, read, kFile);
  EXPECT_EQ(ReadWeather(plan), read);
  EXPECT_EQ(engine::FindFault(plan), std::nullopt);
}

TEST(SetWeather, StoresAPeriodAsTheDialogDoes) {
  Plan plan = MakePlan(TimeUnit::kHours);
  SetWeather(plan, FullWeather(), kFile);
  const Task* summary = plan.FindTask("WEATHER");
  ASSERT_NE(summary, nullptr);
  EXPECT_EQ(WeatherRole(*summary), "10");
  std::vector<const Task*> periods;
  for (const Task& task : plan.tasks()) {
    if (WeatherRole(task) == "1") {
      periods.push_back(&task);
    }
  }
  ASSERT_EQ(periods.size(), 2u);
  const Task& january = *periods[0];
  EXPECT_EQ(january.parent, summary->uid);
  EXPECT_EQ(january.description, "January");
  EXPECT_EQ(january.calendar, plan.FindCalendar("NORTH SEA")->uid);
  EXPECT_EQ(january.risk, std::nullopt) << "what is certain has no risk record";
  // Days of eight hours; the last day of a period ends at 22:00 away from plans in days.
  EXPECT_EQ(january.range->minimum, 32.0);
  EXPECT_EQ(january.range->likely, 56.0);
  EXPECT_EQ(january.range->maximum, 112.0);
  EXPECT_THAT(
      january.custom_values,
      ElementsAre(engine::CustomValue{"Weather-start", platform::MakeDate(2027, 1, 1)},
                  engine::CustomValue{"Weather-end", platform::MakeDate({2027, 1, 31, 22, 0, 0})}));
  EXPECT_DOUBLE_EQ(periods[1]->risk->probability, 55.0);
}

TEST(SetWeather, StoresAWindowAsTwoLinkedEdges) {
  Plan plan = MakePlan();
  SetWeather(plan, FullWeather(), kFile);
  ASSERT_EQ(plan.links.size(), 1u);
  const Task& start = *plan.FindTask(plan.links[0].predecessor);
  const Task& end = *plan.FindTask(plan.links[0].successor);
  EXPECT_EQ(WeatherRole(start), "3");
  EXPECT_EQ(WeatherRole(end), "4");
  EXPECT_EQ(start.description, "Frozen");
  EXPECT_EQ(end.description, "Weather window");
  EXPECT_EQ(*start.FindUserValue("weather", "startdate"), "12/1/2026");
  EXPECT_EQ(start.range->likely, 9.0);
  EXPECT_EQ(start.range->maximum, 35.0);
  EXPECT_EQ(end.range->likely, 13.0);
  EXPECT_EQ(end.range->maximum, 33.0);
}

TEST(SetWeather, MakesTheCalendarsAndMarksThePlan) {
  Plan plan = MakePlan();
  EXPECT_FALSE(IsWeatherPlan(plan));
  SetWeather(plan, FullWeather(), kFile);
  EXPECT_TRUE(IsWeatherPlan(plan));
  const RiskCalendarDefinition* event = plan.FindRiskCalendar("NORTH SEA");
  const RiskCalendarDefinition* window = plan.FindRiskCalendar("RIVER ICE");
  EXPECT_EQ(event->description, "Weather calendar");
  EXPECT_EQ(event->calendar, plan.FindCalendar("NORTH SEA")->uid);
  EXPECT_EQ(window->description, "Weather window");
  EXPECT_THAT(plan.FindTask("A20")->risk_calendars,
              ElementsAre(engine::RiskAssignment{event->uid, 0.0},
                          engine::RiskAssignment{window->uid, 0.0}));
  EXPECT_EQ(*plan.FindTask("A20")->FindUserValue("weather", "nosplit"), "True");
  EXPECT_EQ(*plan.FindTask("A10")->FindUserValue("weather", "nosplit"), "False");
  EXPECT_EQ(plan.FindTask("SUM")->FindUserValue("weather", "nosplit"), nullptr);
}

TEST(SetWeather, KeepsEveryProbabilityOfThreeDigits) {
  Weather weather;
  weather.events.push_back({"X", {}});
  for (int i = 0; i <= 1000; i += 7) {
    const double probability = std::stod(fmt::format("{}e-3", i));
    weather.events[0].periods.push_back(
        {"", Day(2027, 1, 1), Day(2027, 1, 31), probability, 1, 1, 1});
  }
  Plan plan = MakePlan();
  SetWeather(plan, weather, kFile);
  EXPECT_EQ(ReadWeather(plan), weather);
}

TEST(SetWeather, KeepsCalendarsThatHaveNoPeriodsYet) {
  Weather weather;
  weather.events = {{"LATER", {}}, {"NOW", {{"", 46400, 46410, 1, 1, 1, 1}}}};
  weather.windows = {{"ICE", {}}};
  weather.assign = {{{"A10"}, std::nullopt, {"LATER", "ICE"}, true}};
  Plan plan = MakePlan();
  SetWeather(plan, weather, kFile);
  EXPECT_EQ(ReadWeather(plan), weather);
}

TEST(SetWeather, PutsTheNewWeatherInPlaceOfTheOld) {
  Plan plan = MakePlan();
  SetWeather(plan, FullWeather(), kFile);
  Weather next;
  next.events = {{"RIVER ICE", {{"", 46400, 46410, 0.5, 1, 2, 3}}}};
  next.assign = {{{"A10"}, std::nullopt, {"RIVER ICE"}, false}};
  SetWeather(plan, next, kFile);
  EXPECT_EQ(ReadWeather(plan), next);
  EXPECT_EQ(plan.FindCalendar("NORTH SEA"), nullptr);
  EXPECT_EQ(plan.FindRiskCalendar("RIVER ICE")->description, "Weather calendar");
  EXPECT_THAT(plan.FindTask("A20")->user_values, IsEmpty());
}

TEST(SetWeather, LetsATaskFeelTheCalendarsOfAllAssignmentsThatNameIt) {
  Weather weather = FullWeather();
  weather.assign = {{{"A20"}, std::nullopt, {"NORTH SEA"}, true},
                    {{"a20", "A20"}, "lift*", {"river ice", "NORTH SEA"}, false}};
  Plan plan = MakePlan();
  SetWeather(plan, weather, kFile);
  EXPECT_THAT(
      ReadWeather(plan).assign,
      ElementsAre(WeatherAssignment{{"A20"}, std::nullopt, {"NORTH SEA", "RIVER ICE"}, true}));
}

TEST(SetWeather, MatchesIdsAndDescriptionsOfAllButSummaries) {
  Weather weather = FullWeather();
  Plan plan = MakePlan();
  weather.assign = {{{}, "a?0", {"NORTH SEA"}, std::nullopt}};
  SetWeather(plan, weather, kFile);
  EXPECT_THAT(ReadWeather(plan).assign[0].tasks, ElementsAre("A10", "A20", "A30"));
  weather.assign = {{{}, "*", {"NORTH SEA"}, std::nullopt}};
  SetWeather(plan, weather, kFile);
  EXPECT_THAT(ReadWeather(plan).assign[0].tasks, ElementsAre("A10", "A20", "A30"));
}

TEST(SetWeather, TakesASummaryByItsIdForThatTaskAlone) {
  Weather weather = FullWeather();
  weather.assign = {{{"SUM"}, std::nullopt, {"NORTH SEA"}, std::nullopt}};
  Plan plan = MakePlan();
  SetWeather(plan, weather, kFile);
  EXPECT_THAT(ReadWeather(plan).assign[0].tasks, ElementsAre("SUM"));
}

/// Expects an error that leaves the plan as it was.
void ExpectRefused(Plan plan, const Weather& weather, const std::string& text) {
  const Plan before = plan;
  ExpectBadInput(text, [&] { SetWeather(plan, weather, kFile); });
  EXPECT_EQ(plan, before);
}

TEST(SetWeather, RefusesTasksThatAreNotInThePlan) {
  Weather weather = FullWeather();
  weather.assign = {{{"A10"}, std::nullopt, {}, {}}, {{"A10", "B10"}, std::nullopt, {}, {}}};
  ExpectRefused(MakePlan(), weather,
                "w.json: $.assign[1].tasks[1]: expected the ID of a task of the plan, found "
                "\"B10\"");
}

TEST(SetWeather, RefusesTasksThatCarryWeather) {
  Weather weather = FullWeather();
  weather.assign = {{{"WEATHER"}, std::nullopt, {}, {}}};
  ExpectRefused(MakePlan(), weather, "$.assign[0].tasks[0]: expected the ID of a task");
}

TEST(SetWeather, RefusesAMatchThatPicksNothing) {
  Weather weather = FullWeather();
  weather.assign = {{{"A10"}, "boat*", {"NORTH SEA"}, {}}};
  ExpectRefused(MakePlan(), weather, "w.json: $.assign[0].match: expected a pattern");
}

TEST(SetWeather, RefusesTheNameOfACalendarThatWorkRunsOn) {
  Plan plan = MakePlan();
  plan.FindTask("A20")->calendar =
      plan.AddCalendar(engine::MakeWeekCalendar("River Ice", 7, 12)).uid;
  ExpectRefused(plan, FullWeather(),
                "w.json: $.windows[0].calendar: expected the name of a calendar for weather alone, "
                "found \"RIVER ICE\", which is the working calendar of task \"A20\"");
  Weather weather = FullWeather();
  weather.events[0].name = "week";
  weather.assign.clear();
  ExpectRefused(MakePlan(), weather,
                "$.events[0].calendar: expected the name of a calendar for weather alone, found "
                "\"week\", which is the plan's default calendar");
}

TEST(SetWeather, TakesOverACalendarThatNothingRunsOn) {
  Plan plan = MakePlan();
  const engine::Uid uid = plan.AddCalendar(engine::MakeWeekCalendar("North Sea", 6, 10)).uid;
  SetWeather(plan, FullWeather(), kFile);
  EXPECT_EQ(plan.FindRiskCalendar("NORTH SEA")->calendar, uid);
}

TEST(SetWeather, RefusesAPlanWithATaskOfItsOwnInThePlaceOfTheWeatherTask) {
  Plan plan = MakePlan();
  plan.RenameTask(plan.FindTask("A10")->uid, "Weather");
  ExpectRefused(plan, FullWeather(), "expected a plan whose ID \"WEATHER\" is free");
}

TEST(SetWeather, RefusesDatesThatThePlansFormatTurnsIntoOthers) {
  Plan plan = MakePlan();
  plan.date_format = 1;  // the day first, which a reader of months first turns round
  Weather weather = FullWeather();
  weather.events[0].periods[0].start = Day(2027, 1, 5);
  ExpectRefused(plan, weather,
                "w.json: $.events[0].periods[0].start: expected a date that the plan's date format "
                "can hold, found 2027-01-05, which it turns into 2027-05-01");
}

TEST(ClearWeather, GivesBackThePlanAsItWasButForTheWeatherTask) {
  Plan plan = MakePlan();
  const Plan before = plan;
  SetWeather(plan, FullWeather(), kFile);
  ClearWeather(plan, "plan.nplan");
  EXPECT_FALSE(IsWeatherPlan(plan));
  EXPECT_EQ(ReadWeather(plan), Weather{});
  ASSERT_EQ(plan.tasks().size(), before.tasks().size() + 1);
  EXPECT_EQ(plan.tasks().back().id, "WEATHER");
  for (std::size_t i = 0; i < before.tasks().size(); ++i) {
    EXPECT_EQ(plan.tasks()[i], before.tasks()[i]);
  }
  EXPECT_EQ(plan.calendars, before.calendars);
  EXPECT_EQ(plan.risk_calendars, before.risk_calendars);
  EXPECT_EQ(plan.links, before.links);
}

TEST(ClearWeather, TakesOutWhatTheDialogTakesOut) {
  Plan plan = MakePlan();
  SetWeather(plan, FullWeather(), kFile);
  const auto host = engine::MakeHost(plan, MakeHostOptions());
  {
    const std::shared_ptr<void> joined = JoinAddIn(*host);
    model::NoControls controls;
    model::frmWeatherStorage storage(controls);
    storage.FindOrCreateWeatherTask();
    storage.LoadEventCalendars();
    storage.LoadWindowCalendars();
    storage.RemoveAllWeatherData();
  }
  Plan by_dialog = host->document();
  // The dialog leaves the marks of tasks and the plan's flag.
  for (const char* id : {"A10", "A20", "A30"}) {
    by_dialog.FindTask(id)->user_values.clear();
  }
  by_dialog.options.clear();
  ClearWeather(plan, "plan.nplan");
  plan.options.clear();
  EXPECT_EQ(plan, by_dialog);
}

TEST(ClearWeather, TakesOutWhatTheDialogWouldLeaveBehind) {
  Plan plan = MakePlan();
  SetWeather(plan, FullWeather(), kFile);
  plan.RemoveTask(plan.links[0].predecessor);  // the end edge stays, out of reach
  ClearWeather(plan, "plan.nplan");
  EXPECT_EQ(plan.tasks().size(), 5u);
  EXPECT_EQ(plan.FindCalendar("RIVER ICE"), nullptr);
}

TEST(ClearWeather, RefusesToTakeACalendarFromWorkThatRunsOnIt) {
  Plan plan = MakePlan();
  SetWeather(plan, FullWeather(), kFile);
  plan.FindTask("A10")->calendar = plan.FindCalendar("RIVER ICE")->uid;
  const Plan before = plan;
  ExpectBadInput(
      "plan.nplan: expected weather calendars that can be taken out, found \"RIVER "
      "ICE\", which is the working calendar of task \"A10\"",
      [&] { ClearWeather(plan, "plan.nplan"); });
  EXPECT_EQ(plan, before);
}

TEST(ClearWeather, LeavesAPlanWithoutWeatherButForItsFlag) {
  Plan plan = MakePlan();
  plan.risk_calendars.push_back({plan.FreshUid(), "Strikes", "", plan.default_calendar});
  Plan expected = plan;
  expected.options[{"NIMBRELMOD", "Options", "IsWeatherPlan"}] = "FALSE";
  ClearWeather(plan, "plan.nplan");
  EXPECT_EQ(plan, expected);
}

TEST(ReadWeather, PassesOverTasksOfThePlansOwn) {
  Plan plan = MakePlan();
  EXPECT_EQ(ReadWeather(plan), Weather{});
  SetWeather(plan, FullWeather(), kFile);
  // Moved under the weather task by other means; the dialog would take it for a period.
  plan.FindTask("A30")->parent = plan.FindTask("WEATHER")->uid;
  EXPECT_EQ(ReadWeather(plan).events, FullWeather().events);
}

TEST(ReadWeather, SaysAProbabilityInAsFewDigitsAsItTakes) {
  Plan plan = MakePlan();
  SetWeather(plan, FullWeather(), kFile);
  EXPECT_THAT(JsonText(WeatherJson(ReadWeather(plan))), HasSubstr("\"probability\": 0.55,"));
}

TEST(Example, WeatherFileIsReadAndWrittenBack) {
  const std::string path = std::string(NIMBREL_SOURCE_DIR) + "/examples/vestdal-weather.json";
  const Weather weather = ParseWeatherJson(ReadTextFile(path), path);
  EXPECT_GT(weather.events.size(), 0u);
  EXPECT_EQ(ParseWeatherJson(JsonText(WeatherJson(weather)), path), weather);
}

}  // namespace
}  // namespace nimbrel::cli

#include "tests/cli/cli_fixture.h"

#include <gmock/gmock.h>
#include <stdlib.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace nimbrel::cli {

using ::testing::HasSubstr;
using ::testing::StartsWith;

CliTest::CliTest() {
  std::string name = (std::filesystem::temp_directory_path() / "nimbrel-cli-XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) {
    throw std::runtime_error("no temporary folder");
  }
  folder_ = name;
}

CliTest::~CliTest() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

Outcome CliTest::Run(const std::vector<std::string>& arguments, Terminal terminal) {
  std::ostringstream out;
  std::ostringstream err;
  Console console{out, err, terminal};
  Outcome outcome;
  outcome.code = RunProgram(arguments, console);
  outcome.out = out.str();
  outcome.err = err.str();
  return outcome;
}

std::string CliTest::Output(const std::vector<std::string>& arguments) {
  const Outcome outcome = Run(arguments);
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  return outcome.out;
}

std::string CliTest::Write(const std::string& name, const std::string& text) const {
  std::ofstream(folder_ / name, std::ios::binary) << text;
  return Path(name);
}

std::string CliTest::Read(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::map<std::string, std::string> CliTest::Files() const {
  std::map<std::string, std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
    if (entry.is_regular_file()) {
      files[entry.path().filename().string()] = Read(entry.path().string());
    }
  }
  return files;
}

std::string MakeChainXer(const std::vector<ChainActivity>& activities, const std::string& project) {
  const std::string day = "(0||0(s|08:00|f|12:00)())(0||1(s|13:00|f|17:00)())";
  std::string week;
  for (int weekday = 1; weekday <= 7; ++weekday) {  // from Sunday
    week +=
        "(0||" + std::to_string(weekday) + "()(" + (weekday == 1 || weekday == 7 ? "" : day) + "))";
  }
  std::string text =
      "ERMHDR\t19.12\t2027-03-01\tProject\tplanner\tplanner\tdb\tProject Management\tEUR\n"
      "%T\tPROJECT\n"
      "%F\tproj_id\tproj_short_name\tclndr_id\tlast_recalc_date\tplan_start_date\n"
      "%R\t1\t" +
      project +
      "\t1\t2027-03-01 08:00\t2027-03-01 08:00\n"
      "%T\tCALENDAR\n"
      "%F\tclndr_id\tdefault_flag\tclndr_name\tclndr_type\tday_hr_cnt\tclndr_data\n"
      "%R\t1\tY\tFive days\tCA_Base\t8\t(0||CalendarData()((0||DaysOfWeek()(" +
      week +
      "))))\n"
      "%T\tPROJWBS\n"
      "%F\twbs_id\tproj_id\tseq_num\tproj_node_flag\twbs_short_name\twbs_name\tparent_wbs_id\n"
      "%R\t1\t1\t1\tY\t" +
      project +
      "\tA chain\t\n"
      "%T\tTASK\n"
      "%F\ttask_id\tproj_id\twbs_id\tclndr_id\ttask_type\tstatus_code\ttask_code\ttask_name\t"
      "remain_drtn_hr_cnt\ttarget_drtn_hr_cnt\n";
  for (std::size_t at = 0; at < activities.size(); ++at) {
    const ChainActivity& one = activities[at];
    const std::string hours = std::to_string(one.hours);
    text += "%R\t" + std::to_string(at + 1) + "\t1\t1\t1\t" + one.type + "\tTK_NotStart\t" +
            one.id + "\t" + one.name + "\t" + hours + "\t" + hours + "\n";
  }
  text +=
      "%T\tTASKPRED\n%F\ttask_pred_id\ttask_id\tpred_task_id\tproj_id\tpred_proj_id\t"
      "pred_type\tlag_hr_cnt\n";
  for (std::size_t at = 1; at < activities.size(); ++at) {
    text += "%R\t" + std::to_string(at) + "\t" + std::to_string(at + 1) + "\t" +
            std::to_string(at) + "\t1\t1\tPR_FS\t0\n";
  }
  return text + "%E\n";
}

std::string CliTest::ChainXer() const {
  return Write("chain.xer", MakeChainXer({{"A", "Dig", 40},
                                          {"B", "Build", 80},
                                          {"C", "Lift the roof", 40},
                                          {"M", "Done", 0, "TT_FinMile"}}));
}

std::string CliTest::ChainPlan() {
  Output({"import", ChainXer(), "-o", Path("plan.nplan")});
  return Path("plan.nplan");
}

std::string CliTest::WeatherJson() const {
  return Write("weather.json", R"({
  "events": [
    { "calendar": "STORM", "periods": [
      { "description": "March", "start": "2027-03-01", "finish": "2027-03-14",
        "probability": 1.0, "min": 2, "likely": 2, "max": 2 } ] } ],
  "windows": [],
  "assign": [
    { "tasks": ["A", "B"], "calendars": ["STORM"], "nosplit": false },
    { "match": "*roof*", "calendars": ["STORM"], "nosplit": true } ]
})");
}

std::string CliTest::WeatherPlan() {
  const std::string plan = ChainPlan();
  Output({"ranges", plan, "--default", "80,100,140"});
  Output({"weather", "set", plan, WeatherJson()});
  return plan;
}

void CliTest::ExpectFailure(const std::vector<std::string>& arguments, int code,
                            const std::string& text) {
  const auto before = Files();
  const Outcome outcome = Run(arguments);
  EXPECT_EQ(outcome.code, code) << outcome.err;
  EXPECT_EQ(outcome.out, "");
  EXPECT_THAT(outcome.err, StartsWith("nimbrel: "));
  EXPECT_THAT(outcome.err, HasSubstr(text));
  EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
  EXPECT_EQ(Files(), before) << "a failed command leaves every file as it was";
}

}  // namespace nimbrel::cli

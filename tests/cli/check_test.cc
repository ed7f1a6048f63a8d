#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "cli_fixture.h"

namespace nimbrel::cli {
namespace {

using Json = nlohmann::json;
using testing::HasSubstr;

class CheckTest : public CliTest {
 protected:
  /// An XER file of one activity of five days from Monday 1 March 2027 on, with the early finish
  /// and the total float that its tool had stored.
  std::string StoredXer(const std::string& early_finish, const std::string& float_hours) const {
    return Write("stored.xer",
                 "ERMHDR\t23.12\t2027-03-01\tProject\n"
                 "%T\tPROJECT\n"
                 "%F\tproj_id\tproj_short_name\tclndr_id\tlast_recalc_date\tplan_start_date\n"
                 "%R\t1\tONE\t10\t2027-03-01 00:00\t2027-03-01 08:00\n"
                 "%T\tCALENDAR\n"
                 "%F\tclndr_id\tclndr_name\tday_hr_cnt\tclndr_data\n"
                 "%R\t10\tWorks\t8\t(0||CalendarData()((0||DaysOfWeek()((0||1()())"
                 "(0||2()((0||0(s|08:00|f|16:00)())))(0||3()((0||0(s|08:00|f|16:00)())))"
                 "(0||4()((0||0(s|08:00|f|16:00)())))(0||5()((0||0(s|08:00|f|16:00)())))"
                 "(0||6()((0||0(s|08:00|f|16:00)())))(0||7()())))(0||Exceptions()())))\n"
                 "%T\tTASK\n"
                 "%F\ttask_id\tproj_id\tclndr_id\ttask_type\tstatus_code\ttask_code\ttask_name\t"
                 "target_drtn_hr_cnt\tremain_drtn_hr_cnt\tearly_end_date\ttotal_float_hr_cnt\n"
                 "%R\t100\t1\t10\tTT_Task\tTK_NotStart\tA\tDig\t40\t40\t" +
                     early_finish + "\t" + float_hours + "\n%E\n");
  }
  Json Check(const std::string& plan) { return Json::parse(Output({"check", plan, "--json"})); }
};

TEST_F(CheckTest, EqualDatesAreCountedFieldByField) {
  // Friday 5 March 16:00 and Monday 8 March 08:00 are the same instant of work.
  const Json dates = Check(StoredXer("2027-03-08 08:00", "0")).at("stored_dates");
  EXPECT_EQ(dates.at("activities"), 1);
  EXPECT_EQ(dates.at("equal"), 1);
  EXPECT_EQ(dates.at("fields").at(1).at("field"), "early_finish");
  EXPECT_EQ(dates.at("fields").at(1).at("compared"), 1);
  EXPECT_EQ(dates.at("fields").at(1).at("share"), 1.0);
  EXPECT_EQ(dates.at("fields").at(0).at("compared"), 0);
}

TEST_F(CheckTest, DifferingActivitiesAreListedWithBothValues) {
  const Json dates = Check(StoredXer("2027-03-09 16:00", "8")).at("stored_dates");
  ASSERT_EQ(dates.at("differing").size(), 1u);
  const Json& differences = dates.at("differing").at(0).at("differences");
  EXPECT_EQ(differences.at(0).at("stored"), "2027-03-09T16:00");
  EXPECT_EQ(differences.at(0).at("computed"), "2027-03-05T16:00");
  EXPECT_EQ(differences.at(1).at("stored_hours"), 8.0);
  EXPECT_EQ(differences.at(1).at("computed_hours"), 0.0);
}

TEST_F(CheckTest, StoredDatesSurviveTheImport) {
  const std::string plan = Path("stored.nplan");
  Output({"import", StoredXer("2027-03-09 16:00", "0"), "-o", plan});
  EXPECT_EQ(Check(plan).at("stored_dates").at("differing").size(), 1u);
}

TEST_F(CheckTest, RangesChangeNoComparison) {
  const std::string plan = Path("stored.nplan");
  Output({"import", StoredXer("2027-03-05 16:00", "0"), "-o", plan});
  Output({"ranges", plan, "--default", "90,150,200"});
  EXPECT_EQ(Check(plan).at("stored_dates").at("equal"), 1);
}

TEST_F(CheckTest, HealthTellsEachThingWithItsActivities) {
  const Json health = Check(ChainPlan()).at("health");
  EXPECT_EQ(health.at(0).at("key"), "no_predecessor");
  EXPECT_EQ(health.at(0).at("items"), Json::array({"A"}));
  EXPECT_EQ(health.at(1).at("key"), "no_successor");
  EXPECT_EQ(health.at(1).at("count"), 1);
  EXPECT_EQ(health.size(), 9u);
}

TEST_F(CheckTest, TheTextSaysWhetherThereIsAnythingToCompare) {
  EXPECT_THAT(Output({"check", ChainPlan()}), HasSubstr("the plan has none to compare with"));
  EXPECT_THAT(Output({"check", StoredXer("2027-03-05 16:00", "0")}),
              HasSubstr("Stored dates: 1 of 1 open activity equal"));
}

}  // namespace
}  // namespace nimbrel::cli

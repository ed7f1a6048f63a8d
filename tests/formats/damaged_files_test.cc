// Small files with random damage: whatever comes of them is a plan or one clear error.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "engine/plan/plan_fault.h"
#include "tests/formats/mspdi_text.h"
#include "tests/formats/reading.h"
#include "tests/formats/xer_text.h"

namespace nimbrel::engine {
namespace {

constexpr int kFiles = 4000;

std::string XerSample() {
  XerText text;
  text.Project().Calendar({{"clndr_data", XerText::FiveDays("(0||0(d|46447)())")}});
  text.Calendar({{"clndr_id", "11"},
                 {"base_clndr_id", "10"},
                 {"clndr_data", XerText::Data({XerText::Shift("22:00", "06:00")})}});
  text.Row("SCHEDOPTIONS", {{"proj_id", "1"},
                            {"sched_float_type", "FT_MIN"},
                            {"sched_calendar_on_relationship_lag", "rcal_24Hour"}});
  text.Row("PROJWBS", {{"wbs_id", "1"}, {"proj_id", "1"}, {"proj_node_flag", "Y"}});
  text.Row("PROJWBS", {{"wbs_id", "2"}, {"proj_id", "1"}, {"parent_wbs_id", "1"}});
  text.Row("PROJWBS", {{"wbs_id", "3"}, {"proj_id", "1"}, {"parent_wbs_id", "2"}});
  text.Task("100", "A1", {{"wbs_id", "2"}, {"task_type", "TT_Mile"}});
  text.Task("101", "A2",
            {{"wbs_id", "3"},
             {"clndr_id", "11"},
             {"status_code", "TK_Active"},
             {"act_start_date", "2027-02-22 08:00"},
             {"cstr_type", "CS_MEOB"},
             {"cstr_date", "2027-06-01 17:00"}});
  text.Task("102", "A3", {{"wbs_id", "2"}, {"task_type", "TT_WBS"}});
  text.Task("103", "A4", {{"wbs_id", "3"}, {"task_type", "TT_Rsrc"}, {"rsrc_id", "50"}});
  text.Link("100", "101", "PR_FS", "8").Link("101", "103", "PR_SS", "-4");
  text.Row("RSRC", {{"rsrc_id", "50"}, {"clndr_id", "11"}});
  return text.Text();
}

std::string MspdiSample() {
  MspdiText text;
  text.Calendar(
      1, "Standard",
      Xml({{"WeekDays", MspdiText::Day(2, {{"08:00:00", "12:00:00"}}) +
                            MspdiText::Day(7, {{"22:00:00", "06:00:00"}})}}) +
          Xml({{"Exceptions", Xml({{"Exception", MspdiText::Period("2027-03-01", "2027-05-31") +
                                                     Xml({{"Type", "5"},
                                                          {"Period", "1"},
                                                          {"MonthItem", "4"},
                                                          {"MonthPosition", "4"},
                                                          {"DayWorking", "0"}})}})}}));
  text.Calendar(2, "Crew", "", {{"BaseCalendarUID", "1"}}).Resource(5, 2);
  text.Task(0, {{"OutlineLevel", "0"}, {"Summary", "1"}});
  text.Task(1, {{"Manual", "1"}});
  text.Task(2,
            {{"OutlineLevel", "2"},
             {"DurationFormat", "8"},
             {"PredecessorLink", MspdiText::Link(1, 1, {{"LinkLag", "50"}, {"LagFormat", "19"}})}});
  text.Task(3, {{"PercentComplete", "50"}, {"Deadline", "2027-05-01T17:00:00"}});
  text.Assignment(3, 5,
                  Xml({{"TimephasedData", Xml({{"Type", "1"},
                                               {"Start", "2027-03-01T08:00:00"},
                                               {"Finish", "2027-03-02T08:00:00"},
                                               {"Value", "PT0H0M0S"}})}}));
  return text.Text();
}

/// Changes a few bytes, cuts pieces out, doubles them or puts in what readers look for.
std::string Damaged(std::string text, std::mt19937& random) {
  static const std::vector<std::string> kPieces = {"\t",
                                                   "\n",
                                                   "(",
                                                   ")",
                                                   "|",
                                                   "%R\t",
                                                   "%E",
                                                   "-1",
                                                   "999999999999",
                                                   "<",
                                                   ">",
                                                   "</Task>",
                                                   "&#0;",
                                                   "\x7f",
                                                   "\xFF",
                                                   "\xC3",
                                                   "2150-12-31 24:00",
                                                   "1950-01-01T00:00:00",
                                                   "0",
                                                   "1e308",
                                                   "PT0H",
                                                   ""};
  const int changes = 1 + static_cast<int>(random() % 4);
  for (int i = 0; i < changes && !text.empty(); ++i) {
    const std::size_t at = random() % text.size();
    const std::size_t length = std::min<std::size_t>(random() % 40, text.size() - at);
    switch (random() % 5) {
      case 0:
        text[at] = static_cast<char>(random() % 256);
        break;
      case 1:
        text.erase(at, length);
        break;
      case 2:
        text.insert(at, text.substr(at, length));
        break;
      case 3:
        text.replace(at, std::min<std::size_t>(length, 6), kPieces[random() % kPieces.size()]);
        break;
      default:
        // Figures break rules that letters do not reach.
        for (std::size_t j = at; j < text.size(); ++j) {
          if (text[j] >= '0' && text[j] <= '9') {
            text[j] = static_cast<char>('0' + random() % 10);
            break;
          }
        }
    }
  }
  return random() % 20 == 0 ? text.substr(0, random() % (text.size() + 1)) : text;
}

template <class Reader>
void ReadDamaged(const std::string& sample, const Reader& read) {
  ASSERT_EQ(ErrorOf([&] { read(sample); }), "no error");
  int plans = 0;
  int errors = 0;
  for (unsigned seed = 0; seed < kFiles; ++seed) {
    std::mt19937 random(seed);
    const std::string file = Damaged(sample, random);
    try {
      const ReadResult result = read(file);
      ++plans;
      EXPECT_EQ(FindFault(result.plan), std::nullopt) << "seed " << seed;
    } catch (const FormatError& error) {
      ++errors;
      const std::string text = error.what();
      EXPECT_TRUE(text.starts_with("damaged:" + std::to_string(error.row()) + ": expected "))
          << "seed " << seed << ": " << text;
      EXPECT_EQ(text.find('\n'), std::string::npos) << "seed " << seed << ": " << text;
      EXPECT_LE(error.row(), 1 + std::count(file.begin(), file.end(), '\n')) << "seed " << seed;
    }
  }
  // Both ways out were taken, so the damage was neither too mild nor too strong to tell anything.
  EXPECT_GT(plans, kFiles / 20);
  EXPECT_GT(errors, kFiles / 20);
}

TEST(DamagedFiles, XerGivesAPlanOrOneError) {
  ReadDamaged(XerSample(), [](const std::string& text) { return ReadXer(text, "damaged", {}); });
}

TEST(DamagedFiles, MspdiGivesAPlanOrOneError) {
  ReadDamaged(MspdiSample(),
              [](const std::string& text) { return ReadMspdi(text, "damaged", {}); });
}

}  // namespace
}  // namespace nimbrel::engine

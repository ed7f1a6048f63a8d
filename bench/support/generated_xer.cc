#include "bench/support/generated_xer.h"

#include <fmt/format.h>

#include <iterator>
#include <random>
#include <string_view>

namespace nimbrel::bench {
namespace {

constexpr std::int32_t kNodes = 500;  // and activities in a layer
constexpr std::int32_t kFirstKey = 1'000'000;

constexpr std::string_view kTaskFields =
    "task_id\tproj_id\twbs_id\tclndr_id\tphys_complete_pct\trev_fdbk_flag\test_wt\tlock_plan_flag\t"
    "auto_compute_act_flag\tcomplete_pct_type\ttask_type\tduration_type\tstatus_code\ttask_code\t"
    "task_name\trsrc_id\ttotal_float_hr_cnt\tfree_float_hr_cnt\tremain_drtn_hr_cnt\tact_work_qty\t"
    "remain_work_qty\ttarget_work_qty\ttarget_drtn_hr_cnt\tcstr_date\tact_start_date\t"
    "act_end_date\tlate_start_date\tlate_end_date\texpect_end_date\tearly_start_date\t"
    "early_end_date\trestart_date\treend_date\ttarget_start_date\ttarget_end_date\t"
    "rem_late_start_date\trem_late_end_date\tcstr_type\tpriority_type\tsuspend_date\tresume_date\t"
    "guid\tcstr_date2\tcstr_type2\tdriving_path_flag\texternal_early_start_date\t"
    "external_late_end_date\tcreate_date\tupdate_date\tcreate_user\tupdate_user";

/// Weekdays from Sunday on: '1' is worked.
std::string CalendarData(std::string_view weekdays) {
  std::string text = "(0||CalendarData()((0||DaysOfWeek()(";
  for (std::size_t day = 0; day < weekdays.size(); ++day) {
    text += fmt::format(
        "(0||{}()({}))", day + 1,
        weekdays[day] == '1' ? "(0||0(s|08:00|f|12:00)())(0||1(s|13:00|f|17:00)())" : "");
  }
  text += "))(0||Exceptions()(";
  for (int i = 0; i < 60; ++i) {
    text += fmt::format("(0||{}(d|{})())", i, 46400 + i * 37);
  }
  return text + "))))";
}

void AddHead(std::back_insert_iterator<std::string> out) {
  fmt::format_to(out,
                 "ERMHDR\t23.12\t2027-01-01\tProject\tadmin\n%T\tCALENDAR\n"
                 "%F\tclndr_id\tdefault_flag\tclndr_name\tclndr_type\tday_hr_cnt\tclndr_data\n");
  int calendar = 10;
  for (const char* weekdays : {"0111110", "0111111", "1111111"}) {
    fmt::format_to(out, "%R\t{0}\t{1}\tCalendar {0}\tCA_Base\t8\t{2}\n", calendar,
                   calendar == 10 ? "Y" : "N", CalendarData(weekdays));
    ++calendar;
  }
  fmt::format_to(
      out,
      "%T\tPROJECT\n%F\tproj_id\tproj_short_name\tclndr_id\tlast_recalc_date\tplan_start_date\n"
      "%R\t1\tLARGE\t10\t2027-03-01 08:00\t2027-03-01 08:00\n"
      "%T\tPROJWBS\n%F\twbs_id\tproj_id\tseq_num\tproj_node_flag\twbs_short_name\twbs_name\t"
      "parent_wbs_id\n%R\t1\t1\t0\tY\tLARGE\tLarge plan\t\n");
  for (std::int32_t node = 0; node < kNodes; ++node) {
    fmt::format_to(out, "%R\t{0}\t1\t{1}\tN\tW{1}\tPackage {1}\t1\n", node + 2, node);
  }
}

}  // namespace

std::string GenerateXer(std::int32_t activities) {
  std::string text;
  text.reserve(static_cast<std::size_t>(activities) * 520);
  const auto out = std::back_inserter(text);
  AddHead(out);
  fmt::format_to(out, "%T\tTASK\n%F\t{}\n", kTaskFields);
  for (std::int32_t i = 0; i < activities; ++i) {
    fmt::format_to(out,
                   "%R\t{0}\t1\t{1}\t{2}\t0\tN\t1\tN\tN\tCP_Drtn\tTT_Task\tDT_FixedDUR2\t"
                   "TK_NotStart\tA{3:06}\tInstall section {3} of the line\t\t0\t0\t{4}\t0\t0\t0\t"
                   "{4}\t\t\t\t2027-03-01 08:00\t2027-03-09 17:00\t\t2027-03-01 08:00\t"
                   "2027-03-09 17:00\t2027-03-01 08:00\t2027-03-09 17:00\t2027-03-01 08:00\t"
                   "2027-03-09 17:00\t2027-03-01 08:00\t2027-03-09 17:00\t\tPT_Normal\t\t\t"
                   "{3:022x}\t\t\tN\t\t\t2026-01-01 08:00\t2026-01-01 08:00\tadmin\tadmin\n",
                   kFirstKey + i, 2 + i % kNodes, 10 + i % 3, i, 8 * (1 + i % 9));
  }
  fmt::format_to(out,
                 "%T\tTASKPRED\n%F\ttask_pred_id\ttask_id\tpred_task_id\tproj_id\tpred_proj_id\t"
                 "pred_type\tlag_hr_cnt\n");
  std::mt19937 random(1);
  constexpr const char* kTypes[] = {"PR_FS", "PR_FS", "PR_FS", "PR_FS", "PR_SS", "PR_FF"};
  for (std::int32_t i = kNodes; i < activities; ++i) {
    for (int link = 0; link < 2; ++link) {
      const auto before = static_cast<std::int32_t>(random() % kNodes);
      fmt::format_to(out, "%R\t{}\t{}\t{}\t1\t1\t{}\t{}\n", 2 * i + link, kFirstKey + i,
                     kFirstKey + (i / kNodes - 1) * kNodes + before, kTypes[random() % 6],
                     random() % 10 == 0 ? 16 : 0);
    }
  }
  text += "%E\n";
  return text;
}

}  // namespace nimbrel::bench

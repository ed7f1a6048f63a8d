#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace nimbrel::engine {

using Fields = std::map<std::string, std::string>;

/// Writes small XER files for tests: tables in the order in which they first get a row, each row
/// with the fields that it is given.
class XerText {
 public:
  XerText& Row(const std::string& table, const Fields& fields) {
    if (!rows_.contains(table)) {
      order_.push_back(table);
    }
    rows_[table].push_back(fields);
    for (const auto& [name, value] : fields) {
      columns_[table][name];
    }
    return *this;
  }

  /// A row of its table with the usual fields, some of them set otherwise.
  XerText& Project(const Fields& other = {}) {
    return Row("PROJECT", Over({{"proj_id", "1"},
                                {"proj_short_name", "DOCK"},
                                {"clndr_id", "10"},
                                {"plan_start_date", "2027-03-01 08:00"},
                                {"last_recalc_date", "2027-03-01 08:00"}},
                               other));
  }
  XerText& Calendar(const Fields& other = {}) {
    return Row("CALENDAR", Over({{"clndr_id", "10"},
                                 {"clndr_name", "Five days"},
                                 {"default_flag", "Y"},
                                 {"clndr_type", "CA_Base"},
                                 {"day_hr_cnt", "8"},
                                 {"clndr_data", FiveDays()}},
                                other));
  }
  XerText& Task(const std::string& key, const std::string& code, const Fields& other = {}) {
    return Row("TASK", Over({{"task_id", key},
                             {"proj_id", "1"},
                             {"task_code", code},
                             {"task_name", "Work " + code},
                             {"clndr_id", "10"},
                             {"task_type", "TT_Task"},
                             {"status_code", "TK_NotStart"},
                             {"target_drtn_hr_cnt", "40"},
                             {"remain_drtn_hr_cnt", "40"}},
                            other));
  }
  XerText& Link(const std::string& from, const std::string& to, const std::string& type,
                const std::string& lag = "0") {
    return Row("TASKPRED",
               {{"task_id", to}, {"pred_task_id", from}, {"pred_type", type}, {"lag_hr_cnt", lag}});
  }

  std::string Text(const std::string& line_end = "\n", bool end_mark = true) const {
    std::string text = "ERMHDR\t23.12\t2027-01-01" + line_end;
    for (const std::string& table : order_) {
      text += "%T\t" + table + line_end + "%F";
      for (const auto& [name, unused] : columns_.at(table)) {
        text += "\t" + name;
      }
      text += line_end;
      for (const Fields& row : rows_.at(table)) {
        text += "%R";
        for (const auto& [name, unused] : columns_.at(table)) {
          const auto value = row.find(name);
          text += "\t" + (value == row.end() ? "" : value->second);
        }
        text += line_end;
      }
    }
    return end_mark ? text + "%E" + line_end : text;
  }

  /// Calendar data: a node a weekday from Sunday on, then single days.
  static std::string Data(const std::vector<std::string>& weekdays,
                          const std::string& exceptions = "") {
    std::string text = "(0||CalendarData()((0||DaysOfWeek()(";
    for (std::size_t i = 0; i < weekdays.size(); ++i) {
      text += "(0||" + std::to_string(i + 1) + "()(" + weekdays[i] + "))";
    }
    return text + "))(0||VIEW(ShowTotal|N)())(0||Exceptions()(" + exceptions + "))))";
  }
  static std::string Shift(const std::string& begin, const std::string& end) {
    return "(0||0(s|" + begin + "|f|" + end + ")())";
  }
  static std::string FiveDays(const std::string& exceptions = "") {
    const std::string day = Shift("08:00", "12:00") + Shift("13:00", "17:00");
    return Data({"", day, day, day, day, day, ""}, exceptions);
  }

 private:
  static Fields Over(Fields usual, const Fields& other) {
    for (const auto& [name, value] : other) {
      usual[name] = value;
    }
    return usual;
  }

  std::vector<std::string> order_;
  std::map<std::string, std::vector<Fields>> rows_;
  std::map<std::string, std::map<std::string, bool>> columns_;
};

}  // namespace nimbrel::engine

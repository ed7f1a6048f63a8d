#pragma once

#include <string>
#include <utility>
#include <vector>

namespace nimbrel::engine {

/// Elements of an XML file by name and text, in order.
using Elements = std::vector<std::pair<std::string, std::string>>;

/// "<NAME>text</NAME>" for each; a text may be elements itself.
inline std::string Xml(const Elements& elements) {
  std::string xml;
  for (const auto& [name, text] : elements) {
    xml += "<" + name + ">" + text + "</" + name + ">\n";
  }
  return xml;
}

/// Writes small MSPDI files for tests. What is given last of an element counts, for the reader
/// takes the first and it is written first.
class MspdiText {
 public:
  MspdiText& Set(const std::string& name, const std::string& text) {
    project_.insert(project_.begin(), {name, text});
    return *this;
  }
  MspdiText& Calendar(int number, const std::string& name, const std::string& inside,
                      const Elements& other = {{"IsBaseCalendar", "1"}}) {
    calendars_ += Xml({{"Calendar", Xml({{"UID", std::to_string(number)}, {"Name", name}}) +
                                        Xml(other) + inside}});
    return *this;
  }
  MspdiText& Task(int number, const Elements& other = {}) {
    const std::string text = std::to_string(number);
    tasks_ += Xml({{"Task", Xml(other) + Xml({{"UID", text},
                                              {"ID", text},
                                              {"Name", "Work " + text},
                                              {"OutlineLevel", "1"},
                                              {"Start", "2027-03-01T08:00:00"},
                                              {"Finish", "2027-03-05T17:00:00"},
                                              {"Duration", "PT40H0M0S"},
                                              {"DurationFormat", "7"}})}});
    return *this;
  }
  MspdiText& Resource(int number, int calendar) {
    resources_ += Xml({{"Resource", Xml({{"UID", std::to_string(number)},
                                         {"Type", "1"},
                                         {"CalendarUID", std::to_string(calendar)}})}});
    return *this;
  }
  MspdiText& Assignment(int task, int resource, const std::string& inside = "") {
    assignments_ +=
        Xml({{"Assignment",
              Xml({{"TaskUID", std::to_string(task)}, {"ResourceUID", std::to_string(resource)}}) +
                  inside}});
    return *this;
  }

  std::string Text() const {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<Project xmlns=\"http://schemas.microsoft.com/project\">\n" +
           Xml(project_) +
           Xml({{"Name", "quay.xml"},
                {"StartDate", "2027-03-01T08:00:00"},
                {"MinutesPerDay", "480"},
                {"CalendarUID", "1"},
                {"Calendars", calendars_},
                {"Tasks", tasks_},
                {"Resources", resources_},
                {"Assignments", assignments_}}) +
           "</Project>\n";
  }

  /// A weekday of a calendar, Sunday 1 to Saturday 7, with shifts as "08:00:00" in pairs.
  static std::string Day(int type, const std::vector<std::pair<std::string, std::string>>& shifts,
                         const std::string& period = "") {
    return Xml({{"WeekDay", Xml({{"DayType", std::to_string(type)}}) + period + Work(shifts)}});
  }
  static std::string Work(const std::vector<std::pair<std::string, std::string>>& shifts) {
    std::string times;
    for (const auto& [from, to] : shifts) {
      times += Xml({{"WorkingTime", Xml({{"FromTime", from}, {"ToTime", to}})}});
    }
    return Xml({{"DayWorking", shifts.empty() ? "0" : "1"}}) +
           (shifts.empty() ? "" : Xml({{"WorkingTimes", times}}));
  }
  static std::string Period(const std::string& from, const std::string& to) {
    return Xml(
        {{"TimePeriod", Xml({{"FromDate", from + "T00:00:00"}, {"ToDate", to + "T23:59:00"}})}});
  }
  static std::string Link(int predecessor, int type, const Elements& other = {}) {
    return Xml({{"PredecessorUID", std::to_string(predecessor)}, {"Type", std::to_string(type)}}) +
           Xml(other);
  }

 private:
  Elements project_;
  std::string calendars_;
  std::string tasks_;
  std::string resources_;
  std::string assignments_;
};

}  // namespace nimbrel::engine

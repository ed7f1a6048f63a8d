#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>

#include "engine/plan/plan.h"
#include "engine/plan/plan_store.h"

namespace nimbrel::engine {

/// A folder that goes with the test, and another program that meddles with files in it.
class StoreTest : public ::testing::Test {
 protected:
  StoreTest() {
    std::string folder = (std::filesystem::temp_directory_path() / "nimbrel-XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr) {
      throw std::runtime_error("no temporary folder");
    }
    folder_ = folder;
  }
  ~StoreTest() override { std::filesystem::remove_all(folder_); }

  std::string Path(const std::string& name) const { return (folder_ / name).string(); }

  static void Write(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
  }
  static std::string Read(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  /// Every file of the folder with its bytes.
  std::map<std::string, std::string> Files() const {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
      if (entry.is_regular_file()) {
        files[entry.path().filename().string()] = Read(entry.path().string());
      }
    }
    return files;
  }

  /// Changes a file by other means than ours, with nothing checked.
  static void Meddle(const std::string& path, const std::string& sql) {
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(path.c_str(), &database), SQLITE_OK);
    const std::string all = "PRAGMA ignore_check_constraints = ON; " + sql;
    const int code = sqlite3_exec(database, all.c_str(), nullptr, nullptr, nullptr);
    EXPECT_EQ(code, SQLITE_OK) << sqlite3_errmsg(database);
    sqlite3_close(database);
  }

  /// Expects a PlanFileError of this kind that begins with the file and has `text` in it.
  template <class Operation>
  static void ExpectError(PlanFileError::Kind kind, const std::string& path,
                          const std::string& text, const Operation& operation) {
    try {
      operation();
      ADD_FAILURE() << "no error; expected: " << text;
    } catch (const PlanFileError& error) {
      const std::string what = error.what();
      EXPECT_EQ(error.kind(), kind) << what;
      EXPECT_TRUE(what.starts_with(path + ": ")) << what;
      EXPECT_NE(what.find(text), std::string::npos) << what << "\nexpected: " << text;
    }
  }
  static void ExpectBadContent(const std::string& path, const std::string& text) {
    ExpectError(PlanFileError::Kind::kContent, path, text, [&] { LoadPlan(path); });
  }
  static void ExpectUnreadable(const std::string& path, const std::string& text) {
    ExpectError(PlanFileError::Kind::kFile, path, text, [&] { LoadPlan(path); });
  }
  static void ExpectUnwritable(const Plan& plan, const std::string& path, const std::string& text) {
    ExpectError(PlanFileError::Kind::kFile, path, text, [&] { SavePlan(plan, path); });
  }

  /// A chain of so many tasks, with something in every table.
  static Plan MakePlan(int tasks, const std::string& name = "Plan") {
    Plan plan;
    plan.name = name;
    plan.start = Instant(46000, 480);
    plan.default_calendar = plan.AddCalendar(MakeWeekCalendar("Week", 5, 8)).uid;
    plan.calendars.front().exceptions = {{46010, {}}, {46011, {{480, 720}}}};
    plan.calendars.front().taken = {{46020, 46021}};
    const Uid risk = plan.FreshUid();
    plan.risk_calendars.push_back({risk, "Storm", "Weather calendar", plan.default_calendar});
    plan.custom_fields.push_back({"Weather-start", 2});
    plan.options[{"NIMBRELMOD", "Options", "IsWeatherPlan"}] = "TRUE";
    Uid before = 0;
    for (int i = 0; i < tasks; ++i) {
      Task task;
      task.id = "A" + std::to_string(i);
      task.description = name + " task " + std::to_string(i);
      task.remaining_minutes = task.original_minutes = 480 + i;
      task.range = ThreePoint{1, 2.5, 7, Shape::kPert};
      task.risk = OccurrenceRisk{70, 1};
      task.constraint = {ConstraintType::kStartNoEarlier, Instant(46001, 480)};
      task.stored.early_start = Instant(46001, 480);
      task.user_values = {{"weather", "nosplit", "True"}};
      task.custom_values = {{"Weather-start", platform::Date{46000.0}}};
      task.risk_calendars = {{risk, 0.0}};
      const Uid uid = plan.AddTask(task).uid;
      if (before != 0) {
        plan.links.push_back({before, uid});
      }
      before = uid;
    }
    return plan;
  }

 private:
  std::filesystem::path folder_;
};

}  // namespace nimbrel::engine

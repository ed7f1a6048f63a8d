#include "desk/weather_desk.h"

#include <filesystem>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "desk/desk_services.h"
#include "dialog/frm_weather.h"
#include "engine/plan/plan_store.h"
#include "host/mod_global.h"
#include "nimbrel/wiring.h"
#include "tests/desk/scripted_desktop.h"
#include "tests/posix/scratch_folder.h"

namespace nimbrel::desk {
namespace {

using cli::ExitCode;
using engine::LoadPlan;
using engine::Plan;
using engine::SavePlan;
using toolkit::Answer;

engine::Task MakeTask(const std::string& id) {
  engine::Task task;
  task.id = id;
  task.remaining_minutes = task.original_minutes = 5 * 480;
  return task;
}

Plan MakePlan() {
  Plan plan;
  plan.name = "Pier";
  plan.title = "The new pier";
  plan.start = engine::Instant(46000, 480);
  plan.default_calendar = plan.AddCalendar(engine::MakeWeekCalendar("STANDARD", 5, 8)).uid;
  plan.AddTask(MakeTask("A"));
  plan.AddTask(MakeTask("B"));
  return plan;
}

bool IsWeatherPlanFile(const std::string& path) {
  const Plan plan = LoadPlan(path);
  return cli::IsWeatherPlan(plan) && plan.FindTask("WEATHER") != nullptr;
}

/// A plan file, and a user who works the weather dialog over it.
class WeatherDeskTest : public platform::ScratchTest {
 protected:
  WeatherDeskTest() : services_(desktop_, folder_.string(), {}) {
    std::filesystem::create_directory(Path("plans"));
    SavePlan(MakePlan(), Pier());
  }

  std::string Pier() const { return Path("plans/pier.nplan").string(); }
  std::string Other(const std::string& name = "other.nplan") const { return Path(name).string(); }

  /// The user ticks the box, does `meanwhile`, and closes the dialog.
  void MakeWeatherPlan(const std::function<void()>& meanwhile = [] {}) {
    desktop_.hands.push_back([meanwhile](toolkit::Form& form) {
      auto& dialog = dynamic_cast<dialog::frmWeather&>(form);
      dialog.chkIsWeather.UserClick();
      meanwhile();
      dialog.cmdClose.UserClick();
    });
  }
  void CloseAtOnce() {
    desktop_.hands.push_back(
        [](toolkit::Form& form) { dynamic_cast<dialog::frmWeather&>(form).cmdClose.UserClick(); });
  }
  ExitCode Run() { return Run(WeatherDialogOn(desktop_)); }
  ExitCode Run(const std::function<void()>& show_dialog) {
    cli::Console console{out_, err_, {}};
    return WeatherDesk(desktop_, cli::MakeHostOptions(), show_dialog, console).Run(Pier());
  }
  /// Another program changes the plan file.
  void ChangePlanFile() const {
    Plan plan = LoadPlan(Pier());
    plan.AddTask(MakeTask("THEIRS"));
    SavePlan(plan, Pier());
  }
  /// Takes away the folder of the plan file: nothing can be saved there any more.
  void RemoveFolder() const { std::filesystem::remove_all(Path("plans")); }
  void ExpectShown(const std::vector<std::string>& parts) const {
    ASSERT_EQ(desktop_.shown.size(), parts.size()) << ::testing::PrintToString(desktop_.shown);
    for (std::size_t i = 0; i < parts.size(); ++i) {
      EXPECT_NE(desktop_.shown[i].find(parts[i]), std::string::npos)
          << desktop_.shown[i] << "\nexpected: " << parts[i];
    }
  }
  void ExpectNothingLeftToDo() const {
    EXPECT_TRUE(desktop_.hands.empty());
    EXPECT_TRUE(desktop_.answers.empty());
    EXPECT_TRUE(desktop_.files.empty());
  }

  ScriptedDesktop desktop_;
  DeskServices services_;
  std::ostringstream out_;
  std::ostringstream err_;
};

TEST_F(WeatherDeskTest, WhatWasDoneInTheDialogIsSavedAtClose) {
  MakeWeatherPlan();
  EXPECT_EQ(Run(), ExitCode::kDone);
  EXPECT_TRUE(IsWeatherPlanFile(Pier()));
  ExpectShown({});
  ExpectNothingLeftToDo();
  EXPECT_EQ(out_.str() + err_.str(), "");
}

TEST_F(WeatherDeskTest, TheNextDialogShowsIt) {
  MakeWeatherPlan();
  Run();
  bool ticked = false;
  desktop_.hands.push_back([&](toolkit::Form& form) {
    auto& dialog = dynamic_cast<dialog::frmWeather&>(form);
    ticked = dialog.chkIsWeather.Value();
    dialog.cmdClose.UserClick();
  });
  EXPECT_EQ(Run(), ExitCode::kDone);
  EXPECT_TRUE(ticked);
}

TEST_F(WeatherDeskTest, WhereNothingWasChangedNothingIsSaved) {
  CloseAtOnce();  // the first opening gives the plan its option and its fields
  Run();
  const auto before = std::filesystem::last_write_time(Pier());
  const std::string bytes = Read(Pier());
  CloseAtOnce();
  EXPECT_EQ(Run(), ExitCode::kDone);
  EXPECT_EQ(std::filesystem::last_write_time(Pier()), before);
  EXPECT_EQ(Read(Pier()), bytes);
}

TEST_F(WeatherDeskTest, NothingToSaveMeansNoQuestionThoughTheFileHasChanged) {
  EXPECT_EQ(Run([this] { ChangePlanFile(); }), ExitCode::kDone);
  EXPECT_NE(LoadPlan(Pier()).FindTask("THEIRS"), nullptr);
  ExpectShown({});
}

TEST_F(WeatherDeskTest, AFileChangedMeanwhileIsOverwrittenIfTheUserSaysSo) {
  MakeWeatherPlan([this] { ChangePlanFile(); });
  desktop_.answers = {Answer::kYes};
  EXPECT_EQ(Run(), ExitCode::kDone);
  ExpectShown({"pier.nplan has been changed by another program since it was opened."});
  EXPECT_TRUE(IsWeatherPlanFile(Pier()));
  EXPECT_EQ(LoadPlan(Pier()).FindTask("THEIRS"), nullptr);
}

TEST_F(WeatherDeskTest, OtherwiseItIsKeptAndAnotherNameIsOffered) {
  MakeWeatherPlan([this] { ChangePlanFile(); });
  desktop_.answers = {Answer::kNo};
  desktop_.files = {Other()};
  EXPECT_EQ(Run(), ExitCode::kDone);
  EXPECT_NE(LoadPlan(Pier()).FindTask("THEIRS"), nullptr);
  EXPECT_FALSE(IsWeatherPlanFile(Pier()));
  EXPECT_TRUE(IsWeatherPlanFile(Other()));
  EXPECT_EQ(out_.str(), "Saved as " + Other() + "\n");
  ASSERT_EQ(desktop_.asked_files.size(), 1U);
  EXPECT_TRUE(desktop_.asked_files[0].save);
  EXPECT_EQ(desktop_.asked_files[0].folder, Path("plans").string());
  EXPECT_EQ(desktop_.asked_files[0].file_name, "pier (2).nplan");
  EXPECT_EQ(desktop_.asked_files[0].pattern, "*.nplan");
}

TEST_F(WeatherDeskTest, AFileThatWasOnlyTouchedHasNotChanged) {
  MakeWeatherPlan([this] {
    const std::string bytes = Read(Pier());
    std::filesystem::remove(Pier());
    Write("plans/pier.nplan", bytes);
  });
  EXPECT_EQ(Run(), ExitCode::kDone);
  ExpectShown({});
  EXPECT_TRUE(IsWeatherPlanFile(Pier()));
}

TEST_F(WeatherDeskTest, AFileThatIsGoneIsMadeAnew) {
  MakeWeatherPlan([this] { std::filesystem::remove(Pier()); });
  EXPECT_EQ(Run(), ExitCode::kDone);
  ExpectShown({});
  EXPECT_TRUE(IsWeatherPlanFile(Pier()));
}

TEST_F(WeatherDeskTest, WhatCannotBeSavedIsToldAndSavedUnderAnotherName) {
  MakeWeatherPlan([this] { RemoveFolder(); });
  desktop_.files = {Other()};
  EXPECT_EQ(Run(), ExitCode::kDone);
  ExpectShown({"The plan cannot be saved.\n\n" + Pier() + ": cannot be written"});
  EXPECT_TRUE(IsWeatherPlanFile(Other()));
}

TEST_F(WeatherDeskTest, ANameThatFailsTooIsToldAndAnotherIsAskedFor) {
  MakeWeatherPlan([this] { RemoveFolder(); });
  Write("text.nplan", "no plan");
  desktop_.files = {Path("nowhere/x.nplan").string(), Other("text.nplan"), Other()};
  EXPECT_EQ(Run(), ExitCode::kDone);
  ExpectShown({"pier.nplan: ", "nowhere/x.nplan: cannot be written", "text.nplan: "});
  EXPECT_EQ(Read(Other("text.nplan")), "no plan");
  EXPECT_TRUE(IsWeatherPlanFile(Other()));
  ExpectNothingLeftToDo();
}

TEST_F(WeatherDeskTest, ACancelledFileDialogLosesNothingWithoutAWord) {
  MakeWeatherPlan([this] { RemoveFolder(); });
  desktop_.files = {"", "", Other()};
  desktop_.answers = {Answer::kNo, Answer::kNo};
  EXPECT_EQ(Run(), ExitCode::kDone);
  ExpectShown({"cannot be saved", "are not saved.\n\nDo you want to give them up?",
               "are not saved.\n\nDo you want to give them up?"});
  EXPECT_TRUE(IsWeatherPlanFile(Other()));
  ExpectNothingLeftToDo();
}

TEST_F(WeatherDeskTest, ChangesAreGivenUpOnlyInWords) {
  MakeWeatherPlan([this] { ChangePlanFile(); });
  desktop_.answers = {Answer::kNo, Answer::kYes};
  desktop_.files = {""};
  EXPECT_EQ(Run(), ExitCode::kFileTrouble);
  EXPECT_FALSE(IsWeatherPlanFile(Pier()));
  EXPECT_EQ(err_.str(), "nimbrel: " + Pier() + ": the changes were given up\n");
}

TEST_F(WeatherDeskTest, ANameWithoutItsEndingGetsIt) {
  MakeWeatherPlan([this] { RemoveFolder(); });
  desktop_.files = {Other("v1.2")};
  EXPECT_EQ(Run(), ExitCode::kDone);
  EXPECT_TRUE(IsWeatherPlanFile(Other("v1.2.nplan")));
}

TEST_F(WeatherDeskTest, AFileThatTheEndingLeadsToIsReplacedOnlyIfTheUserSaysSo) {
  SavePlan(MakePlan(), Other("old.nplan"));
  MakeWeatherPlan([this] { RemoveFolder(); });
  desktop_.files = {Other("old"), Other("new.NPLAN")};
  desktop_.answers = {Answer::kNo};
  EXPECT_EQ(Run(), ExitCode::kDone);
  ExpectShown({"cannot be saved", "old.nplan is there already."});
  EXPECT_FALSE(IsWeatherPlanFile(Other("old.nplan")));
  EXPECT_TRUE(IsWeatherPlanFile(Other("new.NPLAN")));
}

/// Gives task A of the active plan this date of weather.
void SetWeatherStart(double date) {
  modGlobal::AddWeatherFields();
  modGlobal::Application()->get_ActivePlan()->get_Tasks()->Item("A")->get_UserFields()->SetCustom(
      "Weather-start", date);
}

/// What no plan file can hold.
void SpoilPlan() {
  SetWeatherStart(std::numeric_limits<double>::infinity());
}

TEST_F(WeatherDeskTest, APlanThatNoFileCanHoldCanBeMendedInTheDialog) {
  int openings = 0;
  desktop_.answers = {Answer::kYes};
  EXPECT_EQ(Run([&openings] { ++openings == 1 ? SpoilPlan() : SetWeatherStart(46000.0); }),
            ExitCode::kDone);
  EXPECT_EQ(openings, 2);
  ExpectShown({"The plan cannot be saved: "});
  EXPECT_EQ(LoadPlan(Pier()).FindTask("A")->custom_values.size(), 1U);
}

TEST_F(WeatherDeskTest, OrItsChangesAreGivenUp) {
  desktop_.answers = {Answer::kNo};
  EXPECT_EQ(Run(SpoilPlan), ExitCode::kFileTrouble);
  EXPECT_EQ(LoadPlan(Pier()), MakePlan());
}

TEST_F(WeatherDeskTest, ADialogThatCannotBeShownIsTold) {
  Plan plan = MakePlan();
  plan.links.push_back({plan.FindTask("A")->uid, plan.FindTask("B")->uid});
  plan.links.push_back({plan.FindTask("B")->uid, plan.FindTask("A")->uid});
  SavePlan(plan, Pier());
  try {
    Run();
    FAIL() << "a loop of links was scheduled";
  } catch (const cli::CommandError& error) {
    EXPECT_EQ(error.code(), ExitCode::kBadInput);
    EXPECT_TRUE(std::string(error.what()).starts_with(Pier() + ": the weather dialog cannot be"));
  }
  ExpectShown({"the weather dialog cannot be shown: "});
  EXPECT_EQ(LoadPlan(Pier()), plan) << "nothing of it is saved";
}

TEST_F(WeatherDeskTest, OnlyAPlanFileCanBeEdited) {
  Write("plans/pier.nplan", "ERMHDR\t19.12\n");
  try {
    Run();
    FAIL();
  } catch (const cli::CommandError& error) {
    EXPECT_EQ(error.code(), ExitCode::kBadInput);
    EXPECT_NE(std::string(error.what()).find("expected a .nplan"), std::string::npos);
  }
  std::filesystem::remove(Pier());
  try {
    Run();
    FAIL();
  } catch (const cli::CommandError& error) {
    EXPECT_EQ(error.code(), ExitCode::kFileTrouble);
  }
  ExpectShown({});
}

}  // namespace
}  // namespace nimbrel::desk

#include "engine/plan/plan_store.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <sqlite3.h>

#include <bit>
#include <cstdint>
#include <filesystem>
#include <string>

#include "engine/plan/plan_fault.h"
#include "tests/plan/random_plan.h"
#include "tests/plan/store_fixture.h"

namespace nimbrel::engine {
namespace {

namespace fs = std::filesystem;

class PlanStore : public StoreTest {};

TEST_F(PlanStore, GivesBackEveryPlanAsItWas) {
  const std::string path = Path("plan.nplan");
  EXPECT_TRUE(rc::check([&] {
    const Plan plan = *AnyPlan();
    RC_ASSERT(!FindFault(plan));
    if (*rc::gen::arbitrary<bool>()) {
      fs::remove(path);  // else the plan takes the place of another
    }
    SavePlan(plan, path);
    const Plan read = LoadPlan(path);
    RC_ASSERT(read == plan);
  }));
}

TEST_F(PlanStore, KeepsEveryBitOfANumber) {
  const std::string path = Path("plan.nplan");
  Plan plan = MakePlan(1);
  plan.FindTask("A0")->range = ThreePoint{-0.0, 0.1, 3.0, Shape::kTriangular};
  plan.FindTask("A0")->custom_values.front().value = platform::Date{-0.0};
  SavePlan(plan, path);
  const Plan read = LoadPlan(path);
  const Task& task = *read.FindTask("A0");
  // Bits, since -0.0 equals 0.0.
  EXPECT_EQ(std::bit_cast<std::uint64_t>(task.range->minimum), std::uint64_t{1} << 63);
  EXPECT_EQ(std::bit_cast<std::uint64_t>(task.range->likely), std::bit_cast<std::uint64_t>(0.1));
  EXPECT_EQ(
      std::bit_cast<std::uint64_t>(task.custom_values.front().value.Get<platform::Date>()->serial),
      std::uint64_t{1} << 63);
}

TEST_F(PlanStore, GoesOnNumberingWhereThePlanStopped) {
  Plan plan = MakePlan(3);
  plan.RemoveTask(plan.FindTask("A2")->uid);
  SavePlan(plan, Path("plan.nplan"));
  EXPECT_EQ(LoadPlan(Path("plan.nplan")).FreshUid(), plan.FreshUid());
}

TEST_F(PlanStore, LeavesNothingBesideTheFile) {
  SavePlan(MakePlan(3), Path("plan.nplan"));
  SavePlan(MakePlan(2), Path("plan.nplan"));
  LoadPlan(Path("plan.nplan"));
  EXPECT_THAT(Files(), ::testing::ElementsAre(::testing::Key("plan.nplan")));
}

TEST_F(PlanStore, MarksTheFileAsAPlan) {
  SavePlan(MakePlan(1), Path("plan.nplan"));
  EXPECT_TRUE(IsPlanFile(Path("plan.nplan")));
  Write(Path("other"), "ERMHDR\t23.12");
  EXPECT_FALSE(IsPlanFile(Path("other")));
  EXPECT_FALSE(IsPlanFile(Path("missing")));
}

TEST_F(PlanStore, FollowsALinkToTheFile) {
  SavePlan(MakePlan(1), Path("plan.nplan"));
  fs::create_symlink(Path("plan.nplan"), Path("link.nplan"));
  const Plan plan = MakePlan(2);
  SavePlan(plan, Path("link.nplan"));
  EXPECT_TRUE(fs::is_symlink(Path("link.nplan")));
  EXPECT_EQ(LoadPlan(Path("plan.nplan")), plan);
}

TEST_F(PlanStore, TakesAnEmptyFileForANewOne) {
  Write(Path("plan.nplan"), "");
  const Plan plan = MakePlan(2);
  SavePlan(plan, Path("plan.nplan"));
  EXPECT_EQ(LoadPlan(Path("plan.nplan")), plan);
}

TEST_F(PlanStore, DoesNotPlayAnOldJournalIntoANewFile) {
  // What a save that was cut off leaves, had the plan itself been deleted afterwards.
  SavePlan(MakePlan(30, "Old"), Path("plan.nplan"));
  sqlite3* database = nullptr;
  ASSERT_EQ(sqlite3_open(Path("plan.nplan").c_str(), &database), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(database,
                         "PRAGMA cache_size = 1; PRAGMA cache_spill = 1; BEGIN; DELETE FROM links; "
                         "UPDATE tasks SET description = 'x'",
                         nullptr, nullptr, nullptr),
            SQLITE_OK);
  const std::string journal = Read(Path("plan.nplan-journal"));
  sqlite3_close(database);
  ASSERT_FALSE(journal.empty());
  fs::remove(Path("plan.nplan"));
  Write(Path("plan.nplan-journal"), journal);

  const Plan plan = MakePlan(3, "New");
  SavePlan(plan, Path("plan.nplan"));
  EXPECT_EQ(LoadPlan(Path("plan.nplan")), plan);
}

TEST_F(PlanStore, RefusesToSaveAPlanThatCouldNotBeRead) {
  SavePlan(MakePlan(1), Path("plan.nplan"));
  const auto before = Files();
  Plan plan = MakePlan(2);
  plan.links.push_back({1, 99});
  ExpectError(PlanFileError::Kind::kContent, Path("plan.nplan"),
              "link 2: expected a predecessor that is in the plan, found number 1",
              [&] { SavePlan(plan, Path("plan.nplan")); });
  EXPECT_EQ(Files(), before);
}

// Two programs and one file.

TEST_F(PlanStore, SavesChangesOverTheStateThatWasRead) {
  SavePlan(MakePlan(3), Path("plan.nplan"));
  StoredPlan stored = LoadStoredPlan(Path("plan.nplan"));
  EXPECT_EQ(stored.plan, MakePlan(3));
  stored.plan.name = "Changed";
  SaveChangedPlan(stored.plan, Path("plan.nplan"), stored.revision);
  EXPECT_EQ(LoadPlan(Path("plan.nplan")), stored.plan);
}

TEST_F(PlanStore, ReadingAPlanIsNoChangeOfIt) {
  SavePlan(MakePlan(3), Path("plan.nplan"));
  const StoredPlan stored = LoadStoredPlan(Path("plan.nplan"));
  EXPECT_EQ(LoadStoredPlan(Path("plan.nplan")).revision, stored.revision);
}

TEST_F(PlanStore, LosesNothingThatAnotherProgramSavedSinceThePlanWasRead) {
  SavePlan(MakePlan(3), Path("plan.nplan"));
  const StoredPlan mine = LoadStoredPlan(Path("plan.nplan"));
  SavePlan(MakePlan(5, "Theirs"), Path("plan.nplan"));
  ExpectError(PlanFileError::Kind::kFile, Path("plan.nplan"), "was changed by another program",
              [&] { SaveChangedPlan(mine.plan, Path("plan.nplan"), mine.revision); });
  EXPECT_EQ(LoadPlan(Path("plan.nplan")), MakePlan(5, "Theirs"));
}

TEST_F(PlanStore, LosesNothingOfAFileThatTookThePlaceOfTheOneThatWasRead) {
  SavePlan(MakePlan(3), Path("plan.nplan"));
  SavePlan(MakePlan(3, "Theirs"), Path("other.nplan"));
  const StoredPlan mine = LoadStoredPlan(Path("plan.nplan"));
  fs::rename(Path("other.nplan"), Path("plan.nplan"));
  ExpectError(PlanFileError::Kind::kFile, Path("plan.nplan"), "was changed by another program",
              [&] { SaveChangedPlan(mine.plan, Path("plan.nplan"), mine.revision); });
  EXPECT_EQ(LoadPlan(Path("plan.nplan")), MakePlan(3, "Theirs"));
}

TEST_F(PlanStore, MakesAFileThatIsGoneAnewFromWhatWasChanged) {
  SavePlan(MakePlan(3), Path("plan.nplan"));
  const StoredPlan stored = LoadStoredPlan(Path("plan.nplan"));
  fs::remove(Path("plan.nplan"));
  SaveChangedPlan(stored.plan, Path("plan.nplan"), stored.revision);
  EXPECT_EQ(LoadPlan(Path("plan.nplan")), stored.plan);
}

// Files that are no plan.

TEST_F(PlanStore, SaysThatAFileIsMissing) {
  ExpectUnreadable(Path("missing.nplan"), "cannot be read: No such file");
  EXPECT_THAT(Files(), ::testing::IsEmpty());
}

TEST_F(PlanStore, RefusesAFolder) {
  fs::create_directory(Path("folder.nplan"));
  ExpectUnreadable(Path("folder.nplan"), "expected a file, found a folder");
  ExpectUnwritable(MakePlan(1), Path("folder.nplan"), "expected a file, found a folder");
}

TEST_F(PlanStore, RefusesAFileOfAnotherKindAndLeavesIt) {
  for (const std::string& bytes : {std::string("ERMHDR\t23.12\n"), std::string(5000, 'x')}) {
    Write(Path("plan.nplan"), bytes);
    ExpectBadContent(Path("plan.nplan"), "expected a plan file, found something else");
    ExpectError(PlanFileError::Kind::kContent, Path("plan.nplan"),
                "expected a plan file, found something else",
                [&] { SavePlan(MakePlan(1), Path("plan.nplan")); });
    EXPECT_EQ(Read(Path("plan.nplan")), bytes);
  }
}

TEST_F(PlanStore, RefusesAnEmptyFile) {
  Write(Path("plan.nplan"), "");
  ExpectBadContent(Path("plan.nplan"), "found an SQLite file of another kind (0)");
}

TEST_F(PlanStore, RefusesAnotherProgramsDatabaseAndLeavesIt) {
  Meddle(Path("plan.nplan"), "CREATE TABLE tasks (x); PRAGMA application_id = 12");
  const auto before = Files();
  ExpectBadContent(Path("plan.nplan"), "found an SQLite file of another kind (12)");
  ExpectError(PlanFileError::Kind::kContent, Path("plan.nplan"), "of another kind (12)",
              [&] { SavePlan(MakePlan(1), Path("plan.nplan")); });
  EXPECT_EQ(Files(), before);
}

TEST_F(PlanStore, RefusesTheFileOfANewerProgramAndLeavesIt) {
  SavePlan(MakePlan(1), Path("plan.nplan"));
  Meddle(Path("plan.nplan"), "PRAGMA user_version = 99");
  const auto before = Files();
  ExpectBadContent(Path("plan.nplan"),
                   "expected a plan file of version 1 to 3, found version 99; a newer program");
  ExpectError(PlanFileError::Kind::kContent, Path("plan.nplan"), "found version 99",
              [&] { SavePlan(MakePlan(1), Path("plan.nplan")); });
  EXPECT_EQ(Files(), before);
}

TEST_F(PlanStore, ReadsTheFilesOfOlderVersionsAndSavesThemAsNewOnes) {
  const Plan plan = MakePlan(5);
  for (const int version : {1, 2}) {
    SavePlan(plan, Path("plan.nplan"));
    Meddle(Path("plan.nplan"), "DROP TABLE correlation_members; DROP TABLE correlation_groups");
    if (version == 1) {
      Meddle(Path("plan.nplan"), "ALTER TABLE plan DROP COLUMN no_later_holds_early");
    }
    Meddle(Path("plan.nplan"), "PRAGMA user_version = " + std::to_string(version));
    Plan loaded = LoadPlan(Path("plan.nplan"));
    EXPECT_EQ(loaded, plan) << version;
    loaded.correlations.push_back({{loaded.tasks()[0].uid, loaded.tasks()[1].uid}, {}, 0.25});
    SavePlan(loaded, Path("plan.nplan"));
    EXPECT_EQ(LoadPlan(Path("plan.nplan")), loaded) << version;
  }
}

TEST_F(PlanStore, RefusesADamagedFile) {
  SavePlan(MakePlan(200), Path("plan.nplan"));
  std::string bytes = Read(Path("plan.nplan"));
  bytes.resize(bytes.size() / 2);
  Write(Path("plan.nplan"), bytes);
  ExpectBadContent(Path("plan.nplan"), "expected a plan file, found a damaged one");
}

TEST_F(PlanStore, SaysThatAnotherProgramHoldsTheFile) {
  SavePlan(MakePlan(1), Path("plan.nplan"));
  const auto before = Files();
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open(Path("plan.nplan").c_str(), &other), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(other, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
  ExpectUnreadable(Path("plan.nplan"), "found it locked by another program");
  ExpectUnwritable(MakePlan(2), Path("plan.nplan"), "found it locked by another program");
  sqlite3_close(other);
  EXPECT_EQ(Files(), before);
}

TEST_F(PlanStore, SaysThatAFileCannotBeMade) {
  // A path below a file, which nobody can write, whoever runs the test.
  Write(Path("file"), "x");
  ExpectUnwritable(MakePlan(1), Path("file") + "/plan.nplan", "cannot be written");
  ExpectUnwritable(MakePlan(1), Path("no-folder/plan.nplan"), "cannot be written: No such file");
  ExpectUnreadable(Path("file") + "/plan.nplan", "cannot be read");
}

// Files that are plans but for something in them.

struct Damage {
  const char* name;
  const char* sql;
  const char* error;
};

class DamagedPlan : public PlanStore, public ::testing::WithParamInterface<Damage> {};

// Tasks A0 to A2 have the numbers 3 to 5, the calendar 1, the risk calendar 2; the next is 6.
INSTANTIATE_TEST_SUITE_P(
    Damages, DamagedPlan,
    ::testing::Values(
        Damage{"MissingTable", "DROP TABLE links", "found: no such table: links"},
        Damage{"MissingColumn", "ALTER TABLE tasks DROP COLUMN stream",
               "found: no such column: stream"},
        Damage{"NoPlanRow", "DELETE FROM plan", "table plan: expected one row, found none"},
        Damage{"NumberForText",
               "DROP TABLE plan; CREATE TABLE plan AS SELECT 1 id, 6 next_uid, "
               "5 name, '' title, '' start, '' data_date, 1 time_unit, "
               "8 hours_per_day, 7 date_format, 1 default_calendar, "
               "0 recalculate_after_move, 0 progress_rule, 1 float_rule, "
               "1 remaining_from_data_date, 1 lag_from_early_start, "
               "'' must_finish, 0 critical_float_minutes, "
               "0 critical_by_longest_path, 0 open_ends_critical, "
               "0 no_later_holds_early",
               "table plan, row 1, name: expected a text, found 5"},
        Damage{"WholeForReal", "UPDATE tasks SET percent_complete = 3",
               "table tasks, row 1, percent_complete: expected a real number, found 3"},
        Damage{"LargeNumber", "UPDATE tasks SET remaining_minutes = 3000000000",
               "remaining_minutes: expected a whole number of 32 bits, found 3000000000"},
        Damage{"NoBoolean", "UPDATE plan SET recalculate_after_move = 2",
               "recalculate_after_move: expected 0 or 1, found 2"},
        Damage{"NoDate", "UPDATE tasks SET actual_start = '31.12.2026' WHERE uid = 4",
               "table tasks, row 2, actual_start: expected a date YYYY-MM-DDTHH:MM, found "
               "\"31.12.2026\""},
        Damage{"NoDay",
               "UPDATE calendar_exceptions SET day = '2025-02-29' WHERE day <= '2025-12-19'",
               "table calendar_exceptions, row 1, day: expected a date YYYY-MM-DD"},
        Damage{"NoStream", "UPDATE tasks SET stream = 0",
               "stream: expected a random stream other than 0, found 0"},
        Damage{"NumberTooHigh", "UPDATE plan SET next_uid = 5",
               "table tasks, row 3, uid: expected a number from 1 to 4, found 5"},
        Damage{"SameNumberTwice",
               "CREATE TABLE other AS SELECT * FROM tasks; DROP TABLE tasks; "
               "ALTER TABLE other RENAME TO tasks; UPDATE tasks SET uid = 3 WHERE uid = 4",
               "table tasks, row 2, uid: expected a number of its own, found 3"},
        Damage{"SameIdInOtherCase", "UPDATE tasks SET id = 'a0' WHERE uid = 5",
               "table tasks, row 3, id: expected an ID of its own, found \"a0\""},
        Damage{"EmptyId", "UPDATE tasks SET id = '' WHERE uid = 4", "expected an ID, found"},
        Damage{"NoKind", "UPDATE tasks SET kind = 5 WHERE uid = 4",
               "task \"A1\": expected a kind from 0 to 4, found 5"},
        Damage{"NoTimeUnit", "UPDATE plan SET time_unit = 2",
               "a time unit of 1, 24 or 96, found 2"},
        Damage{"NoHours", "UPDATE plan SET hours_per_day = 0",
               "plan: expected hours a day from 1 to 24, found 0"},
        Damage{"NoDateFormat", "UPDATE plan SET date_format = 15",
               "expected a date format from 0 to 14, found 15"},
        Damage{"NoProgressRule", "UPDATE plan SET progress_rule = 3", "progress rule from 0 to 2"},
        Damage{"NoFloatRule", "UPDATE plan SET float_rule = -1", "float rule from 0 to 2"},
        Damage{"NoDefaultCalendar", "UPDATE plan SET default_calendar = 77",
               "plan: expected a default calendar that is in the plan, found number 77"},
        Damage{"NoCalendar", "UPDATE tasks SET calendar = 77 WHERE uid = 3",
               "task \"A0\": expected a calendar that is in the plan, found number 77"},
        Damage{"NoParent", "UPDATE tasks SET parent = 77 WHERE uid = 3",
               "task \"A0\": expected a summary that is in the plan, found number 77"},
        Damage{"ParentsInACircle",
               "UPDATE tasks SET parent = 4 WHERE uid = 3; UPDATE tasks SET parent = 3 "
               "WHERE uid = 4",
               "task \"A0\": expected a summary above it, found the task itself"},
        Damage{"NegativeWork", "UPDATE tasks SET remaining_minutes = -1 WHERE uid = 3",
               "expected no duration below 0 minutes, found -1"},
        Damage{"TooMuchDone", "UPDATE tasks SET percent_complete = 100.5",
               "expected a percentage from 0 to 100, found 100.5"},
        Damage{"InfiniteRange", "UPDATE ranges SET maximum = 9e999",
               "expected a duration that is a number, found inf"},
        Damage{"NoShape", "UPDATE ranges SET shape = 4", "expected a shape from 0 to 3, found 4"},
        Damage{"RangeOfNoTask", "UPDATE ranges SET task = 77 WHERE task = 3",
               "table ranges, row 3, task: expected a task that is in the plan, found 77"},
        Damage{"InfiniteRisk", "UPDATE risks SET probability = 9e999", "a probability that is"},
        Damage{"NoConstraint", "UPDATE constraints SET type = 11",
               "expected a constraint from 0 to 10, found 11"},
        Damage{"ThirdConstraint", "UPDATE constraints SET rank = 3 WHERE task = 3",
               "rank: expected a number from 1 to 2, found 3"},
        Damage{"NoLinkType", "UPDATE links SET type = 4", "link 1: expected a type from 0 to 3"},
        Damage{"NoLagCalendar", "UPDATE links SET lag_calendar = 4",
               "link 1: expected a calendar for the lag from 0 to 3, found 4"},
        Damage{"NoPredecessor", "UPDATE links SET predecessor = 77 WHERE position = 1",
               "link 2: expected a predecessor that is in the plan, found number 77"},
        Damage{"NoWeekday", "UPDATE calendar_shifts SET weekday = 7 WHERE weekday = 0",
               "weekday: expected a number from 0 to 6, found 7"},
        Damage{"ShiftBeyondTheDay", "UPDATE calendar_shifts SET end_minute = 1441",
               "end_minute: expected a number from 0 to 1440, found 1441"},
        Damage{"ShiftBackwards", "UPDATE calendar_shifts SET end_minute = 10 WHERE position = 0",
               "calendar \"Week\": expected shifts in order within the day, found one from minute "
               "480 to minute 10"},
        Damage{"ShiftsThatOverlap",
               "UPDATE calendar_shifts SET begin_minute = 700 "
               "WHERE position = 1",
               "expected shifts in order within the day"},
        Damage{"ShiftsOfNoException", "DELETE FROM calendar_exceptions",
               "expected a day that is an exception of the calendar"},
        Damage{"TakenBackwards", "UPDATE calendar_taken_days SET last_day = '2000-01-01'",
               "expected days taken away in order and apart"},
        Damage{"SameCalendarName", "INSERT INTO calendars VALUES (2, 2, 'WEEK')",
               "calendar \"WEEK\": expected a name of its own"},
        Damage{"RiskCalendarOfNoCalendar", "UPDATE risk_calendars SET calendar = 77",
               "risk calendar \"Storm\": expected a calendar that is in the plan, found number 77"},
        Damage{"NoRiskCalendar", "UPDATE risk_assignments SET risk_calendar = 77",
               "task \"A0\": expected a risk calendar that is in the plan, found number 77"},
        Damage{"AssignedTwice", "INSERT INTO risk_assignments VALUES (3, 1, 2, 0.0)",
               "task \"A0\": expected each risk calendar once"},
        Damage{"NoCustomField", "DELETE FROM custom_fields",
               "expected a custom field that is in the plan, found \"Weather-start\""},
        Damage{"NoCustomType", "UPDATE custom_values SET type = 'money'",
               "type: expected a type of values, found \"money\""},
        Damage{"EmptyWithValue", "UPDATE custom_values SET type = 'empty'",
               "value: expected nothing, found"}),
    [](const auto& damage) { return damage.param.name; });

TEST_P(DamagedPlan, IsRefusedWithWhatIsWrong) {
  SavePlan(MakePlan(3), Path("plan.nplan"));
  Meddle(Path("plan.nplan"), GetParam().sql);
  ExpectBadContent(Path("plan.nplan"), GetParam().error);
}

TEST_F(PlanStore, PutsAPlanInPlaceOfADamagedOne) {
  SavePlan(MakePlan(3), Path("plan.nplan"));
  Meddle(Path("plan.nplan"),
         "DROP TABLE links; UPDATE tasks SET parent = 77; DELETE FROM calendars");
  const Plan plan = MakePlan(2);
  SavePlan(plan, Path("plan.nplan"));
  EXPECT_EQ(LoadPlan(Path("plan.nplan")), plan);
}

}  // namespace
}  // namespace nimbrel::engine

// Excel by its members' names, with a program in its place that writes down what is asked of it.

#include <gmock/gmock.h>

#include <string>

#include "exchange/mod_excel.h"
#include "exchange/mod_import_export.h"
#include "host/mod_global.h"
#include "tests/com/excel_stand_in.h"
#include "tests/support/automation/recording_excel.h"
#include "tests/support/host/recording_host.h"

namespace nimbrel::com {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

class ScriptedBox final : public platform::MessageBox {
 public:
  void Show(const std::string& text, const std::string& title) override {
    shown += title + ": " + text;
  }
  std::string shown;
};

class ExcelTest : public ::testing::Test {
 protected:
  ExcelTest() {
    modGlobal::Wire({.create_application = [this] { return host_.application(); }});
    modExcel::Wire({&servers_, &box_});
    modExcel::InitColumnLetters();
    for (const char* const caption :
         {"Description", "Start", "Finish", "Probability", "Min", "Likely", "Max"}) {
      modGlobal::g_colEventHeaders.Add(caption);
    }
  }
  ~ExcelTest() override {
    modGlobal::g_colEventHeaders.Clear();
    modExcel::g_asColumnLetters.clear();
    modExcel::Wire({});
    modGlobal::Wire({});
    if (process_ != nullptr) {
      // The next test is not to find one that is about to end.
      WaitForSingleObject(process_, INFINITE);
      CloseHandle(process_);
    }
    if (installed_) {
      RunAndWait(ExcelStandIn(L"/UnregServer"));
    }
  }

  void Install() {
    installed_ = true;
    ASSERT_EQ(RunAndWait(ExcelStandIn(L"/RegServer")), 0U);
  }
  /// Starts it by the road of the exports.
  Ref<AutomationObject> Start() {
    Install();
    const auto excel = modExcel::StartExcel();
    const auto id = static_cast<DWORD>(excel->Get("TestProcess").ToLong(platform::DefaultLocale()));
    process_ = OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, id);
    return excel;
  }
  static Ref<AutomationObject> SecondSheet(const Ref<AutomationObject>& excel) {
    return excel->GetRef("Workbooks")->CallRef("Add")->GetRef("Sheets", {2});
  }
  /// Writes a sheet with one period on it.
  static void Export(const Ref<AutomationObject>& sheet) {
    platform::Collection<Ref<model::clsWeatherTask>> periods;
    const auto period = JanuaryPeriod("NORTH SEA", "January");
    periods.Add(period);
    modImportExport::ExportEventSheet(sheet, periods, "NORTH SEA");
  }
  /// What is asked of Excel to write that sheet, one step a line.
  static std::string StepsOfExport() {
    recording::Recorder recorder;
    recording::RecordingExcel in_process(recorder);
    Export(SecondSheet(in_process.CreateObject("Excel.Application")));
    std::string steps;
    for (const std::string& step : recorder.calls()) {
      steps += step + "\n";
    }
    return steps;
  }
  static std::string LogOf(const Ref<AutomationObject>& excel) {
    return excel->Get("TestLog").ToText(platform::DefaultLocale());
  }

  recording::RecordingHost host_;
  ComServers servers_;
  ScriptedBox box_;
  bool installed_ = false;
  HANDLE process_ = nullptr;
};

TEST_F(ExcelTest, NotInstalledTheUserIsToldAndNothingFails) {
  EXPECT_FALSE(ComServers::IsInstalled("Excel.Application"));
  EXPECT_TRUE(modExcel::StartExcel().IsNothing());
  EXPECT_THAT(box_.shown, StartsWith("Weather: Either Microsoft Excel is not installed or there "
                                     "is a problem starting it."));
}

TEST_F(ExcelTest, ASheetIsWrittenByTheSameStepsAsWithoutCom) {
  const auto excel = Start();
  Export(SecondSheet(excel));
  const std::string expected = StepsOfExport();
  EXPECT_THAT(expected, HasSubstr("Sheet2.Cells(6, 5).Value = 0.25")) << "there is something";
  EXPECT_EQ(LogOf(excel), expected);
}

TEST_F(ExcelTest, MemberNamesHaveNoCaseAndUnknownOnesFail) {
  const auto excel = Start();
  excel->Put("VISIBLE", false);
  EXPECT_THAT(LogOf(excel), HasSubstr("Excel.Visible = False"));
  EXPECT_EQ(ErrorOf([&] { excel->Get("Nonsense"); }).first, 438);
  EXPECT_EQ(ErrorOf([&] { excel->Call("Nonsense"); }).first, 438);
}

TEST_F(ExcelTest, WhatItRefusesComesWithItsNumberAndText) {
  const auto excel = Start();
  const auto sheet = SecondSheet(excel);
  EXPECT_EQ(ErrorOf([&] { sheet->GetRef("Range", {"A1:B2"})->Call("Select"); }),
            std::pair(1004, std::string("Select method of Range class failed")));
  EXPECT_EQ(ErrorOf([&] { excel->GetRef("Workbooks")->CallRef("Add")->Get("Sheets", {9}); }).first,
            9);
}

TEST_F(ExcelTest, ARefusedBlockIsLeftAsItIs) {
  const auto excel = Start();
  const auto sheet = SecondSheet(excel);
  EXPECT_FALSE(modExcel::SelectRange(sheet, 2, 8, 5, 5));
  sheet->Call("Select");
  EXPECT_TRUE(modExcel::SelectRange(sheet, 2, 8, 5, 5));
}

TEST_F(ExcelTest, OnlyACollectionCanBeWalked) {
  const auto excel = Start();
  EXPECT_EQ(ErrorOf([&] { excel->Items(); }).first, 438);
}

TEST_F(ExcelTest, ABusyOneIsWaitedFor) {
  const auto excel = Start();
  const auto sheet = SecondSheet(excel);
  excel->Call("TestRefuse", {4});
  Export(sheet);
  EXPECT_EQ(LogOf(excel), StepsOfExport());
}

TEST_F(ExcelTest, OneThatStaysBusyEndsTheExportWithItsReason) {
  const auto excel = Start();
  const auto sheet = SecondSheet(excel);
  const auto before = SetBusyPatience(std::chrono::milliseconds(150));
  excel->Call("TestRefuse", {100'000});
  EXPECT_THAT(ErrorOf([&] { Export(sheet); }).second, StartsWith("Excel is busy: "));
  SetBusyPatience(before);
  excel->Call("TestRefuse", {0});
  Export(sheet);
}

// The last one: for a moment Wine still takes a program that was killed for running.
TEST_F(ExcelTest, ClosedByTheUserHalfWayTheExportFails) {
  const auto excel = Start();
  const auto sheet = SecondSheet(excel);
  TerminateProcess(process_, 1);
  WaitForSingleObject(process_, INFINITE);
  EXPECT_EQ(ErrorOf([&] { Export(sheet); }).first, 462);
  EXPECT_FALSE(modExcel::SelectRange(sheet, 2, 8, 5, 5)) << "traps every failure";
}

}  // namespace
}  // namespace nimbrel::com

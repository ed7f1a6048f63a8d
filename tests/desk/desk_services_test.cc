#include "desk/desk_services.h"

#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "dialog/frm_weather.h"
#include "engine/objects/host.h"
#include "nimbrel/wiring.h"
#include "tests/desk/scripted_desktop.h"
#include "tests/posix/scratch_folder.h"

namespace nimbrel::desk {
namespace {

/// The tool box over real services, in a host whose folder is the test's.
class DeskServicesTest : public platform::ScratchTest {
 protected:
  DeskServicesTest() {
    // Settings, programs and temporary files of the test alone, but for the shell's own tools.
    ::setenv("XDG_CONFIG_HOME", Path("config").c_str(), 1);
    ::setenv("TMPDIR", folder_.c_str(), 1);
    ::setenv("PATH", (folder_.string() + ":" + path_).c_str(), 1);
    services_.emplace(desktop_, folder_.string(), [] { return 4711; });
    engine::HostOptions options;
    options.path = folder_.string();
    host_ = platform::MakeRef<engine::Host>(std::move(options));
    joined_ = cli::JoinAddIn(*host_);
  }
  ~DeskServicesTest() override {
    ::unsetenv("XDG_CONFIG_HOME");
    ::unsetenv("TMPDIR");
    ::setenv("PATH", path_.c_str(), 1);
  }

  std::string Await(const std::string& name) const {
    using namespace std::chrono_literals;
    for (int i = 0; i < 3000 && !std::filesystem::exists(Path(name)); ++i) {
      std::this_thread::sleep_for(10ms);
    }
    return Read(Path(name));
  }

  const std::string path_ = std::getenv("PATH");
  ScriptedDesktop desktop_;
  std::optional<DeskServices> services_;
  platform::Ref<engine::Host> host_;
  std::shared_ptr<void> joined_;
};

TEST_F(DeskServicesTest, TheProgressToolBesideTheProgramsIsStartedWithAllSettingsWritten) {
  WriteScript("nimbrel-progress", "cp '" + Path("config/nimbrel/settings.ini").string() + "' '" +
                                      Path("seen.part").string() + "'\nmv '" +
                                      Path("seen.part").string() + "' '" + Path("seen").string() +
                                      "'\n");
  const std::int32_t thread = modToolBox::GetWindowThreadProcessId(0);
  modToolBox::StartProgress("Exporting...", 0, thread);
  EXPECT_EQ(thread, ::gettid());
  EXPECT_EQ(Await("seen"), "[CorvaneProgress/Options]\nRunning=1\nLabel=Exporting...\nParentHwnd=" +
                               std::to_string(thread) + "\nWndHandle=0\n");
  modToolBox::StopProgress();
  EXPECT_NE(Read(Path("config/nimbrel/settings.ini")).find("Running=0\n"), std::string::npos);
}

TEST_F(DeskServicesTest, WithoutTheToolTheSettingsAreWrittenAllTheSame) {
  modToolBox::StartProgress("Exporting...", 0, 1);
  EXPECT_NE(Read(Path("config/nimbrel/settings.ini")).find("Running=1\n"), std::string::npos);
  EXPECT_TRUE(desktop_.shown.empty());
}

TEST_F(DeskServicesTest, TheFileDialogStartsInTheModulesFolderIfThereIsOne) {
  const std::string modules = folder_.string() + "\\Modules";
  desktop_.files = {"", Path("book.xls").string()};
  EXPECT_EQ(modToolBox::ShowFileDialog("Import", modules, "xls (*.xls;*.xlsx)", "*.xls;*.xlsx", "",
                                       false),
            "");
  std::filesystem::create_directory(Path("Modules"));
  EXPECT_EQ(modToolBox::ShowFileDialog("Import", modules, "xls (*.xls;*.xlsx)", "*.xls;*.xlsx", "",
                                       false),
            Path("book.xls").string());
  ASSERT_EQ(desktop_.asked_files.size(), 2U);
  EXPECT_EQ(desktop_.asked_files[0].folder, "");
  EXPECT_EQ(desktop_.asked_files[1].folder, Path("Modules").string());
  EXPECT_EQ(desktop_.asked_files[1].pattern, "*.xls;*.xlsx");
  EXPECT_FALSE(desktop_.asked_files[1].save);
}

TEST_F(DeskServicesTest, FilesAreLookedForInTheFileSystem) {
  Write("book.xls");
  EXPECT_TRUE(modToolBox::FileExists(Path("book.xls").string(), true));
  EXPECT_FALSE(modToolBox::FileExists(Path("none.xls").string(), true));
  EXPECT_EQ(desktop_.shown, (std::vector<std::string>{"The file '" + Path("none.xls").string() +
                                                      "' does not exist."}));
}

TEST_F(DeskServicesTest, HelpThatIsNotThereGoesUnnoticed) {
  modToolBox::ShowHelpTopic("C21_WeatherOverview.html");
  EXPECT_TRUE(desktop_.shown.empty());
}

TEST_F(DeskServicesTest, AWorkbookOfTheDialogIsBroughtBeforeTheUser) {
  WriteScript("soffice", "cp \"$2\" '" + Path("shown.part").string() + "'\nmv '" +
                             Path("shown.part").string() + "' '" + Path("shown").string() + "'\n");
  engine::Plan plan;
  plan.start = engine::Instant(46000, 480);
  plan.default_calendar = plan.AddCalendar(engine::MakeWeekCalendar("STANDARD", 5, 8)).uid;
  host_->Open(std::move(plan));
  desktop_.hands.push_back([this](toolkit::Form& form) {
    auto& dialog = dynamic_cast<dialog::frmWeather&>(form);
    dialog.chkIsWeather.UserClick();
    desktop_.hands.push_back([](toolkit::Form& question) {
      dynamic_cast<toolkit::EditControl&>(*question.Find("txtCalName")).UserType("RIVER");
      question.Find("cmdOK")->UserClick();
    });
    dialog.tabs.UserPickTab(1);
    dialog.cmdAddWWCal.UserClick();
    dialog.cmdExport.UserClick();
    dialog.cmdClose.UserClick();
  });
  WeatherDialogOn(desktop_)();
  EXPECT_TRUE(Await("shown").starts_with("PK")) << "a workbook is a zip file";
  EXPECT_NE(Read(Path("config/nimbrel/settings.ini")).find("Running=0\n"), std::string::npos);
  EXPECT_TRUE(desktop_.shown.empty()) << desktop_.shown.front();
}

TEST_F(DeskServicesTest, WindowsAreThoseOfThisProcess) {
  EXPECT_EQ(OwnWindows([] { return 7; }).GetActiveWindow(), 7);
  EXPECT_EQ(OwnWindows({}).GetActiveWindow(), 0);
  EXPECT_EQ(modToolBox::GetWindowInstance(4711), 0);
}

TEST_F(DeskServicesTest, TheHostsWindowIsTheOneThatTheProgramNames) {
  engine::HostOptions options;
  options.window = [] { return 4711; };
  EXPECT_EQ(platform::MakeRef<engine::Host>(options)->get_hWnd(), 4711);
  EXPECT_EQ(host_->get_hWnd(), 0);
}

}  // namespace
}  // namespace nimbrel::desk

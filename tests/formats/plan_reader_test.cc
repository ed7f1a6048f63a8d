#include "engine/formats/plan_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include "tests/formats/mspdi_text.h"
#include "tests/formats/reading.h"
#include "tests/formats/xer_text.h"

namespace nimbrel::engine {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class PlanReader : public ::testing::Test {
 protected:
  void SetUp() override { std::filesystem::create_directories(folder_); }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  std::filesystem::path Write(const std::string& name, const std::string& bytes) const {
    std::ofstream(folder_ / name, std::ios::binary) << bytes;
    return folder_ / name;
  }

  const std::filesystem::path folder_ =
      std::filesystem::temp_directory_path() / ("plan_reader_" + std::to_string(::getpid()));
};

TEST_F(PlanReader, TheContentDecidesOnTheReader) {
  const XerText xer = XerText().Project().Calendar().Task("100", "A1");
  const MspdiText mspdi = MspdiText().Calendar(1, "Standard", "").Task(1);
  EXPECT_EQ(ReadPlanFile(Write("misnamed.xml", xer.Text()), {}).plan.name, "DOCK");
  EXPECT_EQ(ReadPlanFile(Write("misnamed.xer", mspdi.Text()), {}).plan.name, "quay");
  EXPECT_EQ(ReadPlanFile(Write("marked.xml", "\xEF\xBB\xBF" + mspdi.Text()), {}).plan.name, "quay");
}

TEST_F(PlanReader, OtherContentIsRefused) {
  const auto error_of = [](const std::filesystem::path& path) {
    return ErrorOf([&path] { ReadPlanFile(path, {}); });
  };
  EXPECT_EQ(error_of(Write("note.xer", "Dear all")),
            "note.xer:1: expected a plan that starts with ERMHDR or as XML, found \"Dear all\"");
  EXPECT_EQ(error_of(Write("empty.xer", "")),
            "empty.xer:1: expected a plan that starts with ERMHDR or as XML, found nothing");
  EXPECT_THAT(error_of(Write("blank.xer", " \n")), HasSubstr("blank.xer:1: expected a plan"));
}

TEST_F(PlanReader, AFileThatCannotBeReadIsAnErrorOfTheSystem) {
  EXPECT_THROW(ReadPlanFile(folder_ / "missing.xer", {}), std::system_error);
  EXPECT_THROW(ReadPlanFile(folder_, {}), std::system_error);
  try {
    ListProjects(folder_ / "missing.xer");
    FAIL() << "a missing file has no projects";
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.code(), std::errc::no_such_file_or_directory);
    EXPECT_THAT(error.what(), HasSubstr("missing.xer"));
  }
}

TEST_F(PlanReader, ProjectsAreListedByTheirShortNames) {
  const XerText two =
      XerText().Project().Project({{"proj_id", "2"}, {"proj_short_name", "QUAY"}}).Calendar();
  EXPECT_THAT(ListProjects(Write("two.xer", two.Text())), ElementsAre("DOCK", "QUAY"));
  EXPECT_THAT(ListProjects(Write("one.xml", MspdiText().Text())), ElementsAre("quay"));
}

}  // namespace
}  // namespace nimbrel::engine

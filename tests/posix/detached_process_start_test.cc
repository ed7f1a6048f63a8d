#include "platform/posix/detached_process_start.h"

#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "platform/posix/help_pages.h"
#include "platform/posix/program_folder.h"
#include "tests/posix/scratch_folder.h"

namespace nimbrel::platform {
namespace {

class ProcessStartTest : public ScratchTest {
 protected:
  /// Waits for a file that a started program puts in place; what is in it.
  std::string Await(const std::string& name) const {
    using namespace std::chrono_literals;
    for (int i = 0; i < 3000 && !std::filesystem::exists(Path(name)); ++i) {
      std::this_thread::sleep_for(10ms);
    }
    return Read(Path(name));
  }
  /// A program that writes what `commands` say into "out".
  std::string Reporter(const std::string& commands, const std::string& name = "tool") const {
    const std::string out = Path("out").string();
    return WriteScript(name, "{ " + commands + "; } > '" + out + ".part' 2>&1\nmv '" + out +
                                 ".part' '" + out + "'\n")
        .string();
  }
  static std::int32_t Run(DetachedProcessStart& start, const std::string& file,
                          const std::string& parameters = "", const std::string& folder = "") {
    return start.ShellExecute(0, "open", file, parameters, folder, 0);
  }

  DetachedProcessStart start_;
};

TEST_F(ProcessStartTest, AProgramRunsWithItsParameters) {
  EXPECT_EQ(Run(start_, Reporter("echo $#:$1"), "0", "0"), 42);
  EXPECT_EQ(Await("out"), "1:0\n");
}

TEST_F(ProcessStartTest, WithoutParametersItHasNoArgument) {
  EXPECT_EQ(Run(start_, Reporter("echo $#")), 42);
  EXPECT_EQ(Await("out"), "0\n");
}

TEST_F(ProcessStartTest, ItWorksInTheFolderAskedForIfThereIsOne) {
  std::filesystem::create_directory(Path("work"));
  EXPECT_EQ(Run(start_, Reporter("pwd"), "", Path("work").string()), 42);
  EXPECT_EQ(Await("out"), Path("work").string() + "\n");
}

TEST_F(ProcessStartTest, WithoutSuchAFolderItWorksWhereWeDo) {
  EXPECT_EQ(Run(start_, Reporter("pwd"), "0", "0"), 42);
  EXPECT_EQ(Await("out"), std::filesystem::current_path().string() + "\n");
}

TEST_F(ProcessStartTest, ItIsNoChildOfOurs) {
  EXPECT_EQ(Run(start_, Reporter("echo $PPID")), 42);
  EXPECT_NE(Await("out"), std::to_string(::getpid()) + "\n");
  EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "a process is left to be waited for";
  EXPECT_EQ(errno, ECHILD);
}

TEST_F(ProcessStartTest, ItHasNoOpenFileOfOurs) {
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  EXPECT_EQ(Run(start_, Reporter("test -e /dev/fd/" + std::to_string(ends[1]) +
                                 " && echo open || echo closed")),
            42);
  EXPECT_EQ(Await("out"), "closed\n");
  ::close(ends[0]);
  ::close(ends[1]);
}

TEST_F(ProcessStartTest, AMissingProgramIsAnAnswerAndNoError) {
  EXPECT_EQ(Run(start_, Path("missing").string(), "0", "0"), 2);
}

TEST_F(ProcessStartTest, AProgramWhoseInterpreterIsMissingIsMissingToo) {
  const auto script = WriteScript("script", "");
  Write("script", "#!" + Path("missing").string() + "\n");
  EXPECT_EQ(Run(start_, script.string()), 2);
}

TEST_F(ProcessStartTest, AnotherNameLeadsToTheLocalProgram) {
  DetachedProcessStart start({{"/opt/host\\Tool.exe", Reporter("echo local $1")}});
  EXPECT_EQ(Run(start, "/opt/host\\Tool.exe", "0", "0"), 42);
  EXPECT_EQ(Await("out"), "local 0\n");
}

TEST_F(ProcessStartTest, AnotherNameOfAMissingProgramIsMissing) {
  DetachedProcessStart start({{"/opt/host\\Tool.exe", Path("missing").string()}});
  EXPECT_EQ(Run(start, "/opt/host\\Tool.exe", "0", "0"), 2);
}

TEST_F(ProcessStartTest, ADocumentGoesToTheOpener) {
  const std::string document = Write("page one.html").string();
  DetachedProcessStart start({}, Reporter("echo opening \"$1\"", "opener"));
  EXPECT_EQ(Run(start, document, "0", ""), 42);
  EXPECT_EQ(Await("out"), "opening " + document + "\n");
}

TEST_F(ProcessStartTest, AMissingOpenerIsAnAnswer) {
  DetachedProcessStart start({}, Path("missing").string());
  EXPECT_EQ(Run(start, Write("page.html").string()), 2);
}

/// Takes down what it is asked to open.
class OpenedFiles final : public ProcessStart {
 public:
  std::int32_t ShellExecute(std::int32_t /*owner*/, const std::string& verb,
                            const std::string& file, const std::string& parameters,
                            const std::string& directory, std::int32_t /*show*/) override {
    opened.push_back(verb + " " + file + parameters + directory);
    return 42;
  }
  std::vector<std::string> opened;
};

class HelpPagesTest : public ScratchTest {
 protected:
  void Show(const std::string& file) {
    HelpPages({Path("own").string(), Path("shared").string()}, opener_).HtmlHelp(0, file, 0, 0);
  }
  OpenedFiles opener_;
};

TEST_F(HelpPagesTest, APageIsOpenedFromTheFirstFolderThatHasIt) {
  const std::string shared = Write("shared/topic.html").string();
  Show("/opt\\Help.chm::/topic.html");
  const std::string own = Write("own/topic.html").string();
  Show("/opt\\Help.chm::/topic.html");
  EXPECT_EQ(opener_.opened, (std::vector<std::string>{"open " + shared, "open " + own}));
}

TEST_F(HelpPagesTest, WhatIsNoPageGoesUnnoticed) {
  Write("own/topic.html");
  Write("secret.html");
  Show("Help.chm::/missing.html");
  Show("Help.chm::/../secret.html");
  Show("Help.chm::/");
  Show("topic.html");
  EXPECT_TRUE(opener_.opened.empty());
}

TEST(ProgramFolderTest, IsTheFolderOfTheRunningProgram) {
  EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(ProgramFolder()) / "test_posix"));
}

}  // namespace
}  // namespace nimbrel::platform

#include "platform/posix/ini_settings_store.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "platform/runtime_error.h"
#include "tests/posix/scratch_folder.h"

namespace nimbrel::platform {
namespace {

class IniSettings : public ScratchTest {
 protected:
  std::string Get(const std::string& key) const {
    return store_.Get("CorvaneProgress", "Options", key, "none");
  }
  void Save(const std::string& key, const std::string& value) {
    store_.Save("CorvaneProgress", "Options", key, value);
  }
  std::filesystem::path File() const { return Path("config/nimbrel/settings.ini"); }

  IniSettingsStore store_{File()};
};

TEST_F(IniSettings, AValueThatWasNeverSavedIsTheDefault) {
  EXPECT_EQ(Get("Running"), "none");
  EXPECT_FALSE(std::filesystem::exists(File())) << "reading makes no file";
}

TEST_F(IniSettings, ASavedValueIsReadByAnotherStoreOfTheSameFile) {
  Save("Running", "1");
  EXPECT_EQ(IniSettingsStore(File()).Get("CorvaneProgress", "Options", "Running", ""), "1");
}

TEST_F(IniSettings, TheFileIsPlainText) {
  Save("Running", "1");
  Save("Label", "Exporting...");
  store_.Save("Other", "Options", "Running", "7");
  Save("Running", "0");
  EXPECT_EQ(Read(File()),
            "[CorvaneProgress/Options]\nRunning=0\nLabel=Exporting...\n"
            "\n[Other/Options]\nRunning=7\n");
}

TEST_F(IniSettings, AKeyIsAddedToItsSectionInTheMiddle) {
  Save("Running", "1");
  store_.Save("Other", "Options", "Running", "7");
  Save("Label", "x");
  EXPECT_EQ(Read(File()),
            "[CorvaneProgress/Options]\nRunning=1\nLabel=x\n\n[Other/Options]\nRunning=7\n");
}

TEST_F(IniSettings, NamesHaveNoCase) {
  Save("Running", "1");
  store_.Save("CORVANEPROGRESS", "options", "running", "0");
  EXPECT_EQ(Get("RUNNING"), "0");
  EXPECT_EQ(Read(File()), "[CorvaneProgress/Options]\nrunning=0\n") << "one value";
}

TEST_F(IniSettings, ApplicationsSectionsAndKeysAreKeptApart) {
  store_.Save("A/B", "C", "k", "1");
  store_.Save("A", "B/C", "k", "2");
  store_.Save("A", "B", "C]k=", "3");
  EXPECT_EQ(store_.Get("A/B", "C", "k", ""), "1");
  EXPECT_EQ(store_.Get("A", "B/C", "k", ""), "2");
  EXPECT_EQ(store_.Get("A", "B", "C]k=", ""), "3");
  EXPECT_EQ(store_.Get("A", "B", "k", "none"), "none");
}

TEST_F(IniSettings, EveryTextComesBackAsItWas) {
  std::string all_bytes;
  for (int byte = 0; byte < 256; ++byte) {
    all_bytes += static_cast<char>(byte);
  }
  const std::vector<std::string> texts = {"",       " ",         "  two  ", "a=b;c#d", "[x/y]",
                                          "a\r\nb", "\\x41 \\x", "Übung ø", all_bytes};
  for (const std::string& text : texts) {
    Save("Label", text);
    Save(text, "key");
    EXPECT_EQ(Get("Label"), text);
    EXPECT_EQ(Get(text), "key");
  }
}

TEST_F(IniSettings, WhatIsNotUnderstoodIsKept) {
  Write("config/nimbrel/settings.ini",
        "; my notes\n[CorvaneProgress/Options]\nsay what\n  Label = by hand \n");
  EXPECT_EQ(Get("Label"), "by hand");
  Save("Label", "new");
  EXPECT_EQ(Read(File()), "; my notes\n[CorvaneProgress/Options]\nsay what\nLabel=new\n");
}

TEST_F(IniSettings, AFileWithoutALastLineEndIsRead) {
  Write("config/nimbrel/settings.ini", "[CorvaneProgress/Options]\nRunning=1");
  EXPECT_EQ(Get("Running"), "1");
  Save("Label", "x");
  EXPECT_EQ(Read(File()), "[CorvaneProgress/Options]\nRunning=1\nLabel=x\n");
}

TEST_F(IniSettings, ALinkStaysALink) {
  Write("elsewhere/real.ini", "[A/B]\nk=1\n");
  std::filesystem::create_directories(File().parent_path());
  std::filesystem::create_symlink(Path("elsewhere/real.ini"), File());
  store_.Save("A", "B", "k", "2");
  EXPECT_TRUE(std::filesystem::is_symlink(File()));
  EXPECT_EQ(Read(Path("elsewhere/real.ini")), "[A/B]\nk=2\n");
}

TEST_F(IniSettings, NothingIsLeftAsideAfterASave) {
  Save("Running", "1");
  Save("Running", "0");
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(File().parent_path())) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, (std::vector<std::string>{"settings.ini", "settings.ini.lock"}));
}

TEST_F(IniSettings, ASaveThatFailsIsAnErrorThatNamesTheFile) {
  Write("config/nimbrel", "a file where the folder should be");
  try {
    Save("Running", "1");
    FAIL() << "saved below a file";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.number(), kInvalidProcedureCall);
    EXPECT_NE(error.text().find(File().string()), std::string::npos) << error.text();
  }
  EXPECT_EQ(Get("Running"), "none");
}

TEST_F(IniSettings, AReaderSeesTheOldValueOrTheNewOneInFull) {
  const std::string a(20000, 'a');
  const std::string b(20000, 'b');
  Save("Label", a);
  const pid_t writer = ::fork();
  ASSERT_GE(writer, 0);
  if (writer == 0) {
    IniSettingsStore store(File());
    for (int i = 0; i < 200; ++i) {
      store.Save("CorvaneProgress", "Options", "Label", i % 2 == 0 ? b : a);
    }
    ::_exit(0);
  }
  int status = -1;
  std::map<std::string, int> seen;
  while (::waitpid(writer, &status, WNOHANG) == 0) {
    ++seen[Get("Label")];
  }
  EXPECT_EQ(status, 0);
  seen.erase(a);
  seen.erase(b);
  EXPECT_TRUE(seen.empty()) << "of length " << seen.begin()->first.size();
}

TEST_F(IniSettings, SaversAtTheSameTimeLoseNothing) {
  std::vector<pid_t> savers;
  for (int saver = 0; saver < 4; ++saver) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      IniSettingsStore store(File());
      for (int i = 0; i < 25; ++i) {
        store.Save("A", "B", std::to_string(saver) + "-" + std::to_string(i), "here");
      }
      ::_exit(0);
    }
    savers.push_back(child);
  }
  for (const pid_t child : savers) {
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
  }
  for (int saver = 0; saver < 4; ++saver) {
    for (int i = 0; i < 25; ++i) {
      EXPECT_EQ(store_.Get("A", "B", std::to_string(saver) + "-" + std::to_string(i), "lost"),
                "here");
    }
  }
}

std::string FileOf(std::map<std::string, const char*> environment) {
  return UserSettingsFile([&](const char* name) {
           return environment.contains(name) ? environment[name] : nullptr;
         })
      .string();
}

TEST(UserSettings, AreInTheFolderOfConfigurations) {
  EXPECT_EQ(FileOf({{"XDG_CONFIG_HOME", "/cfg"}, {"HOME", "/home/ann"}}),
            "/cfg/nimbrel/settings.ini");
  EXPECT_EQ(FileOf({{"HOME", "/home/ann"}}), "/home/ann/.config/nimbrel/settings.ini");
}

TEST(UserSettings, AFolderThatIsNotAbsoluteDoesNotCount) {
  EXPECT_EQ(FileOf({{"XDG_CONFIG_HOME", "cfg"}, {"HOME", "/home/ann"}}),
            "/home/ann/.config/nimbrel/settings.ini");
  EXPECT_EQ(FileOf({{"XDG_CONFIG_HOME", ""}, {"HOME", "/home/ann"}}),
            "/home/ann/.config/nimbrel/settings.ini");
}

TEST(UserSettings, WithoutAnyVariableTheHomeIsThatOfTheUser) {
  EXPECT_TRUE(FileOf({}).starts_with('/'));
  EXPECT_TRUE(FileOf({}).ends_with("/.config/nimbrel/settings.ini"));
}

}  // namespace
}  // namespace nimbrel::platform

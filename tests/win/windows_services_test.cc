// The platform's services by the functions of Windows.

#include "platform/win/windows_services.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <thread>

#include "platform/win/registry_settings_store.h"
#include "platform/win/wide_text.h"
#include "platform/win/win_api.h"

namespace nimbrel::platform {
namespace {

/// An empty folder of the test's own, with a closing backslash.
std::string ScratchFolder() {
  wchar_t base[MAX_PATH] = {};
  GetTempPathW(MAX_PATH, base);
  std::wstring folder = std::wstring(base) + L"nimbrel" + std::to_wstring(GetCurrentProcessId()) +
                        L"-" + std::to_wstring(GetTickCount());
  CreateDirectoryW(folder.c_str(), nullptr);
  return ToUtf8(folder) + "\\";
}

void MakeFile(const std::string& path) {
  std::ofstream(ToNarrow(path)) << "x";
}

/// Answers the next file dialog: types a name into it, unless it is empty, and presses a button.
std::thread Answer(const std::string& name, int button) {
  return std::thread([name, button] {
    constexpr int kFileNameBox = 0x47C;  // cmb13
    HWND dialog = nullptr;
    // It takes input once it has its list of files and has written the name that is offered.
    while (dialog == nullptr ||
           FindWindowExW(dialog, nullptr, L"SHELLDLL_DefView", nullptr) == nullptr ||
           GetWindowTextLengthW(GetDlgItem(dialog, kFileNameBox)) == 0) {
      Sleep(20);
      dialog = FindWindowW(L"#32770", L"Choose");
    }
    if (!name.empty()) {
      SetDlgItemTextW(dialog, kFileNameBox, ToWide(name).c_str());
    }
    PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(button), 0);
  });
}

FileDialogRecord Record(const std::string& folder) {
  FileDialogRecord record;
  record.lStructSize = 76;
  record.lpstrFilter = std::string("Workbooks (*.xls)\0*.xls\0", 24);
  record.lpstrFile = std::string(254, ' ');
  record.nMaxFile = 255;
  record.lpstrFileTitle = std::string(254, ' ');
  record.nMaxFileTitle = 255;
  record.lpstrInitialDir = folder;
  record.lpstrTitle = "Choose";
  return record;
}

TEST(WindowsSettings, GivesBackWhatWasSavedAndTheDefaultElse) {
  RegistrySettingsStore store;
  store.Save("NimbrelTests", "Options", "Label", "Ärmelkanal, \"gerade\"");
  EXPECT_EQ(store.Get("NimbrelTests", "Options", "Label", ""), "Ärmelkanal, \"gerade\"");
  EXPECT_EQ(store.Get("nimbreltests", "OPTIONS", "LABEL", ""), "Ärmelkanal, \"gerade\"");
  store.Save("NimbrelTests", "Options", "Label", "");
  EXPECT_EQ(store.Get("NimbrelTests", "Options", "Label", "default"), "");
  EXPECT_EQ(store.Get("NimbrelTests", "Options", "Other", "default"), "default");
  EXPECT_EQ(store.Get("NimbrelNone", "Options", "Label", "default"), "default");
  RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\VB and VBA Program Settings\\NimbrelTests");
}

TEST(WindowsSettings, AreWhereTheProgressToolLooks) {
  RegistrySettingsStore().Save("NimbrelTests", "Options", "Running", "1");
  wchar_t value[8] = {};
  DWORD size = sizeof(value);
  ASSERT_EQ(RegGetValueW(HKEY_CURRENT_USER,
                         L"Software\\VB and VBA Program Settings\\NimbrelTests\\Options",
                         L"Running", RRF_RT_REG_SZ, nullptr, value, &size),
            ERROR_SUCCESS);
  EXPECT_EQ(std::wstring(value), L"1");
  RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\VB and VBA Program Settings\\NimbrelTests");
}

TEST(WindowsSearch, FindsOrdinaryFilesAndPatterns) {
  const std::string folder = ScratchFolder();
  WindowsDirectorySearch search;
  MakeFile(folder + "weather.xls");
  EXPECT_EQ(search.FindFirst(folder + "weather.xls"), "weather.xls");
  EXPECT_EQ(search.FindFirst(folder + "*.xls"), "weather.xls");
  EXPECT_EQ(search.FindFirst(folder + "none.xls"), "");
  EXPECT_EQ(search.FindFirst(folder + "none\\weather.xls"), "");
}

TEST(WindowsSearch, PassesOverFoldersAndHiddenFiles) {
  const std::string folder = ScratchFolder();
  WindowsDirectorySearch search;
  CreateDirectoryW(ToWide(folder + "a.xls").c_str(), nullptr);
  MakeFile(folder + "b.xls");
  SetFileAttributesW(ToWide(folder + "b.xls").c_str(), FILE_ATTRIBUTE_HIDDEN);
  EXPECT_EQ(search.FindFirst(folder + "*.xls"), "");
  MakeFile(folder + "c.xls");
  EXPECT_EQ(search.FindFirst(folder + "*.xls"), "c.xls");
}

TEST(WindowsProcesses, AMissingProgramIsAResultAndNoError) {
  WindowsProcessStart start;
  EXPECT_LE(start.ShellExecute(0, "open", "C:\\none\\Progress.exe", "0", "0", 0), 32);
}

TEST(WindowsWindowsTest, WhatIsNoWindowHasNoThreadAndNoNumbers) {
  WindowsWindows windows;
  EXPECT_EQ(windows.GetWindowThread(0), 0);
  EXPECT_EQ(windows.GetWindowLong(0, -6), 0);
}

TEST(WindowsWindowsTest, AWindowBelongsToTheThreadThatMadeIt) {
  const HWND window =
      CreateWindowW(L"STATIC", L"", 0, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
  ASSERT_NE(window, nullptr);
  const auto handle = static_cast<std::int32_t>(reinterpret_cast<std::intptr_t>(window));
  EXPECT_EQ(WindowsWindows().GetWindowThread(handle),
            static_cast<std::int32_t>(GetCurrentThreadId()));
  DestroyWindow(window);
}

TEST(WindowsFileDialogTest, ACancelledOneGivesZeroAndLeavesTheRecord) {
  FileDialogRecord record = Record("");
  const FileDialogRecord before = record;
  std::thread user = Answer("", IDCANCEL);
  EXPECT_EQ(WindowsFileDialog().GetOpenFileName(record), 0);
  user.join();
  EXPECT_EQ(record, before);
}

TEST(WindowsFileDialogTest, GivesThePathUpToANul) {
  const std::string folder = ScratchFolder();
  MakeFile(folder + "weather.xls");
  FileDialogRecord record = Record(folder);
  std::thread user = Answer(folder + "weather.xls", IDOK);
  EXPECT_NE(WindowsFileDialog().GetOpenFileName(record), 0);
  user.join();
  EXPECT_EQ(std::string(record.lpstrFile.c_str()), folder + "weather.xls");
}

}  // namespace
}  // namespace nimbrel::platform

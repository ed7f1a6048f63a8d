// nimbrel-screenshots [--dpi N] PLAN.xer STORY FOLDER
//
// Plays a story that leaves weather in the plan, opens each page of the weather dialog, each small
// dialog and each kind of message box on it, and puts a picture of its window into the folder. The
// windows are told of a screen of N dots per inch.
#include <windows.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "dialog/frm_convert_cal.h"
#include "platform/locale.h"
#include "tests/support/gestures/win32/win32_hands.h"
#include "tests/tools/shots.h"
#include "tests/tools/xer_gestures.h"
#include "toolkit/win32/win32_desktop.h"

namespace nimbrel::gestures {
namespace {

using toolkit::win32::FormWindow;

/// Long enough for a message box to be drawn, in milliseconds.
constexpr UINT kBoxTime = 300;

struct Bitmap {
  SIZE size{};
  std::vector<std::uint32_t> pixels;  // from the bottom
};

/// What the screen shows of a window.
Bitmap Grab(HWND window) {
  RECT bounds{};
  ::GetWindowRect(window, &bounds);
  Bitmap bitmap;
  bitmap.size = {bounds.right - bounds.left, bounds.bottom - bounds.top};
  bitmap.pixels.resize(static_cast<std::size_t>(bitmap.size.cx) *
                       static_cast<std::size_t>(bitmap.size.cy));
  BITMAPINFO info{};
  info.bmiHeader = {
      sizeof info.bmiHeader, bitmap.size.cx, bitmap.size.cy, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  const HDC screen = ::GetDC(nullptr);
  const HDC memory = ::CreateCompatibleDC(screen);
  const HBITMAP copy = ::CreateCompatibleBitmap(screen, bitmap.size.cx, bitmap.size.cy);
  const HGDIOBJ before = ::SelectObject(memory, copy);
  ::BitBlt(memory, 0, 0, bitmap.size.cx, bitmap.size.cy, screen, bounds.left, bounds.top, SRCCOPY);
  ::SelectObject(memory, before);
  ::GetDIBits(memory, copy, 0, static_cast<UINT>(bitmap.size.cy), bitmap.pixels.data(), &info,
              DIB_RGB_COLORS);
  ::DeleteObject(copy);
  ::DeleteDC(memory);
  ::ReleaseDC(nullptr, screen);
  return bitmap;
}

void Save(const Bitmap& bitmap, const std::filesystem::path& path) {
  BITMAPFILEHEADER head{};
  BITMAPINFOHEADER info{};
  const auto bytes = static_cast<DWORD>(bitmap.pixels.size() * sizeof(std::uint32_t));
  head.bfType = 0x4D42;  // "BM"
  head.bfOffBits = sizeof head + sizeof info;
  head.bfSize = head.bfOffBits + bytes;
  info.biSize = sizeof info;
  info.biWidth = bitmap.size.cx;
  info.biHeight = bitmap.size.cy;
  info.biPlanes = 1;
  info.biBitCount = 32;
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(&head), sizeof head);
  file.write(reinterpret_cast<const char*>(&info), sizeof info);
  file.write(reinterpret_cast<const char*>(bitmap.pixels.data()), bytes);
  if (!file) {
    throw std::runtime_error(path.string() + ": cannot be written");
  }
}

struct Command {
  UINT dpi = 0;  // 0: that of the screen
  std::vector<std::string> files;
};

/// Windows that open one over another: those behind come up again when the script is at its end.
int Depth(HWND window) {
  return window == nullptr ? 0 : 1 + Depth(::GetWindow(window, GW_OWNER));
}

/// Tells a window of the resolution of its screen, as Windows does.
void TellDpi(const FormWindow& window, UINT dpi) {
  if (dpi == 0 || window.look().dpi() == dpi) {
    return;
  }
  RECT bounds{};
  ::GetWindowRect(window.Window(), &bounds);
  const auto grown = [&](LONG size) {
    return ::MulDiv(size, static_cast<int>(dpi), static_cast<int>(window.look().dpi()));
  };
  RECT wanted{0, 0, grown(bounds.right - bounds.left), grown(bounds.bottom - bounds.top)};
  ::SendMessageW(window.Window(), WM_DPICHANGED, MAKEWPARAM(dpi, dpi),
                 reinterpret_cast<LPARAM>(&wanted));
}

void TakeShot(const Shot& shot, XerStage& stage, UINT dpi, const std::filesystem::path& folder) {
  Bitmap last;
  int deepest = 0;
  Win32Hands hands;
  hands.AfterEach = [&](const FormWindow& window) {
    TellDpi(window, dpi);
    if (&window == hands.TopWindow() && Depth(window.Window()) >= deepest) {
      deepest = Depth(window.Window());
      hands.Pump();
      ::UpdateWindow(window.Window());
      last = Grab(window.Window());
    }
  };
  std::ostringstream log;
  std::function<void(toolkit::Desktop&)> open;
  if (shot.converts) {
    open = [](toolkit::Desktop& desktop) { dialog::frmConvertCal(desktop).ShowModal(); };
  }
  stage.PlayText(shot.script, hands, platform::DefaultLocale(), log, open);
  if (log.str().find("cannot: ") != std::string::npos) {
    throw std::runtime_error(std::string(shot.name) + " cannot be played:\n" + log.str());
  }
  Save(last, folder / (std::string(shot.name) + ".bmp"));
}

Bitmap grabbed_box;

void CALLBACK GrabBox(HWND /*window*/, UINT /*message*/, UINT_PTR timer, DWORD /*time*/) {
  ::KillTimer(nullptr, timer);
  const HWND box = ::GetActiveWindow();
  grabbed_box = Grab(box);
  ::PostMessageW(box, WM_COMMAND, ::GetDlgItem(box, IDNO) == nullptr ? IDOK : IDNO, 0);
}

void TakeBox(const BoxShot& box, const std::filesystem::path& folder) {
  toolkit::win32::Win32Desktop desktop;
  ::SetTimer(nullptr, 0, kBoxTime, GrabBox);
  desktop.MsgBox(box.text, "Weather Modeling", box.buttons);
  Save(grabbed_box, folder / (std::string(box.name) + ".bmp"));
}

int Run(const std::vector<std::string>& arguments) {
  Command command;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (arguments[i] == "--dpi" && i + 1 < arguments.size()) {
      command.dpi = static_cast<UINT>(std::stoul(arguments[++i]));
    } else {
      command.files.push_back(arguments[i]);
    }
  }
  if (command.files.size() != 3) {
    std::cerr << "nimbrel-screenshots: expected [--dpi N] PLAN.xer STORY FOLDER\n";
    return 2;
  }
  XerStage stage(command.files[0]);
  Hands plain;
  std::ostringstream log;
  stage.Play(command.files[1], plain, platform::DefaultLocale(), log);
  for (const Shot& shot : kShots) {
    if (!shot.has_workbook) {
      TakeShot(shot, stage, command.dpi, command.files[2]);
    }
  }
  for (const BoxShot& box : kBoxShots) {
    TakeBox(box, command.files[2]);
  }
  return 0;
}

}  // namespace
}  // namespace nimbrel::gestures

int main(int argc, char** argv) {
  try {
    return nimbrel::gestures::Run({argv + 1, argv + argc});
  } catch (const std::exception& error) {
    std::cerr << "nimbrel-screenshots: " << error.what() << '\n';
    return 4;
  }
}

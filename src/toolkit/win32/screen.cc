#include "toolkit/win32/screen.h"

#include <algorithm>
#include <array>

#include "platform/runtime_error.h"

namespace nimbrel::toolkit::win32 {
namespace {

/// The number of the manifest among the resources.
constexpr WORD kManifest = 2;

/// A function that only newer systems have; null elsewhere.
template <class Function>
Function* FromUser32(const char* name) {
  const FARPROC found = ::GetProcAddress(::GetModuleHandleW(L"user32.dll"), name);
  return reinterpret_cast<Function*>(reinterpret_cast<void*>(found));
}

/// A device context of the screen with a font in it.
class Measuring {
 public:
  explicit Measuring(HFONT font)
      : screen_(::GetDC(nullptr)), before_(::SelectObject(screen_, font)) {}
  ~Measuring() {
    ::SelectObject(screen_, before_);
    ::ReleaseDC(nullptr, screen_);
  }
  Measuring(const Measuring&) = delete;
  Measuring& operator=(const Measuring&) = delete;

  HDC screen() const { return screen_; }

 private:
  HDC screen_;
  HGDIOBJ before_;
};

UINT DpiOfSystem() {
  const HDC screen = ::GetDC(nullptr);
  const int dpi = ::GetDeviceCaps(screen, LOGPIXELSY);
  ::ReleaseDC(nullptr, screen);
  return static_cast<UINT>(dpi);
}

LOGFONTW MessageFont(UINT dpi) {
  NONCLIENTMETRICSW metrics{};
  metrics.cbSize = sizeof metrics;
  using ForDpi = BOOL WINAPI(UINT, UINT, PVOID, UINT, UINT);
  static ForDpi* const for_dpi = FromUser32<ForDpi>("SystemParametersInfoForDpi");
  if (for_dpi != nullptr &&
      for_dpi(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0, dpi) != 0) {
    return metrics.lfMessageFont;
  }
  ::SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
  metrics.lfMessageFont.lfHeight = ::MulDiv(metrics.lfMessageFont.lfHeight, static_cast<int>(dpi),
                                            static_cast<int>(DpiOfSystem()));
  return metrics.lfMessageFont;
}

HFONT MakeFont(UINT dpi) {
  const LOGFONTW font = MessageFont(dpi);
  return ::CreateFontIndirectW(&font);
}

}  // namespace

PerMonitorDpi::PerMonitorDpi() {
  using SetContext = HANDLE WINAPI(HANDLE);
  static SetContext* const set = FromUser32<SetContext>("SetThreadDpiAwarenessContext");
  if (set == nullptr) {
    return;
  }
  for (const std::intptr_t context : {-4, -3}) {  // each screen, with its borders and without
    before_ = set(reinterpret_cast<HANDLE>(context));
    if (before_ != nullptr) {
      return;
    }
  }
}

PerMonitorDpi::~PerMonitorDpi() {
  using SetContext = HANDLE WINAPI(HANDLE);
  static SetContext* const set = FromUser32<SetContext>("SetThreadDpiAwarenessContext");
  if (before_ != nullptr) {
    set(before_);
  }
}

VisualStyles::VisualStyles() {
  std::array<wchar_t, MAX_PATH> path{};
  ::GetModuleFileNameW(OwnModule(), path.data(), static_cast<DWORD>(path.size()));
  ACTCTXW wanted{};
  wanted.cbSize = sizeof wanted;
  wanted.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
  wanted.lpSource = path.data();
  wanted.lpResourceName = MAKEINTRESOURCEW(kManifest);
  wanted.hModule = OwnModule();
  context_ = ::CreateActCtxW(&wanted);
  if (context_ != INVALID_HANDLE_VALUE && ::ActivateActCtx(context_, &cookie_) == 0) {
    ::ReleaseActCtx(context_);
    context_ = INVALID_HANDLE_VALUE;
  }
}

VisualStyles::~VisualStyles() {
  if (context_ != INVALID_HANDLE_VALUE) {
    ::DeactivateActCtx(0, cookie_);
    ::ReleaseActCtx(context_);
  }
}

HINSTANCE OwnModule() {
  HMODULE module = nullptr;
  ::GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<LPCWSTR>(&OwnModule), &module);
  return module;
}

HWND Made(HWND window) {
  if (window == nullptr) {
    throw platform::RuntimeError(
        platform::kApplicationDefined,
        "A window cannot be made (system error " + std::to_string(::GetLastError()) + ")");
  }
  return window;
}

UINT DpiOf(HWND window) {
  using ForWindow = UINT WINAPI(HWND);
  static ForWindow* const for_window = FromUser32<ForWindow>("GetDpiForWindow");
  const UINT dpi = for_window == nullptr ? 0 : for_window(window);
  return dpi == 0 ? DpiOfSystem() : dpi;
}

SIZE WindowSize(SIZE client, DWORD style, DWORD ex_style, UINT dpi) {
  using ForDpi = BOOL WINAPI(LPRECT, DWORD, BOOL, DWORD, UINT);
  static ForDpi* const for_dpi = FromUser32<ForDpi>("AdjustWindowRectExForDpi");
  RECT frame{0, 0, client.cx, client.cy};
  if (for_dpi == nullptr || for_dpi(&frame, style, FALSE, ex_style, dpi) == 0) {
    ::AdjustWindowRectEx(&frame, style, FALSE, ex_style);
  }
  return {frame.right - frame.left, frame.bottom - frame.top};
}

int SystemMetric(int index, UINT dpi) {
  using ForDpi = int WINAPI(int, UINT);
  static ForDpi* const for_dpi = FromUser32<ForDpi>("GetSystemMetricsForDpi");
  return for_dpi == nullptr ? ::GetSystemMetrics(index) : for_dpi(index, dpi);
}

Look::Look(UINT dpi) : dpi_(dpi), font_(MakeFont(dpi)) {
  const Measuring measuring(font_);
  TEXTMETRICW metrics{};
  ::GetTextMetricsW(measuring.screen(), &metrics);
  line_ = metrics.tmHeight;
  character_ = metrics.tmAveCharWidth;
}

Look::~Look() {
  ::DeleteObject(font_);
}

int Look::TextWidth(const std::wstring& text) const {
  const Measuring measuring(font_);
  SIZE size{};
  ::GetTextExtentPoint32W(measuring.screen(), text.data(), static_cast<int>(text.size()), &size);
  return size.cx;
}

int Look::TextHeight(const std::wstring& text, int width) const {
  const Measuring measuring(font_);
  RECT room{0, 0, std::max(width, 1), 0};
  ::DrawTextW(measuring.screen(), text.data(), static_cast<int>(text.size()), &room,
              DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX);
  return room.bottom;
}

}  // namespace nimbrel::toolkit::win32

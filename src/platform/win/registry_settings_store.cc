#include "platform/win/registry_settings_store.h"

#include "platform/runtime_error.h"
#include "platform/win/wide_text.h"
#include "platform/win/win_api.h"

namespace nimbrel::platform {
namespace {

std::wstring Path(std::string_view application, std::string_view section) {
  return L"Software\\VB and VBA Program Settings\\" + ToWide(application) + L"\\" + ToWide(section);
}

}  // namespace

void RegistrySettingsStore::Save(std::string_view application, std::string_view section,
                                 std::string_view key, std::string_view value) {
  HKEY opened = nullptr;
  LSTATUS status = RegCreateKeyExW(HKEY_CURRENT_USER, Path(application, section).c_str(), 0,
                                   nullptr, 0, KEY_SET_VALUE, nullptr, &opened, nullptr);
  if (status == ERROR_SUCCESS) {
    const std::wstring text = ToWide(value);
    status = RegSetValueExW(opened, ToWide(key).c_str(), 0, REG_SZ,
                            reinterpret_cast<const BYTE*>(text.c_str()),
                            static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    RegCloseKey(opened);
  }
  if (status != ERROR_SUCCESS) {
    throw RuntimeError(kInvalidProcedureCall,
                       "The setting " + std::string(key) + " cannot be saved");
  }
}

std::string RegistrySettingsStore::Get(std::string_view application, std::string_view section,
                                       std::string_view key, std::string_view default_value) const {
  const std::wstring path = Path(application, section);
  const std::wstring name = ToWide(key);
  std::wstring text;
  LSTATUS status = ERROR_MORE_DATA;
  DWORD bytes = 0;
  // A value may grow between the question for its size and the reading.
  while (status == ERROR_MORE_DATA) {
    text.resize(bytes / sizeof(wchar_t) + 1);
    bytes = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    status = RegGetValueW(HKEY_CURRENT_USER, path.c_str(), name.c_str(), RRF_RT_REG_SZ, nullptr,
                          text.data(), &bytes);
  }
  return status == ERROR_SUCCESS ? ToUtf8(text.c_str()) : std::string(default_value);
}

}  // namespace nimbrel::platform

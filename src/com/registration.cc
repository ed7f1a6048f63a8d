#include "com/registration.h"

#include <array>
#include <utility>

#include "com/com_ptr.h"

// In the library of the import but not in the headers of mingw-w64.
extern "C" HRESULT WINAPI RegisterTypeLibForUser(ITypeLib* library, OLECHAR* path, OLECHAR* help);
extern "C" HRESULT WINAPI UnRegisterTypeLibForUser(REFGUID library, WORD major, WORD minor,
                                                   LCID locale, SYSKIND kind);

namespace nimbrel::com {
namespace {

constexpr const wchar_t* kClasses = L"Software\\Classes\\";
constexpr bool kIs64Bit = sizeof(void*) == 8;

HKEY RootOf(Scope scope) {
  return scope == Scope::kMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

std::wstring TextOf(REFGUID id) {
  std::array<wchar_t, 40> text{};
  StringFromGUID2(id, text.data(), static_cast<int>(text.size()));
  return text.data();
}

std::wstring VersionOf(const ServerEntry& server) {
  std::array<wchar_t, 16> text{};
  wsprintfW(text.data(), L"%x.%x", server.library_major, server.library_minor);
  return text.data();
}

/// Writes values below a root, and stops at the first failure.
class KeyWriter {
 public:
  explicit KeyWriter(Scope scope) : root_(RootOf(scope)) {}

  /// `name` empty: the key's default value.
  void Write(const std::wstring& key, const std::wstring& name, const std::wstring& value) {
    if (status_ != ERROR_SUCCESS) {
      return;
    }
    HKEY opened = nullptr;
    status_ = RegCreateKeyExW(root_, (kClasses + key).c_str(), 0, nullptr, 0, KEY_WRITE, nullptr,
                              &opened, nullptr);
    if (status_ == ERROR_SUCCESS) {
      const auto bytes = static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t));
      status_ = RegSetValueExW(opened, name.empty() ? nullptr : name.c_str(), 0, REG_SZ,
                               reinterpret_cast<const BYTE*>(value.c_str()), bytes);
      RegCloseKey(opened);
    }
  }
  HRESULT result() const { return HRESULT_FROM_WIN32(static_cast<DWORD>(status_)); }

 private:
  HKEY root_;
  LSTATUS status_ = ERROR_SUCCESS;
};

HRESULT RegisterLibrary(const ServerEntry& server, Scope scope) {
  ComPtr<ITypeLib> library;
  const HRESULT loaded = LoadTypeLibEx(server.path.c_str(), REGKIND_NONE, library.Receive());
  if (FAILED(loaded)) {
    return loaded;
  }
  std::wstring path = server.path;
  return scope == Scope::kMachine ? RegisterTypeLib(library.get(), path.data(), nullptr)
                                  : RegisterTypeLibForUser(library.get(), path.data(), nullptr);
}

/// A key that is not there is one that is gone.
HRESULT RemoveKey(Scope scope, const std::wstring& key) {
  const LSTATUS status = RegDeleteTreeW(RootOf(scope), (kClasses + key).c_str());
  return status == ERROR_FILE_NOT_FOUND ? S_OK : HRESULT_FROM_WIN32(static_cast<DWORD>(status));
}

/// `view`: KEY_WOW64_32KEY or KEY_WOW64_64KEY, 0 for that of this width.
bool HasKey(Scope scope, const std::wstring& key, REGSAM view = 0) {
  HKEY opened = nullptr;
  if (RegOpenKeyExW(RootOf(scope), (kClasses + key).c_str(), 0, KEY_READ | view, &opened) !=
      ERROR_SUCCESS) {
    return false;
  }
  RegCloseKey(opened);
  return true;
}

/// Whether a programmatic identifier leads to the class, and no class of the other width needs it:
/// identifiers are shared between the widths, classes are not. To be asked when the class is gone.
bool IsLeftOver(const ClassEntry& entry, Scope scope) {
  std::array<wchar_t, 40> id{};
  DWORD size = sizeof(id);
  if (RegGetValueW(RootOf(scope), (kClasses + entry.identifier + L"\\CLSID").c_str(), nullptr,
                   RRF_RT_REG_SZ, nullptr, id.data(), &size) != ERROR_SUCCESS) {
    return false;
  }
  const std::wstring own = TextOf(entry.id);
  return CompareStringOrdinal(id.data(), -1, own.c_str(), -1, TRUE) == CSTR_EQUAL &&
         !HasKey(scope, L"CLSID\\" + own, kIs64Bit ? KEY_WOW64_32KEY : KEY_WOW64_64KEY);
}

/// Takes out the library of this width and its interfaces.
HRESULT UnregisterLibrary(const ServerEntry& server, Scope scope) {
  const std::wstring key = L"TypeLib\\" + TextOf(server.library) + L"\\" + VersionOf(server) +
                           (kIs64Bit ? L"\\0\\win64" : L"\\0\\win32");
  if (!HasKey(scope, key)) {
    return S_OK;
  }
  const auto unregister = scope == Scope::kMachine ? UnRegisterTypeLib : UnRegisterTypeLibForUser;
  return unregister(server.library, server.library_major, server.library_minor, LOCALE_NEUTRAL,
                    kIs64Bit ? SYS_WIN64 : SYS_WIN32);
}

HRESULT FirstFailure(HRESULT first, HRESULT second) {
  return FAILED(first) ? first : second;
}

}  // namespace

HRESULT RegisterServer(const ServerEntry& server, Scope scope) {
  KeyWriter writer(scope);
  for (const ClassEntry& entry : server.classes) {
    const std::wstring id = TextOf(entry.id);
    const std::wstring key = L"CLSID\\" + id;
    writer.Write(entry.identifier, L"", entry.description);
    writer.Write(entry.identifier + L"\\CLSID", L"", id);
    writer.Write(key, L"", entry.description);
    writer.Write(key + L"\\ProgID", L"", entry.identifier);
    writer.Write(key + L"\\Programmable", L"", L"");
    if (server.library != GUID{}) {
      writer.Write(key + L"\\TypeLib", L"", TextOf(server.library));
      writer.Write(key + L"\\Version", L"", VersionOf(server));
    }
    if (server.in_process) {
      writer.Write(key + L"\\InprocServer32", L"", server.path);
      writer.Write(key + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
    } else {
      writer.Write(key + L"\\LocalServer32", L"", L"\"" + server.path + L"\"");
    }
  }
  return FAILED(writer.result()) || server.library == GUID{} ? writer.result()
                                                             : RegisterLibrary(server, scope);
}

HRESULT UnregisterServer(const ServerEntry& server, Scope scope) {
  HRESULT result = server.library == GUID{} ? S_OK : UnregisterLibrary(server, scope);
  for (const ClassEntry& entry : server.classes) {
    result = FirstFailure(result, RemoveKey(scope, L"CLSID\\" + TextOf(entry.id)));
    if (IsLeftOver(entry, scope)) {
      result = FirstFailure(result, RemoveKey(scope, entry.identifier));
    }
  }
  return result == TYPE_E_REGISTRYACCESS ? E_ACCESSDENIED : result;
}

HRESULT ForMachineOrUser(const std::function<HRESULT(Scope)>& attempt) {
  const HRESULT result = attempt(Scope::kMachine);
  const bool rights_missing = result == E_ACCESSDENIED || result == TYPE_E_REGISTRYACCESS;
  return rights_missing ? attempt(Scope::kUser) : result;
}

HRESULT ForUserAndMachine(const std::function<HRESULT(Scope)>& attempt) {
  const HRESULT user = attempt(Scope::kUser);
  return FirstFailure(user, attempt(Scope::kMachine));
}

std::wstring OwnPath() {
  HMODULE module = nullptr;
  GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<const wchar_t*>(&OwnPath), &module);
  std::wstring path(MAX_PATH, L'\0');
  DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
  while (length == path.size()) {
    path.resize(2 * path.size());
    length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
  }
  path.resize(length);
  return path;
}

}  // namespace nimbrel::com

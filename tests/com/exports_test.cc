// The component as a file: what it exports and imports, what it enters in the registry, its class
// objects and interfaces, and what keeps it in memory.

#include <gmock/gmock.h>
#include <nimbrel.h>

#include <map>
#include <numeric>
#include <string>
#include <vector>

#include "com/class_factory.h"
#include "com/com_text.h"
#include "platform/win/wide_text.h"
#include "tests/com/component_fixture.h"
#include "tests/com/connectable_object.h"

namespace nimbrel::com {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

class ExportsTest : public ComponentTest {};

std::wstring ClassOf(const wchar_t* identifier) {
  wchar_t id[64] = {};
  LONG size = sizeof(id);
  return RegQueryValueW(HKEY_CLASSES_ROOT, (std::wstring(identifier) + L"\\CLSID").c_str(), id,
                        &size) == ERROR_SUCCESS
             ? id
             : L"";
}

TEST_F(ExportsTest, IsUnknownOnceItIsUnregistered) {
  EXPECT_NE(ClassOf(L"Nimbrel.clsNimbrel"), L"");
  ASSERT_EQ(CallExport("DllUnregisterServer"), S_OK);
  EXPECT_EQ(ClassOf(L"Nimbrel.clsNimbrel"), L"");
  EXPECT_EQ(ClassOf(L"Nimbrel.clsCorvane"), L"");
  EXPECT_EQ(ErrorOf([] { Create("Nimbrel.clsNimbrel"); }).first, 429);
}

bool HasClassesKey(const std::wstring& key) {
  HKEY opened = nullptr;
  const bool is_there =
      RegOpenKeyExW(HKEY_CLASSES_ROOT, key.c_str(), 0, KEY_READ, &opened) == ERROR_SUCCESS;
  RegCloseKey(opened);
  return is_there;
}

constexpr const wchar_t* kInterfaces[] = {L"Interface\\{5EBDCD03-0049-5C27-B43A-29E3ED1B75F9}",
                                          L"Interface\\{DA10606F-C100-5127-A18E-DBE46A7FC773}"};
const std::wstring kLibrary = L"TypeLib\\{74CDF0A1-027F-5FF5-8739-CA1D74C7F12E}";
const std::wstring kOwnWidth =
    kLibrary + (sizeof(void*) == 8 ? L"\\1.0\\0\\win64" : L"\\1.0\\0\\win32");
const std::wstring kOtherWidth =
    kLibrary + (sizeof(void*) == 8 ? L"\\1.0\\0\\win32" : L"\\1.0\\0\\win64");

TEST_F(ExportsTest, UnregisteredItLeavesNoInterfaceAndNoLibrary) {
  for (const wchar_t* key : kInterfaces) {
    EXPECT_TRUE(HasClassesKey(key));
  }
  EXPECT_TRUE(HasClassesKey(kOwnWidth));
  ASSERT_EQ(CallExport("DllUnregisterServer"), S_OK);
  for (const wchar_t* key : kInterfaces) {
    EXPECT_FALSE(HasClassesKey(key));
  }
  EXPECT_FALSE(HasClassesKey(kLibrary));
}

TEST_F(ExportsTest, UnregisteredItLeavesTheLibraryOfTheOtherWidth) {
  HKEY other = nullptr;
  ASSERT_EQ(RegCreateKeyW(HKEY_CLASSES_ROOT, kOtherWidth.c_str(), &other), ERROR_SUCCESS);
  RegCloseKey(other);
  ASSERT_EQ(CallExport("DllUnregisterServer"), S_OK);
  EXPECT_FALSE(HasClassesKey(kOwnWidth));
  EXPECT_TRUE(HasClassesKey(kOtherWidth));
  RegDeleteTreeW(HKEY_CLASSES_ROOT, kLibrary.c_str());
}

/// What a value of a key below the classes says; "none" if there is none. `name` null: the key's
/// default value.
std::wstring ClassesValue(const std::wstring& key, const wchar_t* name = nullptr) {
  wchar_t text[MAX_PATH] = {};
  DWORD size = sizeof(text);
  return RegGetValueW(HKEY_CLASSES_ROOT, key.c_str(), name, RRF_RT_REG_SZ, nullptr, text, &size) ==
                 ERROR_SUCCESS
             ? text
             : L"none";
}

TEST_F(ExportsTest, EntersItsClassesWithAllThatLeadsToThem) {
  const std::pair<const wchar_t*, std::wstring> classes[] = {
      {L"Nimbrel.clsNimbrel", L"CLSID\\{BCE890D6-808C-5936-9151-58561868255A}"},
      {L"Nimbrel.clsCorvane", L"CLSID\\{96BC538A-6798-536B-B24F-C0F18D589837}"}};
  for (const auto& [identifier, key] : classes) {
    EXPECT_EQ(L"CLSID\\" + ClassOf(identifier), key);
    EXPECT_EQ(ClassesValue(key + L"\\ProgID"), identifier);
    EXPECT_EQ(ClassesValue(key + L"\\InprocServer32"), ProgramBeside(kDll));
    EXPECT_EQ(ClassesValue(key + L"\\InprocServer32", L"ThreadingModel"), L"Apartment");
    EXPECT_EQ(L"TypeLib\\" + ClassesValue(key + L"\\TypeLib"), kLibrary);
    EXPECT_EQ(ClassesValue(key + L"\\Version"), L"1.0");
  }
  EXPECT_EQ(ClassesValue(kOwnWidth), ProgramBeside(kDll));
}

/// The DLL in memory, for as long as this lives.
class LoadedComponent {
 public:
  LoadedComponent() : dll_(LoadLibraryW(ProgramBeside(kDll).c_str())) {}
  ~LoadedComponent() { FreeLibrary(dll_); }
  LoadedComponent(const LoadedComponent&) = delete;
  LoadedComponent& operator=(const LoadedComponent&) = delete;

  HRESULT GetClassObject(REFCLSID class_id, REFIID id, void** object) const {
    const auto function = reinterpret_cast<HRESULT(WINAPI*)(REFCLSID, REFIID, void**)>(
        reinterpret_cast<void*>(GetProcAddress(dll_, "DllGetClassObject")));
    return function(class_id, id, object);
  }
  /// The part of the file that a directory of its header describes.
  template <class T>
  const T* Directory(unsigned index) const {
    const auto* dos = At<IMAGE_DOS_HEADER>(0);
    const auto* headers = At<IMAGE_NT_HEADERS>(static_cast<DWORD>(dos->e_lfanew));
    return At<T>(headers->OptionalHeader.DataDirectory[index].VirtualAddress);
  }
  template <class T>
  const T* At(DWORD offset) const {
    return reinterpret_cast<const T*>(reinterpret_cast<const BYTE*>(dll_) + offset);
  }

 private:
  HMODULE dll_;
};

TEST_F(ExportsTest, RefusesWhatItCannotMake) {
  const LoadedComponent component;
  const CLSID unknown = {0x5f3a1c42, 1, 2, {3, 4, 5, 6, 7, 8, 9, 10}};
  void* object = &object;
  EXPECT_EQ(component.GetClassObject(unknown, IID_IClassFactory, &object),
            CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(component.GetClassObject(CLSID_clsNimbrel, IID_IClassFactory, nullptr), E_POINTER);
  object = &object;
  EXPECT_EQ(component.GetClassObject(CLSID_clsNimbrel, IID_IDispatch, &object), E_NOINTERFACE);
  EXPECT_EQ(object, nullptr);

  ComPtr<IClassFactory> factory;
  ASSERT_EQ(component.GetClassObject(CLSID_clsNimbrel, IID_IClassFactory, factory.ReceiveVoid()),
            S_OK);
  const auto outer = MakeCom<ConnectableObject>().As<IUnknown>(IID_IUnknown);
  object = &object;
  EXPECT_EQ(factory->CreateInstance(outer.get(), IID_IUnknown, &object), CLASS_E_NOAGGREGATION);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, nullptr), E_POINTER);
  EXPECT_EQ(factory->CreateInstance(nullptr, IID_IClassFactory, &object), E_NOINTERFACE);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(factory->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

ComPtr<IClassFactory> Factory() {
  ComPtr<IClassFactory> factory;
  EXPECT_EQ(CoGetClassObject(CLSID_clsNimbrel, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                             factory.ReceiveVoid()),
            S_OK);
  return factory;
}

TEST_F(ExportsTest, IsNotUnloadedWhileAClassFactoryIsHeld) {
  ComPtr<IClassFactory> factory = Factory();
  UnloadUnused();
  EXPECT_TRUE(IsLoaded());
  factory = nullptr;
  UnloadUnused();
  EXPECT_FALSE(IsLoaded());
}

TEST_F(ExportsTest, IsNotUnloadedWhileItIsLocked) {
  EXPECT_EQ(Factory()->LockServer(TRUE), S_OK);
  UnloadUnused();
  EXPECT_TRUE(IsLoaded());
  EXPECT_EQ(Factory()->LockServer(FALSE), S_OK);
  UnloadUnused();
  EXPECT_FALSE(IsLoaded());
}

TEST_F(ExportsTest, IsNotUnloadedWhileAHostHoldsItsSubscriber) {
  CLSID application = {};
  ASSERT_EQ(CLSIDFromProgID(L"Corvane8.Application", &application), S_OK);
  const auto host = MakeCom<ConnectableObject>();
  const auto factory = MakeCom<ClassFactory>([&host] { return host.As<IUnknown>(IID_IUnknown); });
  DWORD cookie = 0;
  ASSERT_EQ(CoRegisterClassObject(application, factory.get(), CLSCTX_LOCAL_SERVER,
                                  REGCLS_MULTIPLEUSE, &cookie),
            S_OK);
  nimbrel_ = Create("Nimbrel.clsNimbrel");
  nimbrel_->Call("LaunchStartCorvane");
  CoRevokeClassObject(cookie);
  ASSERT_TRUE(host->sink());
  UnloadUnused();
  EXPECT_TRUE(IsLoaded());
  nimbrel_ = nullptr;
  UnloadUnused();
  EXPECT_TRUE(IsLoaded());
  host->LetSinkGo();
  UnloadUnused();
  EXPECT_FALSE(IsLoaded());
}

/// Where the operations stand in the table of the interface, in the order of their numbers.
std::vector<std::size_t> PlacesOf(ITypeInfo& info) {
  std::map<MEMBERID, std::size_t> places;
  FUNCDESC* function = nullptr;
  for (UINT i = 0; SUCCEEDED(info.GetFuncDesc(i, &function)); ++i) {
    // Those of IDispatch have numbers above.
    if (function->memid < 0x10000) {
      places[function->memid] = static_cast<std::size_t>(function->oVft) / sizeof(void*);
    }
    info.ReleaseFuncDesc(function);
  }
  std::vector<std::size_t> in_order;
  for (const auto& [id, place] : places) {
    in_order.push_back(place);
  }
  return in_order;
}

std::vector<std::size_t> PlacesFrom(std::size_t first, std::size_t count) {
  std::vector<std::size_t> places(count);
  std::iota(places.begin(), places.end(), first);
  return places;
}

TEST_F(ExportsTest, HasItsOperationsInTheirOrder) {
  const auto names_of = [](const std::string& identifier) {
    const ComPtr<IDispatch> object = CreateByIdentifier(identifier);
    ComPtr<ITypeInfo> info;
    EXPECT_EQ(object->GetTypeInfo(0, 0, info.Receive()), S_OK);
    std::vector<std::string> names;
    for (DISPID id = 1; id <= 6; ++id) {
      BSTR name = nullptr;
      UINT count = 0;
      if (SUCCEEDED(info->GetNames(id, &name, 1, &count)) && count == 1) {
        names.push_back(platform::ToUtf8(name));
        SysFreeString(name);
      }
    }
    // Behind the seven of IDispatch.
    EXPECT_EQ(PlacesOf(*info.get()), PlacesFrom(7, names.size())) << identifier;
    return names;
  };
  EXPECT_THAT(names_of("Nimbrel.clsNimbrel"),
              ElementsAre("Main", "LaunchStartCorvane", "LaunchStopCorvane"));
  EXPECT_THAT(names_of("Nimbrel.clsCorvane"),
              ElementsAre("StartCorvane", "StopCorvane", "m_CorvyApp_PlanAfterRiskAnalysis",
                          "m_CorvyApp_PlanAfterRiskIteration", "m_CorvyApp_PlanBeforeRiskAnalysis",
                          "m_CorvyApp_PlanBeforeRiskIteration"));
}

TEST_F(ExportsTest, ExportsTheFourFunctionsUndecoratedAndNothingElse) {
  const LoadedComponent component;
  const auto* exports = component.Directory<IMAGE_EXPORT_DIRECTORY>(IMAGE_DIRECTORY_ENTRY_EXPORT);
  const auto* offsets = component.At<DWORD>(exports->AddressOfNames);
  std::vector<std::string> names;
  for (DWORD i = 0; i < exports->NumberOfNames; ++i) {
    names.emplace_back(component.At<char>(offsets[i]));
  }
  EXPECT_EQ(exports->NumberOfFunctions, 4U);
  EXPECT_THAT(names, ElementsAre("DllCanUnloadNow", "DllGetClassObject", "DllRegisterServer",
                                 "DllUnregisterServer"));
}

TEST_F(ExportsTest, NeedsNothingButTheSystemsOwnLibraries) {
  const LoadedComponent component;
  std::wstring windows(MAX_PATH, L'\0');
  windows.resize(GetWindowsDirectoryW(windows.data(), MAX_PATH));
  std::vector<std::string> names;
  for (const auto* import =
           component.Directory<IMAGE_IMPORT_DESCRIPTOR>(IMAGE_DIRECTORY_ENTRY_IMPORT);
       import->Name != 0; ++import) {
    names.emplace_back(component.At<char>(import->Name));
    std::wstring path(MAX_PATH, L'\0');
    path.resize(GetModuleFileNameW(GetModuleHandleA(names.back().c_str()), path.data(), MAX_PATH));
    EXPECT_EQ(CompareStringOrdinal(path.substr(0, windows.size() + 1).c_str(), -1,
                                   (windows + L"\\").c_str(), -1, TRUE),
              CSTR_EQUAL)
        << names.back() << " in " << platform::ToUtf8(path);
  }
  EXPECT_THAT(names, Contains("KERNEL32.dll"));
}

TEST_F(ExportsTest, TheFileTellsItsVersionAndItsProduct) {
  const std::wstring path = ProgramBeside(kDll);
  std::vector<BYTE> information(GetFileVersionInfoSizeW(path.c_str(), nullptr));
  ASSERT_NE(GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(information.size()),
                                information.data()),
            FALSE);
  void* found = nullptr;
  UINT size = 0;
  ASSERT_NE(VerQueryValueW(information.data(), L"\\", &found, &size), FALSE);
  const auto* fixed = static_cast<const VS_FIXEDFILEINFO*>(found);
  const std::string version = std::to_string(HIWORD(fixed->dwFileVersionMS)) + "." +
                              std::to_string(LOWORD(fixed->dwFileVersionMS)) + "." +
                              std::to_string(HIWORD(fixed->dwFileVersionLS));
  EXPECT_EQ(version, NIMBREL_VERSION);
  EXPECT_EQ(LOWORD(fixed->dwFileVersionLS), 0);
  const auto text = [&](const wchar_t* name) {
    const std::wstring entry = std::wstring(L"\\StringFileInfo\\040904B0\\") + name;
    return VerQueryValueW(information.data(), entry.c_str(), &found, &size) != FALSE
               ? platform::ToUtf8(static_cast<const wchar_t*>(found))
               : "none";
  };
  EXPECT_EQ(text(L"ProductName"), "Nimbrel");
  EXPECT_EQ(text(L"FileVersion"), NIMBREL_VERSION);
  EXPECT_EQ(text(L"OriginalFilename"), "Nimbrel.dll");
}

}  // namespace
}  // namespace nimbrel::com

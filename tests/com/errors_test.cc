// Values and errors on their way between programs.

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

#include "com/com_error.h"
#include "com/com_text.h"
#include "com/com_variant.h"
#include "com/registration.h"
#include "tests/com/com_test.h"

namespace nimbrel::com {
namespace {

using platform::Date;
using platform::Object;
using platform::RuntimeError;
using platform::Variant;

Ref<Object> NoObject(IDispatch* /*object*/) {
  return nullptr;
}

Variant Back(const Variant& value) {
  return FromComVariant(*ToComVariant(value, nullptr).get(), NoObject);
}

TEST(ComVariants, ComeBackAsTheyLeft) {
  for (const Variant& value :
       {Variant(), Variant(true), Variant(false), Variant(0), Variant(-7),
        Variant(std::numeric_limits<std::int32_t>::min()), Variant(0.1), Variant(-0.0),
        Variant(Date{46391.375}), Variant(""), Variant("Sturm über der Nordsee €"),
        Variant(std::string("with\0NUL", 8)), Variant(Ref<Object>())}) {
    EXPECT_TRUE(Back(value) == value);
  }
}

TEST(ComVariants, TakeNumbersOfAllKinds) {
  VARIANT given = {};
  given.vt = VT_I2;
  given.iVal = -3;
  EXPECT_TRUE(FromComVariant(given, NoObject) == Variant(-3));
  given.vt = VT_CY;
  given.cyVal.int64 = 12'500;  // ten thousandths
  EXPECT_TRUE(FromComVariant(given, NoObject) == Variant(1.25));
  given.vt = VT_UI4;
  given.ulVal = 4'000'000'000;
  EXPECT_TRUE(FromComVariant(given, NoObject) == Variant(4e9));
  given.vt = VT_NULL;
  EXPECT_TRUE(FromComVariant(given, NoObject).IsEmpty());
}

TEST(ComVariants, FollowReferences) {
  std::int32_t number = 5;
  VARIANT direct = {};
  direct.vt = VT_BYREF | VT_I4;
  direct.plVal = reinterpret_cast<LONG*>(&number);
  EXPECT_TRUE(FromComVariant(direct, NoObject) == Variant(5));
  VARIANT twice = {};
  twice.vt = VT_BYREF | VT_VARIANT;
  twice.pvarVal = &direct;
  direct.vt = VT_BOOL;
  direct.boolVal = VARIANT_TRUE;
  EXPECT_TRUE(FromComVariant(twice, NoObject) == Variant(true));
}

TEST(ComVariants, RefuseArraysAndErrorValues) {
  VARIANT given = {};
  given.vt = VT_ERROR;
  given.scode = static_cast<SCODE>(0x800A07FA);  // a cell that says #N/A
  EXPECT_EQ(ErrorOf([&] { FromComVariant(given, NoObject); }).first, 13);
  ComVariant array;
  array.get()->vt = VT_ARRAY | VT_I4;
  array.get()->parray = SafeArrayCreateVector(VT_I4, 0, 1);
  EXPECT_EQ(ErrorOf([&] { FromComVariant(*array.get(), NoObject); }).first, 13);
  VARIANT elsewhere = {};
  elsewhere.vt = VT_BYREF | VT_ARRAY | VT_I4;
  elsewhere.pparray = &array.get()->parray;
  EXPECT_EQ(ErrorOf([&] { FromComVariant(elsewhere, NoObject); }).first, 13);
}

TEST(ComVariants, AMissingArgumentIsEmptyAndANullTextTheEmptyOne) {
  VARIANT given = {};
  given.vt = VT_ERROR;
  given.scode = DISP_E_PARAMNOTFOUND;
  EXPECT_TRUE(FromComVariant(given, NoObject).IsEmpty());
  given.vt = VT_BSTR;
  given.bstrVal = nullptr;
  EXPECT_TRUE(FromComVariant(given, NoObject) == Variant(""));
}

TEST(ComErrors, NumbersSurviveTheWayThereAndBack) {
  for (const std::int32_t number : {1, 5, 13, 91, 429, 438, 1004, 32767, 65535}) {
    EXPECT_EQ(ErrorNumberOf(ToHResult(RuntimeError(number, ""))), number);
  }
  const std::int32_t unknown = static_cast<std::int32_t>(0x80004005);
  EXPECT_EQ(ErrorNumberOf(ToHResult(RuntimeError(unknown, ""))), unknown);
}

TEST(ComErrors, ANumberThatNoFailureCanSayIsStillAFailure) {
  EXPECT_TRUE(FAILED(ToHResult(RuntimeError(0, ""))));
  EXPECT_TRUE(FAILED(ToHResult(RuntimeError(65536, ""))));
}

TEST(ComErrors, FailuresOfComHaveTheNumbersOfTheirKind) {
  EXPECT_EQ(ErrorNumberOf(DISP_E_UNKNOWNNAME), 438);
  EXPECT_EQ(ErrorNumberOf(DISP_E_BADPARAMCOUNT), 450);
  EXPECT_EQ(ErrorNumberOf(DISP_E_TYPEMISMATCH), 13);
  EXPECT_EQ(ErrorNumberOf(DISP_E_BADINDEX), 9);
  EXPECT_EQ(ErrorNumberOf(REGDB_E_CLASSNOTREG), 429);
  for (const HRESULT gone :
       {RPC_E_DISCONNECTED, RPC_E_SERVER_DIED, RPC_E_SERVER_DIED_DNE, CO_E_OBJNOTCONNECTED,
        HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE), HRESULT_FROM_WIN32(RPC_S_CALL_FAILED),
        HRESULT_FROM_WIN32(RPC_S_CALL_FAILED_DNE)}) {
    EXPECT_EQ(ErrorNumberOf(gone), 462) << std::hex << gone;
  }
}

TEST(ComErrors, AnExceptionRecordGivesItsNumberAndText) {
  EXCEPINFO exception = {};
  FillException(RuntimeError(1004, "Range: no such range"), &exception);
  EXPECT_EQ(ErrorOf([&] { RaiseInvokeFailure(DISP_E_EXCEPTION, exception, "Sheet.Range"); }),
            std::pair(1004, std::string("Range: no such range")));
  EXPECT_EQ(exception.bstrDescription, nullptr);
  exception = {};
  exception.wCode = 1001;
  EXPECT_EQ(ErrorOf([&] { RaiseInvokeFailure(DISP_E_EXCEPTION, exception, "Sheet.Range"); }),
            std::pair(1001, std::string("Sheet.Range")));
}

TEST(ComErrors, AFailureTakesTheThreadsErrorObjectWithIt) {
  LeaveErrorInfo(RuntimeError(5, "no such plan"));
  EXPECT_EQ(ErrorOf([] { Check(E_FAIL, "Plan"); }).second, "no such plan");
  LeaveErrorInfo(RuntimeError(5, "no such plan"));
  EXPECT_NE(ErrorOf([] { RaiseFailure(DISP_E_UNKNOWNNAME, "Plan.Nonsense"); }).first, 0);
  EXPECT_THAT(ErrorOf([] { Check(E_FAIL, "Advise"); }).second, ::testing::StartsWith("Advise: "));
}

TEST(ComErrors, WhatIsNoRuntimeErrorBecomesOneAtTheBorder) {
  std::int32_t number = 0;
  Guarded([] { throw std::logic_error("a fault"); },
          [&](const RuntimeError& error) {
            number = error.number();
            return E_FAIL;
          });
  EXPECT_EQ(number, 1004);
}

TEST(ComErrors, AFailureToTellOfAFailureStaysInside) {
  const auto failing = [](const RuntimeError& /*error*/) -> HRESULT { throw std::bad_alloc(); };
  EXPECT_EQ(Guarded([] { throw RuntimeError(5, "no"); }, failing), E_OUTOFMEMORY);
}

TEST(Registration, IsForTheUserAloneWhereRightsAreMissing) {
  std::vector<Scope> scopes;
  const auto attempt = [&](HRESULT machine) {
    scopes.clear();
    return ForMachineOrUser([&](Scope scope) {
      scopes.push_back(scope);
      return scope == Scope::kMachine ? machine : S_OK;
    });
  };
  EXPECT_EQ(attempt(E_ACCESSDENIED), S_OK);
  EXPECT_THAT(scopes, ::testing::ElementsAre(Scope::kMachine, Scope::kUser));
  EXPECT_EQ(attempt(TYPE_E_REGISTRYACCESS), S_OK);
  EXPECT_EQ(attempt(S_OK), S_OK);
  EXPECT_THAT(scopes, ::testing::ElementsAre(Scope::kMachine));
  EXPECT_EQ(attempt(E_FAIL), E_FAIL);
  EXPECT_THAT(scopes, ::testing::ElementsAre(Scope::kMachine));
}

TEST(Registration, IsTakenOutForTheUserAndTheMachineAndEitherFailureIsTold) {
  std::vector<Scope> scopes;
  const auto attempt = [&](HRESULT user, HRESULT machine) {
    scopes.clear();
    return ForUserAndMachine([&](Scope scope) {
      scopes.push_back(scope);
      return scope == Scope::kUser ? user : machine;
    });
  };
  EXPECT_EQ(attempt(S_OK, S_OK), S_OK);
  EXPECT_EQ(attempt(S_OK, E_ACCESSDENIED), E_ACCESSDENIED);
  EXPECT_EQ(attempt(E_FAIL, S_OK), E_FAIL);
  EXPECT_THAT(scopes, ::testing::ElementsAre(Scope::kUser, Scope::kMachine));
}

/// A key of the machine's classes, which goes with this.
class MachineKey {
 public:
  /// `view`: KEY_WOW64_32KEY or KEY_WOW64_64KEY. `value` becomes the default value.
  MachineKey(std::wstring key, REGSAM view, const std::wstring& value = L"")
      : path_(L"Software\\Classes\\" + std::move(key)), view_(view) {
    HKEY opened = nullptr;
    RegCreateKeyExW(HKEY_LOCAL_MACHINE, path_.c_str(), 0, nullptr, 0, KEY_WRITE | view_, nullptr,
                    &opened, nullptr);
    RegSetValueExW(opened, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                   static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
    RegCloseKey(opened);
  }
  ~MachineKey() { Remove(); }
  MachineKey(const MachineKey&) = delete;
  MachineKey& operator=(const MachineKey&) = delete;

  void Remove() const { RegDeleteKeyExW(HKEY_LOCAL_MACHINE, path_.c_str(), view_, 0); }

 private:
  std::wstring path_;
  REGSAM view_;
};

/// A default value of the machine's classes; "none" if there is none.
std::wstring MachineValue(const std::wstring& key) {
  wchar_t text[300] = {};
  DWORD size = sizeof(text);
  return RegGetValueW(HKEY_LOCAL_MACHINE, (L"Software\\Classes\\" + key).c_str(), nullptr,
                      RRF_RT_REG_SZ, nullptr, text, &size) == ERROR_SUCCESS
             ? text
             : L"none";
}

const ServerEntry kProbe = {
    .path = L"C:\\none\\probe.dll",
    .classes = {{{0x3f3a1c42, 1, 2, {3, 4, 5, 6, 7, 8, 9, 10}}, L"Nimbrel.Probe2", L"Probe"}}};
constexpr const wchar_t* kProbeClass = L"CLSID\\{3F3A1C42-0001-0002-0304-05060708090A}";
constexpr REGSAM kOtherWidth = sizeof(void*) == 8 ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;

TEST(Registration, AnIdentifierThatAnotherClassHasTakenStays) {
  ASSERT_EQ(RegisterServer(kProbe, Scope::kMachine), S_OK);
  const MachineKey taken(L"Nimbrel.Probe2\\CLSID", 0, L"{4F3A1C42-0001-0002-0304-05060708090A}");
  EXPECT_EQ(UnregisterServer(kProbe, Scope::kMachine), S_OK);
  EXPECT_EQ(MachineValue(L"Nimbrel.Probe2\\CLSID"), L"{4F3A1C42-0001-0002-0304-05060708090A}");
  RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Classes\\Nimbrel.Probe2");
}

TEST(Registration, AnIdentifierStaysForTheClassOfTheOtherWidth) {
  const MachineKey other(kProbeClass, kOtherWidth, L"Probe");
  if (MachineValue(kProbeClass) != L"none") {
    GTEST_SKIP() << "this system has one width only";
  }
  ASSERT_EQ(RegisterServer(kProbe, Scope::kMachine), S_OK);
  EXPECT_EQ(UnregisterServer(kProbe, Scope::kMachine), S_OK);
  EXPECT_EQ(MachineValue(kProbeClass), L"none");
  EXPECT_NE(MachineValue(L"Nimbrel.Probe2\\CLSID"), L"none");
  other.Remove();
  EXPECT_EQ(UnregisterServer(kProbe, Scope::kMachine), S_OK);
  EXPECT_EQ(MachineValue(L"Nimbrel.Probe2\\CLSID"), L"none");
}

TEST(Registration, ForTheUserWritesAndRemovesTheUsersKeys) {
  const ServerEntry entry = {
      .path = ProgramBeside(L"NimbrelTrialHost.exe"),
      .library = {0x1f3a1c42, 1, 2, {3, 4, 5, 6, 7, 8, 9, 10}},
      .classes = {{{0x2f3a1c42, 1, 2, {3, 4, 5, 6, 7, 8, 9, 10}}, L"Nimbrel.Probe", L"Probe"}}};
  const auto value = [](const wchar_t* key) {
    wchar_t text[300] = {};
    DWORD size = sizeof(text);
    return RegGetValueW(HKEY_CURRENT_USER, (std::wstring(L"Software\\Classes\\") + key).c_str(),
                        nullptr, RRF_RT_REG_SZ, nullptr, text, &size) == ERROR_SUCCESS
               ? std::wstring(text)
               : std::wstring(L"none");
  };
  const wchar_t* server = L"CLSID\\{2F3A1C42-0001-0002-0304-05060708090A}\\InprocServer32";
  ASSERT_EQ(RegisterServer(entry, Scope::kUser), S_OK);
  EXPECT_EQ(value(L"Nimbrel.Probe\\CLSID"), L"{2F3A1C42-0001-0002-0304-05060708090A}");
  EXPECT_EQ(value(server), entry.path);
  EXPECT_EQ(UnregisterServer(entry, Scope::kUser), S_OK);
  EXPECT_EQ(value(L"Nimbrel.Probe\\CLSID"), L"none");
  EXPECT_EQ(value(server), L"none");
  EXPECT_EQ(UnregisterServer(entry, Scope::kUser), S_OK) << "gone is gone";
}

}  // namespace
}  // namespace nimbrel::com

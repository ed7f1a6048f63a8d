#include "com/com_error.h"

#include <array>
#include <string>
#include <utility>

#include "com/com_ptr.h"
#include "com/com_text.h"
#include "platform/text.h"
#include "platform/win/wide_text.h"

namespace nimbrel::com {
namespace {

using platform::RuntimeError;

constexpr std::uint32_t kControlFailure = 0x800A0000;
constexpr std::uint32_t kFacilityMask = 0xFFFF0000;
constexpr const wchar_t* kSource = L"Nimbrel";
/// The program of an object has ended.
constexpr std::int32_t kServerGone = 462;
constexpr std::int32_t kOutOfMemory = 7;
/// Excel's own failure while a cell is being edited.
constexpr auto kExcelIgnores = static_cast<HRESULT>(0x800AC472);

/// Failures of COM that run-time errors have numbers for.
constexpr std::array<std::pair<HRESULT, std::int32_t>, 23> kNumbers = {{
    {DISP_E_UNKNOWNINTERFACE, platform::kMemberNotFound},
    {DISP_E_MEMBERNOTFOUND, platform::kMemberNotFound},
    {DISP_E_UNKNOWNNAME, platform::kMemberNotFound},
    {DISP_E_TYPEMISMATCH, platform::kTypeMismatch},
    {DISP_E_BADVARTYPE, platform::kTypeMismatch},
    {DISP_E_OVERFLOW, platform::kOverflow},
    {DISP_E_BADINDEX, platform::kSubscriptOutOfRange},
    {DISP_E_DIVBYZERO, platform::kDivisionByZero},
    {DISP_E_PARAMNOTOPTIONAL, platform::kArgumentNotOptional},
    {DISP_E_PARAMNOTFOUND, platform::kArgumentNotOptional},
    {DISP_E_BADPARAMCOUNT, platform::kWrongNumberOfArguments},
    {E_INVALIDARG, platform::kInvalidProcedureCall},
    {E_OUTOFMEMORY, kOutOfMemory},
    {REGDB_E_CLASSNOTREG, platform::kCannotCreateObject},
    {CO_E_CLASSSTRING, platform::kCannotCreateObject},
    {CO_E_SERVER_EXEC_FAILURE, platform::kCannotCreateObject},
    {RPC_E_DISCONNECTED, kServerGone},
    {RPC_E_SERVER_DIED, kServerGone},
    {RPC_E_SERVER_DIED_DNE, kServerGone},
    {CO_E_OBJNOTCONNECTED, kServerGone},
    {HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE), kServerGone},
    {HRESULT_FROM_WIN32(RPC_S_CALL_FAILED), kServerGone},
    {HRESULT_FROM_WIN32(RPC_S_CALL_FAILED_DNE), kServerGone},
}};

std::string SystemText(HRESULT failure) {
  wchar_t* buffer = nullptr;
  const DWORD length = FormatMessageW(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
      nullptr, static_cast<DWORD>(failure), 0, reinterpret_cast<wchar_t*>(&buffer), 0, nullptr);
  std::string text = platform::ToUtf8({buffer, length});
  LocalFree(buffer);
  return std::string(platform::Trim(text));
}

/// The text of the error that the last call has left with the thread, empty if none.
std::string LeftText() {
  ComPtr<IErrorInfo> info;
  if (GetErrorInfo(0, info.Receive()) != S_OK) {
    return "";
  }
  BSTR text = nullptr;
  info->GetDescription(&text);
  return TakeText(text);
}

}  // namespace

HRESULT ToHResult(const RuntimeError& error) {
  const std::int32_t number = error.number();
  if (number < 0) {
    return number;
  }
  if (number == 0 || number > 0xFFFF) {
    return E_FAIL;
  }
  return static_cast<HRESULT>(kControlFailure | static_cast<std::uint32_t>(number));
}

std::int32_t ErrorNumberOf(HRESULT failure) {
  const auto bits = static_cast<std::uint32_t>(failure);
  if ((bits & kFacilityMask) == kControlFailure) {
    return static_cast<std::int32_t>(bits & 0xFFFF);
  }
  for (const auto& [known, number] : kNumbers) {
    if (known == failure) {
      return number;
    }
  }
  return failure;
}

bool IsBusy(HRESULT result) {
  return result == RPC_E_CALL_REJECTED || result == RPC_E_SERVERCALL_RETRYLATER ||
         result == kExcelIgnores;
}

void ForgetLeftError() {
  SetErrorInfo(0, nullptr);
}

void RaiseFailure(HRESULT failure, std::string_view subject, std::string text) {
  ForgetLeftError();
  if (IsBusy(failure)) {
    const std::string_view program = subject.substr(0, subject.find('.'));
    text = std::string(program) + " is busy: an entry or a dialog may be open in it (" +
           std::string(subject) + ")";
  }
  if (text.empty()) {
    text = SystemText(failure);
    if (text.empty()) {
      std::array<char, 16> code{};
      wsprintfA(code.data(), "%08X", static_cast<unsigned>(failure));
      text = std::string("failure ") + code.data();
    }
    text = std::string(subject) + ": " + text;
  }
  throw RuntimeError(ErrorNumberOf(failure), text);
}

void Check(HRESULT result, std::string_view subject) {
  if (FAILED(result)) {
    RaiseFailure(result, subject, LeftText());
  }
}

void RaiseInvokeFailure(HRESULT failure, EXCEPINFO& exception, std::string_view subject) {
  if (failure == DISP_E_EXCEPTION && exception.pfnDeferredFillIn != nullptr) {
    exception.pfnDeferredFillIn(&exception);
  }
  SysFreeString(std::exchange(exception.bstrSource, nullptr));
  SysFreeString(std::exchange(exception.bstrHelpFile, nullptr));
  std::string text = TakeText(std::exchange(exception.bstrDescription, nullptr));
  if (failure != DISP_E_EXCEPTION) {
    RaiseFailure(failure, subject);
  }
  if (exception.wCode != 0) {
    ForgetLeftError();
    throw RuntimeError(exception.wCode, text.empty() ? std::string(subject) : text);
  }
  RaiseFailure(FAILED(exception.scode) ? exception.scode : E_FAIL, subject, std::move(text));
}

HRESULT FillException(const RuntimeError& error, EXCEPINFO* exception) {
  if (exception != nullptr) {
    *exception = {};
    exception->scode = ToHResult(error);
    exception->bstrSource = SysAllocString(kSource);
    exception->bstrDescription = MakeBstr(error.text());
  }
  return DISP_E_EXCEPTION;
}

HRESULT LeaveErrorInfo(const RuntimeError& error) {
  ComPtr<ICreateErrorInfo> info;
  if (SUCCEEDED(CreateErrorInfo(info.Receive()))) {
    std::wstring text = platform::ToWide(error.text());
    info->SetSource(const_cast<wchar_t*>(kSource));
    info->SetDescription(text.data());
    SetErrorInfo(0, info.As<IErrorInfo>(IID_IErrorInfo).get());
  }
  return ToHResult(error);
}

}  // namespace nimbrel::com

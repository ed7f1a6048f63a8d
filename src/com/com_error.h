#pragma once

#include <exception>
#include <new>
#include <string>
#include <string_view>

#include "platform/runtime_error.h"
#include "platform/win/win_api.h"

/// Run-time errors and the failures of COM, which are the same thing on two sides of a call.
///
/// An error with a number from 1 to 65535 travels as the failure 0x800A0000 + number, as the
/// automation of Windows has it. A failure of COM itself that has such a number of its own (an
/// unknown member, a wrong argument) becomes that one; any other keeps its value as its number.
namespace nimbrel::com {

/// The failure as which an error travels.
HRESULT ToHResult(const platform::RuntimeError& error);

/// The error that a failure stands for.
std::int32_t ErrorNumberOf(HRESULT failure);

/// Whether a call has failed because the other program takes none just now.
bool IsBusy(HRESULT result);

/// Forgets the error object that some earlier call has left with the thread, so that the next
/// failure is not told in its words.
void ForgetLeftError();

/// Raises the error of a failure. `text` is what is known of it; empty: the system's own words,
/// behind `subject` ("Plan.Name"). The thread's error object is forgotten.
[[noreturn]] void RaiseFailure(HRESULT failure, std::string_view subject, std::string text = {});

/// RaiseFailure if `result` is a failure. The text of the thread's error object is used, if the
/// call has left one; where others may have left one before, ForgetLeftError goes before the call.
void Check(HRESULT result, std::string_view subject);

/// Raises the error of a failed IDispatch::Invoke, whose exception record is `exception`, and frees
/// the record's texts.
[[noreturn]] void RaiseInvokeFailure(HRESULT failure, EXCEPINFO& exception,
                                     std::string_view subject);

/// Fills the exception record of a failing IDispatch::Invoke. Gives DISP_E_EXCEPTION.
HRESULT FillException(const platform::RuntimeError& error, EXCEPINFO* exception);

/// Leaves the error with the thread, for callers of an interface's own operations. Gives the
/// failure to return.
HRESULT LeaveErrorInfo(const platform::RuntimeError& error);

/// Runs an operation that an outside caller waits for: no exception gets out. A run-time error, or
/// whatever else it raises as one with the number 1004, goes to `failed`, whose result is returned.
/// E_OUTOFMEMORY where memory is missing, be it to tell the failure.
template <class Operation, class Failed>
HRESULT Guarded(const Operation& operation, const Failed& failed) noexcept {
  try {
    try {
      operation();
      return S_OK;
    } catch (const platform::RuntimeError& error) {
      return failed(error);
    } catch (const std::bad_alloc&) {
      return E_OUTOFMEMORY;
    } catch (const std::exception& error) {
      return failed(platform::RuntimeError(platform::kApplicationDefined, error.what()));
    }
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace nimbrel::com

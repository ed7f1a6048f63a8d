#pragma once

#include <chrono>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "com/com_error.h"
#include "com/com_ptr.h"
#include "com/com_variant.h"

namespace nimbrel::com {

/// Sets how long each call of another program's object is repeated while that program is busy (a
/// cell is being edited in it, a dialog of its own is open, it is still starting), 10 seconds at
/// first. For the whole program; gives what held before.
std::chrono::milliseconds SetBusyPatience(std::chrono::milliseconds patience);
std::chrono::milliseconds BusyPatience();

/// Makes a call to another program, again and again while that is busy, and gives its last result.
/// Done here and not by a message filter: the thread's filter is the host's own, and Excel also
/// refuses calls by a failure that filters do not see.
template <class Call>
HRESULT WhenNotBusy(const Call& call) {
  constexpr DWORD kPause = 100;  // milliseconds
  const auto until = std::chrono::steady_clock::now() + BusyPatience();
  HRESULT result = call();
  while (IsBusy(result) && std::chrono::steady_clock::now() < until) {
    Sleep(kPause);
    result = call();
  }
  return result;
}

/// The numbers that the objects of one host have for the names of their members, by class and name:
/// asked for once, since the question costs as much as the call.
class MemberIds {
 public:
  /// Raises error 438 for a member that the object does not have.
  DISPID Find(IDispatch& object, const std::string& subject, std::string_view member);

 private:
  std::unordered_map<std::string, DISPID> ids_;
};

/// Calls an object's members by name. Failures are raised as run-time errors. A call that is
/// refused because the other program is busy is made again until it is taken, or patience ends; the
/// error is then the failure itself.
class Dispatch {
 public:
  /// `class_name` is what errors call the object ("Object" if it is empty), and what its members
  /// are remembered under in `ids`; without that they are not remembered. `object` must not be
  /// null.
  Dispatch(ComPtr<IDispatch> object, std::string class_name, std::shared_ptr<MemberIds> ids);

  IDispatch* object() const { return object_.get(); }
  const std::shared_ptr<MemberIds>& ids() const { return ids_; }

  /// Arguments stand in their order; those that are references (VT_BYREF) are written to.
  ComVariant Get(std::string_view member, std::span<const VARIANT> arguments = {}) const;
  ComVariant Call(std::string_view member, std::span<const VARIANT> arguments = {}) const;
  /// An object as a value is put by reference, and by value if the member takes it so only.
  void Put(std::string_view member, const VARIANT& value,
           std::span<const VARIANT> arguments = {}) const;
  /// The elements of a collection, in its order and as it gives them: whether they are objects is
  /// for the caller to see. Raises error 438 if it is no collection.
  std::vector<ComVariant> Elements() const;

 private:
  DISPID IdOf(std::string_view member) const;
  ComVariant Invoke(std::string_view member, WORD flags, std::span<const VARIANT> arguments) const;
  std::string Subject(std::string_view member) const;

  ComPtr<IDispatch> object_;
  std::string class_name_;
  std::shared_ptr<MemberIds> ids_;
};

}  // namespace nimbrel::com

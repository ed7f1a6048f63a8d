#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "com/com_ptr.h"
#include "com/com_variant.h"

namespace nimbrel::com {

/// The numbers that the objects of one host have for the names of their members, by class and name:
/// asked for once, since the question costs as much as the call.
class MemberIds {
 public:
  /// Raises error 438 for a member that the object does not have.
  DISPID Find(IDispatch& object, const std::string& subject, std::string_view member);

 private:
  std::unordered_map<std::string, DISPID> ids_;
};

/// Calls an object's members by name. Failures are raised as run-time errors.
class Dispatch {
 public:
  /// `class_name` is what errors call the object, and what its members are remembered under; empty:
  /// they are not remembered. `object` must not be null.
  Dispatch(ComPtr<IDispatch> object, std::string class_name, std::shared_ptr<MemberIds> ids);

  IDispatch* object() const { return object_.get(); }
  const std::shared_ptr<MemberIds>& ids() const { return ids_; }

  /// Arguments stand in their order; those that are references (VT_BYREF) are written to.
  ComVariant Get(std::string_view member, std::span<const VARIANT> arguments = {}) const;
  ComVariant Call(std::string_view member, std::span<const VARIANT> arguments = {}) const;
  /// An object as a value is put by reference, and by value if the member takes it so only.
  void Put(std::string_view member, const VARIANT& value,
           std::span<const VARIANT> arguments = {}) const;
  /// The objects of a collection, in its order. Raises error 438 if it is none, error 13 for an
  /// element that is no object.
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

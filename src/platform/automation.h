#pragma once

#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ref.h"
#include "platform/variant.h"

namespace nimbrel::platform {

/// An object of another program, or one that stands in for it, reached by the names of its members
/// alone. Member names have no case. What the members are and which arguments they take is the
/// object's own affair; the caller finds out at run time.
///
/// All operations raise RuntimeError: 438 for a member that the object does not have, 450 for
/// arguments that it does not take, 13 for one of the wrong type, 9 for an index outside a
/// collection, 1004 for anything else that the object refuses.
class AutomationObject : public Object {
 public:
  /// Reads a property, with the arguments of an indexed one: Get("Cells", {5, 2}). A property that
  /// gives a collection takes the collection's index as its argument: Get("Sheets", {1}).
  Variant Get(std::string_view member, std::initializer_list<Variant> arguments = {}) {
    return DoGet(member, {arguments.begin(), arguments.size()});
  }
  /// Sets a property, with the arguments of an indexed one.
  void Put(std::string_view member, const Variant& value,
           std::initializer_list<Variant> arguments = {}) {
    DoPut(member, value, {arguments.begin(), arguments.size()});
  }
  /// Calls a method. The result is empty if it has none.
  Variant Call(std::string_view member, std::initializer_list<Variant> arguments = {}) {
    return DoCall(member, {arguments.begin(), arguments.size()});
  }

  /// As Get and Call, for what gives an object. Raise error 424 if the result is none, and error 91
  /// if it is Nothing.
  Ref<AutomationObject> GetRef(std::string_view member,
                               std::initializer_list<Variant> arguments = {});
  Ref<AutomationObject> CallRef(std::string_view member,
                                std::initializer_list<Variant> arguments = {});

  /// The objects of a collection in its order, as they are at the call: what a loop over the
  /// collection visits, whatever it does to the collection meanwhile. Raises error 438 if this is
  /// no collection.
  std::vector<Ref<AutomationObject>> Items() { return DoItems(); }

 protected:
  virtual Variant DoGet(std::string_view member, std::span<const Variant> arguments) = 0;
  virtual void DoPut(std::string_view member, const Variant& value,
                     std::span<const Variant> arguments) = 0;
  virtual Variant DoCall(std::string_view member, std::span<const Variant> arguments) = 0;
  virtual std::vector<Ref<AutomationObject>> DoItems();
};

/// The automation object in `value`. Raises error 424 if it holds none, error 91 if it is Nothing.
Ref<AutomationObject> ToAutomationObject(const Variant& value);

/// Starts other programs for automation. Handed in by whoever wires the parts together.
class AutomationServers {
 public:
  virtual ~AutomationServers() = default;

  /// A new object of the programmatic identifier ("Excel.Application", any case). Raises error 429
  /// if there is no such program or it does not start.
  virtual Ref<AutomationObject> CreateObject(const std::string& identifier) = 0;
};

}  // namespace nimbrel::platform

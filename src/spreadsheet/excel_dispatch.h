#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "platform/automation.h"
#include "platform/runtime_error.h"
#include "platform/text.h"

namespace nimbrel::spreadsheet {

using Arguments = std::span<const platform::Variant>;

/// Raises error 450 unless there are `least` to `most` arguments.
void RequireArguments(Arguments arguments, std::size_t least, std::size_t most);

/// A member that an object answers to. Reading a property and calling a method are the same, as
/// they are in an expression that reaches an object by name.
template <class Self>
struct Member {
  std::string_view name;
  platform::Variant (Self::*invoke)(Arguments arguments);
  void (Self::*put)(const platform::Variant& value) = nullptr;  // null: cannot be set
};

/// An automation object with a table of members: Self::kClassName and Self::Members().
template <class Self>
class DispatchObject : public platform::AutomationObject {
 protected:
  platform::Variant DoGet(std::string_view name, Arguments arguments) override {
    return (self().*Find(name).invoke)(arguments);
  }
  platform::Variant DoCall(std::string_view name, Arguments arguments) override {
    return (self().*Find(name).invoke)(arguments);
  }
  void DoPut(std::string_view name, const platform::Variant& value, Arguments arguments) override {
    const Member<Self>& member = Find(name);
    if (member.put == nullptr) {
      throw platform::RuntimeError(
          platform::kMemberNotFound,
          std::string(Self::kClassName) + "." + std::string(member.name) + " cannot be set");
    }
    RequireArguments(arguments, 0, 0);
    (self().*member.put)(value);
  }

 private:
  Self& self() { return static_cast<Self&>(*this); }

  static const Member<Self>& Find(std::string_view name) {
    for (const Member<Self>& member : Self::Members()) {
      if (platform::EqualsIgnoreCase(member.name, name)) {
        return member;
      }
    }
    throw platform::RuntimeError(
        platform::kMemberNotFound,
        std::string(Self::kClassName) + " has no member " + std::string(name));
  }
};

}  // namespace nimbrel::spreadsheet

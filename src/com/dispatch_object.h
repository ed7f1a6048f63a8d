#pragma once

#include <string>
#include <vector>

#include "com/dispatch.h"
#include "platform/automation.h"

namespace nimbrel::com {

/// An object of another program, late bound. Errors of the program come as run-time errors with the
/// number and text that it gave; error 462 says that it has ended.
class DispatchObject final : public platform::AutomationObject {
 public:
  /// `program` is what errors call it and every object that it gives. `object` must not be null.
  DispatchObject(ComPtr<IDispatch> object, std::string program);

  IDispatch* dispatch() const { return dispatch_.object(); }

 protected:
  platform::Variant DoGet(std::string_view member,
                          std::span<const platform::Variant> arguments) override;
  void DoPut(std::string_view member, const platform::Variant& value,
             std::span<const platform::Variant> arguments) override;
  platform::Variant DoCall(std::string_view member,
                           std::span<const platform::Variant> arguments) override;
  std::vector<platform::Ref<platform::AutomationObject>> DoItems() override;

 private:
  /// Objects that the program gives, as this one is.
  FromObject Wrap() const;

  std::string program_;
  Dispatch dispatch_;
};

/// The programs of this machine, by their programmatic identifiers.
class ComServers final : public platform::AutomationServers {
 public:
  /// Whether there is such a program. It may still fail to start.
  static bool IsInstalled(const std::string& identifier);

  platform::Ref<platform::AutomationObject> CreateObject(const std::string& identifier) override;
};

/// A new object of a programmatic identifier. Raises error 429 if there is none.
ComPtr<IDispatch> CreateByIdentifier(const std::string& identifier);

}  // namespace nimbrel::com

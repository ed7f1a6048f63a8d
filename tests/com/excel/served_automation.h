#pragma once

#include <cstdint>
#include <string>

#include "com/com_object.h"
#include "platform/automation.h"

namespace nimbrel::com {

/// Offers an automation object of this program to others, who call its members by name.
ComPtr<IDispatch> ServeAutomation(const platform::Ref<platform::AutomationObject>& object);

/// Refuses the next `count` calls of all objects that are offered, as a program does that has
/// something else to do; calls of the member `but` are taken all the same.
void RefuseCalls(std::int32_t count, const std::string& but);

/// As Get and Call, with as many arguments as there are.
platform::Variant GetFrom(platform::AutomationObject& object, std::string_view member,
                          std::span<const platform::Variant> arguments);
platform::Variant CallOn(platform::AutomationObject& object, std::string_view member,
                         std::span<const platform::Variant> arguments);
void PutTo(platform::AutomationObject& object, std::string_view member,
           const platform::Variant& value, std::span<const platform::Variant> arguments);

}  // namespace nimbrel::com

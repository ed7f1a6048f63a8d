#include "platform/automation.h"

#include "platform/runtime_error.h"

namespace nimbrel::platform {

Ref<AutomationObject> AutomationObject::GetRef(std::string_view member,
                                               std::initializer_list<Variant> arguments) {
  return ToAutomationObject(Get(member, arguments));
}

Ref<AutomationObject> AutomationObject::CallRef(std::string_view member,
                                                std::initializer_list<Variant> arguments) {
  return ToAutomationObject(Call(member, arguments));
}

std::vector<Ref<AutomationObject>> AutomationObject::DoItems() {
  throw RuntimeError(kMemberNotFound, "The object is no collection");
}

Ref<AutomationObject> ToAutomationObject(const Variant& value) {
  const auto* object = value.Get<Ref<Object>>();
  if (object == nullptr) {
    throw RuntimeError(kObjectRequired, "Object required");
  }
  if (object->IsNothing()) {
    RaiseNothing();
  }
  auto* automation = dynamic_cast<AutomationObject*>(object->get());
  if (automation == nullptr) {
    throw RuntimeError(kObjectRequired, "The object takes no automation");
  }
  return Ref<AutomationObject>(automation);
}

}  // namespace nimbrel::platform

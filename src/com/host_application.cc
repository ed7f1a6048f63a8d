#include "com/host_application.h"

#include <memory>

#include "com/dispatch_object.h"
#include "platform/win/wide_text.h"

namespace nimbrel::com {

HostApplication::HostApplication(const ComPtr<IDispatch>& object, REFCLSID class_id)
    : HostObject(object, "Application", std::make_shared<MemberIds>()),
      events_(object.As<IUnknown>(IID_IUnknown), class_id, dispatch().ids()) {}

Ref<Corvane8::Plan> HostApplication::get_ActivePlan() {
  return FromHost<Ref<Corvane8::Plan>>(*dispatch().Get("ActivePlan").get(), dispatch().ids());
}

std::string HostApplication::get_Path() {
  return FromHost<std::string>(*dispatch().Get("Path").get(), dispatch().ids());
}

Long HostApplication::get_hWnd() {
  return FromHost<Long>(*dispatch().Get("hWnd").get(), dispatch().ids());
}

Ref<Corvane8::Application> CreateHostApplication(const std::string& identifier) {
  const ComPtr<IDispatch> object = CreateByIdentifier(identifier);
  CLSID class_id = {};
  CLSIDFromProgID(platform::ToWide(identifier).c_str(), &class_id);
  return platform::MakeRef<HostApplication>(object, class_id);
}

}  // namespace nimbrel::com

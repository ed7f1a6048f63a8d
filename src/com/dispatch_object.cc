#include "com/dispatch_object.h"

#include <utility>

#include "com/com_error.h"
#include "platform/win/wide_text.h"

namespace nimbrel::com {
namespace {

using platform::AutomationObject;
using platform::Object;
using platform::Ref;
using platform::Variant;

ComPtr<IDispatch> ToDispatch(const Ref<Object>& object) {
  const auto* ours = dynamic_cast<const DispatchObject*>(object.get());
  if (ours == nullptr) {
    throw platform::RuntimeError(platform::kTypeMismatch,
                                 "Type mismatch: the object is of no other program");
  }
  return ComPtr<IDispatch>(ours->dispatch());
}

/// Arguments as other programs take them, for as long as this lives.
class Arguments {
 public:
  explicit Arguments(std::span<const Variant> values) {
    for (const Variant& value : values) {
      held_.push_back(ToComVariant(value, ToDispatch));
      plain_.push_back(*held_.back().get());
    }
  }
  std::span<const VARIANT> plain() const { return plain_; }

 private:
  std::vector<ComVariant> held_;
  std::vector<VARIANT> plain_;
};

}  // namespace

DispatchObject::DispatchObject(ComPtr<IDispatch> object, std::string program)
    : program_(std::move(program)), dispatch_(std::move(object), program_, nullptr) {}

FromObject DispatchObject::Wrap() const {
  return [this](IDispatch* object) -> Ref<Object> {
    if (object == nullptr) {
      return nullptr;
    }
    return platform::MakeRef<DispatchObject>(ComPtr<IDispatch>(object), program_);
  };
}

Variant DispatchObject::DoGet(std::string_view member, std::span<const Variant> arguments) {
  return FromComVariant(*dispatch_.Get(member, Arguments(arguments).plain()).get(), Wrap());
}

void DispatchObject::DoPut(std::string_view member, const Variant& value,
                           std::span<const Variant> arguments) {
  const ComVariant put = ToComVariant(value, ToDispatch);
  dispatch_.Put(member, *put.get(), Arguments(arguments).plain());
}

Variant DispatchObject::DoCall(std::string_view member, std::span<const Variant> arguments) {
  return FromComVariant(*dispatch_.Call(member, Arguments(arguments).plain()).get(), Wrap());
}

std::vector<Ref<AutomationObject>> DispatchObject::DoItems() {
  std::vector<Ref<AutomationObject>> items;
  for (const ComVariant& element : dispatch_.Elements()) {
    items.push_back(platform::ToAutomationObject(FromComVariant(*element.get(), Wrap())));
  }
  return items;
}

bool ComServers::IsInstalled(const std::string& identifier) {
  CLSID id;
  return SUCCEEDED(CLSIDFromProgID(platform::ToWide(identifier).c_str(), &id));
}

Ref<AutomationObject> ComServers::CreateObject(const std::string& identifier) {
  return platform::MakeRef<DispatchObject>(CreateByIdentifier(identifier),
                                           identifier.substr(0, identifier.find('.')));
}

ComPtr<IDispatch> CreateByIdentifier(const std::string& identifier) {
  CLSID id;
  HRESULT result = CLSIDFromProgID(platform::ToWide(identifier).c_str(), &id);
  ComPtr<IDispatch> object;
  if (SUCCEEDED(result)) {
    result = WhenNotBusy([&] {
      return CoCreateInstance(id, nullptr, CLSCTX_SERVER, IID_IDispatch, object.ReceiveVoid());
    });
  }
  if (FAILED(result)) {
    throw platform::RuntimeError(platform::kCannotCreateObject,
                                 "Cannot create the object " + identifier);
  }
  return object;
}

}  // namespace nimbrel::com

#include "com/host_objects.h"

#include <utility>

namespace nimbrel::com {

ComPtr<IDispatch> ObjectOf(const VARIANT& value) {
  ComVariant direct;
  if (FAILED(VariantCopyInd(direct.get(), const_cast<VARIANT*>(&value))) ||
      (direct.type() != VT_DISPATCH && direct.type() != VT_UNKNOWN)) {
    throw platform::RuntimeError(platform::kObjectRequired, "Object required");
  }
  if (direct.get()->punkVal == nullptr) {
    return nullptr;
  }
  auto object = ComPtr<IUnknown>(direct.get()->punkVal).As<IDispatch>(IID_IDispatch);
  if (!object) {
    throw platform::RuntimeError(platform::kTypeMismatch,
                                 "Type mismatch: an object without members");
  }
  return object;
}

std::vector<Ref<Corvane8::Task>> HostTask::get_Children() {
  ComPtr<IDispatch> children = ObjectOf(*dispatch().Get("Children").get());
  if (!children) {
    throw platform::RuntimeError(platform::kTypeMismatch, "Task.Children: no collection");
  }
  return ElementsOf<Corvane8::Task>(Dispatch(std::move(children), "Children", dispatch().ids()));
}

}  // namespace nimbrel::com

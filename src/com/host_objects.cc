#include "com/host_objects.h"

namespace nimbrel::com {

std::vector<Ref<Corvane8::Task>> HostTask::get_Children() {
  const ComVariant children = dispatch().Get("Children");
  if (children.type() != VT_DISPATCH || children.get()->pdispVal == nullptr) {
    throw platform::RuntimeError(platform::kTypeMismatch, "Task.Children: no collection");
  }
  return ElementsOf<Corvane8::Task>(
      Dispatch(ComPtr<IDispatch>(children.get()->pdispVal), "Children", dispatch().ids()));
}

}  // namespace nimbrel::com

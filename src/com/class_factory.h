#pragma once

#include <functional>
#include <utility>

#include "com/com_error.h"
#include "com/com_object.h"

namespace nimbrel::com {

/// Makes objects of one class by `make`, whose errors go to the caller.
class ClassFactory final : public ComObject<IClassFactory> {
 public:
  using Make = std::function<ComPtr<IUnknown>()>;
  explicit ClassFactory(Make make) : make_(std::move(make)) {}

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID id, void** object) override {
    if (object == nullptr) {
      return E_POINTER;
    }
    *object = nullptr;
    if (outer != nullptr) {
      return CLASS_E_NOAGGREGATION;
    }
    ComPtr<IUnknown> made;
    const HRESULT result = Guarded([&] { made = make_(); }, LeaveErrorInfo);
    return FAILED(result) ? result : made->QueryInterface(id, object);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    if (lock != FALSE) {
      Module::Enter();
    } else {
      Module::Leave();
    }
    return S_OK;
  }

 private:
  void* Find(REFIID id) override {
    return id == IID_IUnknown || id == IID_IClassFactory ? this : nullptr;
  }

  Make make_;
};

}  // namespace nimbrel::com

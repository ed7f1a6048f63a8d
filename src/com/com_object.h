#pragma once

#include <atomic>
#include <cstdint>

#include "com/com_ptr.h"

namespace nimbrel::com {

/// COM objects of this program or DLL that are alive, and locks on it: what keeps it in memory.
class Module {
 public:
  static void Enter() { ++count_; }
  static void Leave() {
    if (--count_ == resting_ && at_rest_ != nullptr) {
      at_rest_();
    }
  }
  static std::int32_t count() { return count_; }
  /// Calls `at_rest` whenever the last one goes but for those that there are now.
  static void WhenAtRest(void (*at_rest)()) {
    resting_ = count_;
    at_rest_ = at_rest;
  }

 private:
  static inline void (*at_rest_)() = nullptr;
  static inline std::int32_t resting_ = 0;
  static inline std::atomic<std::int32_t> count_{0};
};

/// A COM object with the interfaces `Interfaces`: counts its references, and itself among the
/// objects of the module. `Derived` says which interface has which identifier, in
/// `void* Find(REFIID id)`: null for one that it does not have. Made with one reference.
template <class... Interfaces>
class ComObject : public Interfaces... {
 public:
  ComObject() { Module::Enter(); }
  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    if (object == nullptr) {
      return E_POINTER;
    }
    *object = Find(id);
    if (*object == nullptr) {
      return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) {
      delete this;
    }
    return left;
  }

 protected:
  virtual ~ComObject() { Module::Leave(); }
  virtual void* Find(REFIID id) = 0;

 private:
  std::atomic<ULONG> references_{1};
};

/// Makes a COM object and the first reference to it.
template <class T, class... Args>
ComPtr<T> MakeCom(Args&&... args) {
  return ComPtr<T>::Adopt(new T(std::forward<Args>(args)...));
}

}  // namespace nimbrel::com

#pragma once

#include <utility>

#include "platform/win/win_api.h"

namespace nimbrel::com {

/// Set once a DLL is leaving its process. References are then abandoned, not released: the objects
/// of other programs may be gone already, and no call to them is allowed any more.
inline bool g_references_abandoned = false;

/// A reference to a COM object, or null. Must be used on the apartment that it was made on.
template <class T>
class ComPtr {
 public:
  ComPtr() noexcept = default;
  ComPtr(std::nullptr_t) noexcept {}  // NOLINT(google-explicit-constructor): null converts
  /// Shares the object.
  explicit ComPtr(T* object) noexcept : object_(object) { Acquire(); }
  ComPtr(const ComPtr& other) noexcept : object_(other.object_) { Acquire(); }
  ComPtr(ComPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  ComPtr& operator=(ComPtr other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~ComPtr() { Drop(); }

  /// Takes over a reference that the caller holds.
  static ComPtr Adopt(T* object) noexcept {
    ComPtr adopted;
    adopted.object_ = object;
    return adopted;
  }

  T* get() const noexcept { return object_; }
  T* operator->() const noexcept { return object_; }
  explicit operator bool() const noexcept { return object_ != nullptr; }

  /// Where an operation puts the reference that it hands out; what was held before is let go.
  T** Receive() noexcept {
    Drop();
    object_ = nullptr;
    return &object_;
  }
  void** ReceiveVoid() noexcept { return reinterpret_cast<void**>(Receive()); }
  /// Hands the reference to the caller.
  T* Detach() noexcept { return std::exchange(object_, nullptr); }

  /// The object's interface `id`, null if it has none.
  template <class U>
  ComPtr<U> As(REFIID id) const noexcept {
    ComPtr<U> other;
    if (object_ != nullptr && FAILED(object_->QueryInterface(id, other.ReceiveVoid()))) {
      return nullptr;
    }
    return other;
  }

 private:
  void Acquire() const noexcept {
    if (object_ != nullptr) {
      object_->AddRef();
    }
  }
  void Drop() const noexcept {
    if (object_ != nullptr && !g_references_abandoned) {
      object_->Release();
    }
  }

  T* object_ = nullptr;
};

}  // namespace nimbrel::com

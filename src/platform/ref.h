#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "platform/runtime_error.h"

namespace nimbrel::platform {

/// Base of every shared object: counts the references to it and ends its life with the last one.
///
/// The count is not atomic. Objects belong to the thread that made them; parallel work is done by
/// processes, each with objects of its own.
class Object {
 public:
  Object() = default;
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;

  void AddRef() const noexcept { ++references_; }
  void Release() const noexcept {
    if (--references_ == 0) {
      OnLastRelease();
    }
  }

 protected:
  virtual ~Object() = default;

  /// Called when the last reference is let go. An object that lives inside another one overrides
  /// this to do nothing.
  virtual void OnLastRelease() const noexcept { delete this; }

 private:
  mutable std::uint32_t references_ = 0;
};

/// A reference to a shared object, or Nothing. Using Nothing raises error 91.
template <class T>
class Ref {
 public:
  Ref() noexcept = default;
  Ref(std::nullptr_t) noexcept {}  // NOLINT(google-explicit-constructor): Nothing converts
  /// Shares `object`, which may be null and must derive from Object.
  explicit Ref(T* object) noexcept : object_(object) { Acquire(); }
  Ref(const Ref& other) noexcept : object_(other.object_) { Acquire(); }
  Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
  Ref(const Ref<U>& other) noexcept  // NOLINT(google-explicit-constructor): as the pointers do
      : object_(other.get()) {
    Acquire();
  }
  ~Ref() { Drop(); }

  // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): the copy keeps the object alive
  Ref& operator=(const Ref& other) noexcept {
    Ref(other).swap(*this);
    return *this;
  }
  Ref& operator=(Ref&& other) noexcept {
    Ref(std::move(other)).swap(*this);
    return *this;
  }

  void swap(Ref& other) noexcept { std::swap(object_, other.object_); }

  /// The object, or null for Nothing. The reference keeps its share.
  T* get() const noexcept { return object_; }
  bool IsNothing() const noexcept { return object_ == nullptr; }
  explicit operator bool() const noexcept { return object_ != nullptr; }

  /// Raises error 91 on Nothing.
  T* operator->() const {
    if (object_ == nullptr) {
      RaiseNothing();
    }
    return object_;
  }
  /// Raises error 91 on Nothing.
  T& operator*() const { return *operator->(); }

  friend bool operator==(const Ref& a, const Ref& b) noexcept { return a.object_ == b.object_; }

 private:
  void Acquire() const noexcept {
    if (object_ != nullptr) {
      object_->AddRef();
    }
  }
  void Drop() noexcept {
    if (object_ != nullptr) {
      object_->Release();
    }
  }

  T* object_ = nullptr;
};

/// Makes an object and the first reference to it.
template <class T, class... Args>
Ref<T> MakeRef(Args&&... args) {
  return Ref<T>(new T(std::forward<Args>(args)...));
}

}  // namespace nimbrel::platform

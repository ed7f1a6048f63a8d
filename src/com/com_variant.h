#pragma once

#include <functional>

#include "com/com_ptr.h"
#include "platform/variant.h"

namespace nimbrel::com {

/// A VARIANT that frees what it holds.
class ComVariant {
 public:
  ComVariant() noexcept { VariantInit(&value_); }
  ComVariant(ComVariant&& other) noexcept : ComVariant() { std::swap(value_, other.value_); }
  ComVariant& operator=(ComVariant&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  ComVariant(const ComVariant&) = delete;
  ComVariant& operator=(const ComVariant&) = delete;
  ~ComVariant() {
    if (!g_references_abandoned) {
      VariantClear(&value_);
    }
  }

  static ComVariant Of(bool value);
  static ComVariant Of(std::int32_t value);
  static ComVariant Of(double value);
  static ComVariant Of(platform::Date value);
  static ComVariant Of(std::string_view value);
  /// Shares the object; null is Nothing.
  static ComVariant Of(IDispatch* object);

  VARIANT* get() noexcept { return &value_; }
  const VARIANT* get() const noexcept { return &value_; }
  VARTYPE type() const noexcept { return value_.vt; }
  /// Hands what it holds over.
  VARIANT Detach() noexcept;

 private:
  VARIANT value_{};
};

/// Turns an object of another program into one of ours. The argument may be null.
using FromObject = std::function<platform::Ref<platform::Object>(IDispatch* object)>;
/// The other way; raises error 13 for what cannot leave.
using ToObject = std::function<ComPtr<IDispatch>(const platform::Ref<platform::Object>& object)>;

/// A value as other programs have it.
ComVariant ToComVariant(const platform::Variant& value, const ToObject& to_object);

/// The value of a VARIANT, which may lie elsewhere (VT_BYREF). Numbers of all kinds become Longs or
/// Doubles, whichever holds them; Null is empty, as a missing argument is. Raises error 13 for what
/// has no equal here: arrays, error values.
platform::Variant FromComVariant(const VARIANT& value, const FromObject& from_object);

}  // namespace nimbrel::com

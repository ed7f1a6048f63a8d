#include "com/com_variant.h"

#include <string>
#include <utility>

#include "com/com_text.h"
#include "platform/runtime_error.h"

namespace nimbrel::com {
namespace {

using platform::RuntimeError;
using platform::Variant;

[[noreturn]] void RaiseMismatch(VARTYPE type) {
  throw RuntimeError(platform::kTypeMismatch,
                     "Type mismatch: a value of kind " + std::to_string(type));
}

/// `value` as the kind `type`, by the rules of automation.
VARIANT Changed(const VARIANT& value, VARTYPE type) {
  VARIANT changed;
  VariantInit(&changed);
  if (FAILED(VariantChangeType(&changed, const_cast<VARIANT*>(&value), 0, type))) {
    RaiseMismatch(value.vt);
  }
  return changed;
}

Variant Object(IUnknown* unknown, const FromObject& from_object) {
  ComPtr<IDispatch> object;
  if (unknown != nullptr) {
    object = ComPtr<IUnknown>(unknown).As<IDispatch>(IID_IDispatch);
    if (!object) {
      RaiseMismatch(VT_UNKNOWN);
    }
  }
  return from_object(object.get());
}

}  // namespace

ComVariant ComVariant::Of(bool value) {
  ComVariant made;
  made.value_.vt = VT_BOOL;
  made.value_.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
  return made;
}

ComVariant ComVariant::Of(std::int32_t value) {
  ComVariant made;
  made.value_.vt = VT_I4;
  made.value_.lVal = value;
  return made;
}

ComVariant ComVariant::Of(double value) {
  ComVariant made;
  made.value_.vt = VT_R8;
  made.value_.dblVal = value;
  return made;
}

ComVariant ComVariant::Of(platform::Date value) {
  ComVariant made;
  made.value_.vt = VT_DATE;
  made.value_.date = value.serial;
  return made;
}

ComVariant ComVariant::Of(std::string_view value) {
  ComVariant made;
  made.value_.vt = VT_BSTR;
  made.value_.bstrVal = MakeBstr(value);
  return made;
}

ComVariant ComVariant::Of(IDispatch* object) {
  ComVariant made;
  made.value_.vt = VT_DISPATCH;
  made.value_.pdispVal = ComPtr<IDispatch>(object).Detach();
  return made;
}

VARIANT ComVariant::Detach() noexcept {
  const VARIANT held = value_;
  VariantInit(&value_);
  return held;
}

ComVariant ToComVariant(const Variant& value, const ToObject& to_object) {
  if (const auto* boolean = value.Get<bool>()) {
    return ComVariant::Of(*boolean);
  }
  if (const auto* number = value.Get<std::int32_t>()) {
    return ComVariant::Of(*number);
  }
  if (const auto* number = value.Get<double>()) {
    return ComVariant::Of(*number);
  }
  if (const auto* date = value.Get<platform::Date>()) {
    return ComVariant::Of(*date);
  }
  if (const auto* text = value.Get<std::string>()) {
    return ComVariant::Of(std::string_view(*text));
  }
  if (const auto* object = value.Get<platform::Ref<platform::Object>>()) {
    return ComVariant::Of(object->IsNothing() ? nullptr : to_object(*object).get());
  }
  return {};
}

Variant FromComVariant(const VARIANT& value, const FromObject& from_object) {
  if ((value.vt & (VT_BYREF | VT_ARRAY)) == VT_BYREF) {
    ComVariant direct;
    if (FAILED(VariantCopyInd(direct.get(), const_cast<VARIANT*>(&value)))) {
      RaiseMismatch(value.vt);
    }
    return FromComVariant(*direct.get(), from_object);
  }
  switch (value.vt) {
    case VT_EMPTY:
    case VT_NULL:
      return {};
    case VT_ERROR:
      if (value.scode != DISP_E_PARAMNOTFOUND) {
        RaiseMismatch(value.vt);
      }
      return {};
    case VT_BOOL:
      return value.boolVal != VARIANT_FALSE;
    case VT_I1:
    case VT_I2:
    case VT_I4:
    case VT_INT:
    case VT_UI1:
    case VT_UI2:
      return static_cast<std::int32_t>(Changed(value, VT_I4).lVal);
    case VT_UI4:
    case VT_UINT:
    case VT_I8:
    case VT_UI8:
    case VT_R4:
    case VT_R8:
    case VT_CY:
    case VT_DECIMAL:
      return Changed(value, VT_R8).dblVal;
    case VT_DATE:
      return platform::Date{value.date};
    case VT_BSTR:
      return TextOf(value.bstrVal);
    case VT_DISPATCH:
      return Object(value.pdispVal, from_object);
    case VT_UNKNOWN:
      return Object(value.punkVal, from_object);
    default:
      RaiseMismatch(value.vt);
  }
}

}  // namespace nimbrel::com

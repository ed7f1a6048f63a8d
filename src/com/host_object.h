#pragma once

#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "com/com_error.h"
#include "com/com_text.h"
#include "com/dispatch.h"
#include "host/corvane8.h"
#include "platform/locale.h"
#include "platform/runtime_error.h"

/// What the classes that stand for objects of the host are made of.
namespace nimbrel::com {

/// The part of such an object that calls the host's one.
class HostObject {
 public:
  HostObject(ComPtr<IDispatch> object, std::string class_name, std::shared_ptr<MemberIds> ids)
      : dispatch_(std::move(object), std::move(class_name), std::move(ids)) {}
  virtual ~HostObject() = default;

  const Dispatch& dispatch() const { return dispatch_; }

 private:
  Dispatch dispatch_;
};

/// The class that stands for `Interface`, in `HostClass<Interface>::type`, with its name in errors.
template <class Interface>
struct HostClass;

/// Stands for an object of the host; null for null.
template <class Interface>
Corvane8::Ref<Interface> MakeHostObject(IDispatch* object, const std::shared_ptr<MemberIds>& ids) {
  if (object == nullptr) {
    return nullptr;
  }
  return platform::MakeRef<typename HostClass<Interface>::type>(ComPtr<IDispatch>(object), ids);
}

template <class T>
struct IsReference : std::false_type {};
template <class T>
struct IsReference<Corvane8::Ref<T>> : std::true_type {
  using Interface = T;
};

/// Arguments as the host takes them.
template <class T>
ComVariant ToHost(const T& value) {
  if constexpr (IsReference<T>::value) {
    if (value.IsNothing()) {
      return ComVariant::Of(static_cast<IDispatch*>(nullptr));
    }
    const auto* object = dynamic_cast<const HostObject*>(value.get());
    if (object == nullptr) {
      throw platform::RuntimeError(platform::kTypeMismatch,
                                   "Type mismatch: the object is not the host's");
    }
    return ComVariant::Of(object->dispatch().object());
  } else if constexpr (std::is_same_v<T, platform::Variant>) {
    return ToComVariant(value, [](const platform::Ref<platform::Object>& object) {
      return ComPtr<IDispatch>(ToHost(object).get()->pdispVal);
    });
  } else {
    return ComVariant::Of(value);
  }
}

/// The object that a value is, which may lie elsewhere (VT_BYREF); null for Nothing. Raises error
/// 424 for what is no object, 13 for one without members.
ComPtr<IDispatch> ObjectOf(const VARIANT& value);

/// The value that the host has given, as the kind that is expected; raises error 13 if it is not
/// and cannot be turned into it, 424 where an object is expected.
template <class Result>
Result FromHost(const VARIANT& value, const std::shared_ptr<MemberIds>& ids) {
  if constexpr (IsReference<Result>::value) {
    return MakeHostObject<typename IsReference<Result>::Interface>(ObjectOf(value).get(), ids);
  } else {
    const platform::Variant given =
        FromComVariant(value, [](IDispatch*) -> platform::Ref<platform::Object> {
          throw platform::RuntimeError(platform::kTypeMismatch, "Type mismatch: an object");
        });
    const platform::Locale& plain = platform::DefaultLocale();
    if constexpr (std::is_same_v<Result, platform::Variant>) {
      return given;
    } else if constexpr (std::is_same_v<Result, bool>) {
      return given.ToBoolean(plain);
    } else if constexpr (std::is_same_v<Result, Corvane8::Long>) {
      return given.ToLong(plain);
    } else if constexpr (std::is_same_v<Result, double>) {
      return given.ToDouble(plain);
    } else if constexpr (std::is_same_v<Result, platform::Date>) {
      return platform::Date{given.ToDouble(plain)};
    } else {
      return given.ToText(plain);
    }
  }
}

/// A place that the host writes a result to, of the kind that its member declares.
template <class Result>
class OutArgument {
 public:
  OutArgument() {
    if constexpr (IsReference<Result>::value) {
      Point(VT_DISPATCH, &place_.get()->pdispVal);
    } else if constexpr (std::is_same_v<Result, Corvane8::Long>) {
      Point(VT_I4, &place_.get()->lVal);
    } else if constexpr (std::is_same_v<Result, platform::Date>) {
      Point(VT_DATE, &place_.get()->date);
    } else if constexpr (std::is_same_v<Result, platform::Variant>) {
      reference_.vt = VT_BYREF | VT_VARIANT;
      reference_.pvarVal = place_.get();
    } else {
      static_assert(std::is_same_v<Result, std::string>);
      Point(VT_BSTR, &place_.get()->bstrVal);
    }
  }
  OutArgument(const OutArgument&) = delete;
  OutArgument& operator=(const OutArgument&) = delete;

  const VARIANT& reference() const { return reference_; }
  const VARIANT& value() const { return *place_.get(); }

 private:
  void Point(VARTYPE type, void* place) {
    place_.get()->vt = type;
    reference_.vt = static_cast<VARTYPE>(VT_BYREF | type);
    reference_.byref = place;
  }

  ComVariant place_;
  VARIANT reference_{};
};

/// Base of the classes: implements `Interface` by calls of the members' names.
template <class Interface>
class Bound : public Interface, public HostObject {
 public:
  Bound(ComPtr<IDispatch> object, const std::shared_ptr<MemberIds>& ids)
      : HostObject(std::move(object), HostClass<Interface>::kName, ids) {}

 protected:
  template <class Result>
  Result Get(std::string_view member) const {
    return FromHost<Result>(*dispatch().Get(member).get(), dispatch().ids());
  }
  template <class Value>
  void Put(std::string_view member, const Value& value) const {
    const ComVariant put = ToHost(value);
    dispatch().Put(member, *put.get());
  }
  template <class... Arguments>
  void Call(std::string_view member, const Arguments&... arguments) const {
    const std::array<ComVariant, sizeof...(Arguments)> held = {ToHost(arguments)...};
    dispatch().Call(member, Plain(held));
  }
  /// Calls a member that hands its result back through its last argument.
  template <class Result, class... Arguments>
  Result CallOut(std::string_view member, const Arguments&... arguments) const {
    const std::array<ComVariant, sizeof...(Arguments)> held = {ToHost(arguments)...};
    const OutArgument<Result> out;
    std::vector<VARIANT> plain = Plain(held);
    plain.push_back(out.reference());
    dispatch().Call(member, plain);
    return FromHost<Result>(out.value(), dispatch().ids());
  }
  template <class Element>
  std::vector<Corvane8::Ref<Element>> ElementsOf(const Dispatch& collection) const {
    std::vector<Corvane8::Ref<Element>> elements;
    for (const ComVariant& element : collection.Elements()) {
      elements.push_back(FromHost<Corvane8::Ref<Element>>(*element.get(), dispatch().ids()));
    }
    return elements;
  }

 private:
  template <class Held>
  static std::vector<VARIANT> Plain(const Held& held) {
    std::vector<VARIANT> plain;
    for (const ComVariant& argument : held) {
      plain.push_back(*argument.get());
    }
    return plain;
  }
};

}  // namespace nimbrel::com

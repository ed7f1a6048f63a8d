#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "com/com_text.h"
#include "com/com_variant.h"
#include "host/corvane8.h"
#include "platform/locale.h"

/// Members of the object library as a table that answers calls by number: each knows its name, its
/// kind, and how to take its arguments from a caller of another program and give back its result.
namespace nimbrel::com::served {

using Corvane8::Long;
using platform::Date;
using platform::Object;
using platform::Ref;
using platform::Variant;

enum class Kind { kGet, kPut, kMethod };

struct Member {
  std::string_view name;
  Kind kind;
  /// Arguments that it takes, the one for its result included.
  std::size_t arguments;
  /// Carries out the call. Arguments stand in their order; a get's result goes to `result`.
  void (*call)(Object& object, std::span<const VARIANT> arguments, VARIANT& result);
};

/// The members of a class, in the order of its interface. Get and put of one value have one number:
/// the place of the name among the different names, from 1.
struct ClassTable {
  std::string_view name;
  std::span<const Member> members;
  /// What the class can be enumerated into; null where it cannot.
  std::vector<ComVariant> (*elements)(Object& object);
  /// Its interface in the object library; null where it has none there.
  const IID* interface_id;
};

/// The table of a class of the object library.
template <class Interface>
const ClassTable& TableOf();

/// Offers an object; null for Nothing.
ComPtr<IDispatch> Serve(const Ref<Object>& object, const ClassTable& table);
/// Offers what a walk over a collection gives.
ComPtr<IDispatch> ServeList(std::vector<Ref<Object>> objects, const ClassTable& table);
/// The object that was offered as `dispatch`; raises error 13 for one of another program.
Ref<Object> Served(IDispatch* dispatch);
/// Objects that are held by others.
std::int32_t ObjectsHeld();

template <class T>
struct ReferenceTo {
  static constexpr bool kIs = false;
};
template <class T>
struct ReferenceTo<Ref<T>> {
  static constexpr bool kIs = true;
  using Interface = T;
};

template <class T>
ComVariant ToCaller(const T& value) {
  if constexpr (ReferenceTo<T>::kIs) {
    return ComVariant::Of(Serve(value, TableOf<typename ReferenceTo<T>::Interface>()).get());
  } else if constexpr (std::is_same_v<T, Variant>) {
    return ToComVariant(value, [](const Ref<Object>&) -> ComPtr<IDispatch> {
      throw platform::RuntimeError(platform::kTypeMismatch, "Type mismatch: an object");
    });
  } else if constexpr (std::is_same_v<T, std::string>) {
    return ComVariant::Of(std::string_view(value));
  } else {
    return ComVariant::Of(value);
  }
}

template <class Element>
ComVariant ToCaller(const std::vector<Ref<Element>>& elements) {
  std::vector<Ref<Object>> objects(elements.begin(), elements.end());
  return ComVariant::Of(ServeList(std::move(objects), TableOf<Element>()).get());
}

template <class T>
T FromCaller(const VARIANT& value) {
  const Variant given = FromComVariant(value, Served);
  const platform::Locale& plain = platform::DefaultLocale();
  if constexpr (ReferenceTo<T>::kIs) {
    using Interface = typename ReferenceTo<T>::Interface;
    const auto* object = given.Get<Ref<Object>>();
    auto* wanted = object == nullptr ? nullptr : dynamic_cast<Interface*>(object->get());
    if (object == nullptr || (wanted == nullptr && !object->IsNothing())) {
      throw platform::RuntimeError(platform::kTypeMismatch, "Type mismatch: no such object");
    }
    return Ref<Interface>(wanted);
  } else if constexpr (std::is_same_v<T, Variant>) {
    return given;
  } else if constexpr (std::is_same_v<T, bool>) {
    return given.ToBoolean(plain);
  } else if constexpr (std::is_same_v<T, Long>) {
    return given.ToLong(plain);
  } else if constexpr (std::is_same_v<T, double>) {
    return given.ToDouble(plain);
  } else if constexpr (std::is_same_v<T, Date>) {
    return Date{given.ToDouble(plain)};
  } else {
    return given.ToText(plain);
  }
}

/// Writes a result to where the caller wants it. Raises error 13 if that is a place for another
/// kind of value.
void WriteOut(const VARIANT& place, ComVariant value);

/// How an argument is kept while the call lasts.
template <class T>
struct Kept {
  using Type = std::remove_cvref_t<T>;
};
template <>
struct Kept<std::string_view> {
  using Type = std::string;
};

template <auto kOperation>
struct Binding;

template <class Interface, class Result, class... Arguments,
          Result (Interface::*kOperation)(Arguments...)>
struct Binding<kOperation> {
  static constexpr std::size_t kTaken = sizeof...(Arguments);
  static constexpr bool kGives = !std::is_void_v<Result>;

  template <std::size_t... kPlaces>
  static Result Invoke(Object& object, [[maybe_unused]] std::span<const VARIANT> arguments,
                       std::index_sequence<kPlaces...> /*places*/) {
    return (dynamic_cast<Interface&>(object).*
            kOperation)(FromCaller<typename Kept<Arguments>::Type>(arguments[kPlaces])...);
  }
  static void Get(Object& object, std::span<const VARIANT> arguments, VARIANT& result) {
    result = ToCaller(Invoke(object, arguments, std::index_sequence_for<Arguments...>())).Detach();
  }
  static void Call(Object& object, std::span<const VARIANT> arguments, VARIANT& /*result*/) {
    if constexpr (kGives) {
      WriteOut(arguments[kTaken],
               ToCaller(Invoke(object, arguments, std::index_sequence_for<Arguments...>())));
    } else {
      Invoke(object, arguments, std::index_sequence_for<Arguments...>());
    }
  }
};

template <auto kOperation>
constexpr Member Get(std::string_view name) {
  return {name, Kind::kGet, 0, Binding<kOperation>::Get};
}
template <auto kOperation>
constexpr Member Put(std::string_view name) {
  return {name, Kind::kPut, 1, Binding<kOperation>::Call};
}
template <auto kOperation>
constexpr Member Method(std::string_view name) {
  using Bound = Binding<kOperation>;
  return {name, Kind::kMethod, Bound::kTaken + (Bound::kGives ? 1 : 0), Bound::Call};
}

}  // namespace nimbrel::com::served

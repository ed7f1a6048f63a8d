#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "engine/objects/session.h"
#include "platform/number.h"
#include "platform/ref.h"
#include "platform/runtime_error.h"
#include "platform/variant.h"

namespace nimbrel::engine {

/// An object of the model that lives in a plan session. While there are references to it, it shares
/// the session, so that the session outlives every object that someone holds; handing it out and
/// letting it go allocates nothing.
template <class Interface>
class Face : public Interface {
 public:
  explicit Face(PlanSession& session) : session_(&session) {}

  /// A reference for whoever asks.
  platform::Ref<Interface> Share() {
    if (keeper_.IsNothing()) {
      keeper_ = platform::Ref<PlanSession>(session_);
    }
    return platform::Ref<Interface>(this);
  }

  PlanSession& session() const { return *session_; }

 protected:
  void OnLastRelease() const noexcept final {
    // With this the session may end, and this object with it.
    const platform::Ref<PlanSession> last = std::move(keeper_);
  }

 private:
  PlanSession* session_;
  mutable platform::Ref<PlanSession> keeper_;  // Nothing while nobody holds this object
};

/// The object of this session behind a reference. Raises error 91 for Nothing and error 5 for an
/// object of another plan or host.
template <class ObjectType, class Interface>
ObjectType& OwnObject(const platform::Ref<Interface>& reference, const PlanSession& session,
                      std::string_view what) {
  auto* object = dynamic_cast<ObjectType*>(&*reference);
  if (object == nullptr || &object->session() != &session) {
    throw platform::RuntimeError(platform::kInvalidProcedureCall,
                                 "The " + std::string(what) + " belongs to another plan");
  }
  return *object;
}

/// The position that a key of a collection means: a text is looked up by `find`, which gives -1 for
/// what is not there; a number counts from 1 in the plan's order. Raises error 5 for a text that is
/// not there, error 9 for a number outside the collection and error 13 for any other value. `what`
/// names an item ("task").
template <class Find>
std::int32_t PositionOfKey(const platform::Variant& key, std::size_t count, std::string_view what,
                           const Find& find) {
  if (const auto* text = key.Get<std::string>()) {
    const std::int32_t position = find(*text);
    if (position < 0) {
      throw platform::RuntimeError(platform::kInvalidProcedureCall,
                                   "There is no " + std::string(what) + " \"" + *text + "\"");
    }
    return position;
  }
  std::int32_t number = 0;
  if (const auto* whole = key.Get<std::int32_t>()) {
    number = *whole;
  } else if (const auto* real = key.Get<double>()) {
    number = platform::ToLong(*real);
  } else {
    throw platform::RuntimeError(platform::kTypeMismatch,
                                 "A key of a " + std::string(what) + " must be a text or a number");
  }
  if (number < 1 || static_cast<std::size_t>(number) > count) {
    throw platform::RuntimeError(platform::kSubscriptOutOfRange,
                                 "There is no " + std::string(what) + " with the number " +
                                     std::to_string(number) + "; there are " +
                                     std::to_string(count));
  }
  return number - 1;
}

}  // namespace nimbrel::engine

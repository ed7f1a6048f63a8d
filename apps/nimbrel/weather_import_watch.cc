#include "nimbrel/weather_import_watch.h"

#include <span>
#include <string_view>
#include <utility>

#include "platform/locale.h"
#include "platform/runtime_error.h"
#include "platform/text.h"
#include "platform/variant.h"

namespace nimbrel::cli {
namespace {

using platform::AutomationObject;
using platform::EqualsIgnoreCase;
using platform::MakeRef;
using platform::Ref;
using platform::Variant;

/// The second cell in a row that is read of it makes it one that was taken.
void Reach(CellWatch& watch, const std::string& sheet, std::int32_t row, std::int32_t column) {
  if (watch.sheet != sheet) {
    watch = CellWatch{.sheet = sheet, .markers = std::move(watch.markers)};
  }
  if (watch.row == row && (watch.taken_rows.empty() || watch.taken_rows.back() != row)) {
    watch.taken_rows.push_back(row);
  }
  watch.row = row;
  watch.column = column;
  watch.is_suspect = true;
}

/// Hands everything on to another object, and notes what is read.
class WatchedObject final : public AutomationObject {
 public:
  WatchedObject(Ref<AutomationObject> object, CellWatch& watch)
      : object_(std::move(object)), watch_(watch) {}

 protected:
  Variant DoGet(std::string_view member, std::span<const Variant> arguments) override {
    if (EqualsIgnoreCase(member, "Cells") && arguments.size() == 2) {
      const platform::Locale& locale = platform::DefaultLocale();
      Reach(watch_, object_->Get("Name").ToText(locale), arguments[0].ToLong(locale),
            arguments[1].ToLong(locale));
    }
    Variant value = Forward(arguments, [&](auto... all) { return object_->Get(member, {all...}); });
    if (EqualsIgnoreCase(member, "Value")) {
      if (watch_.row == 3 && watch_.column == 1) {
        watch_.markers.emplace_back(watch_.sheet, value.ToText(platform::DefaultLocale()));
      }
      watch_.is_suspect = !value.IsEmpty();
    }
    return Watched(std::move(value));
  }
  void DoPut(std::string_view member, const Variant& value,
             std::span<const Variant> arguments) override {
    Forward(arguments, [&](auto... all) {
      object_->Put(member, value, {all...});
      return Variant();
    });
  }
  Variant DoCall(std::string_view member, std::span<const Variant> arguments) override {
    return Watched(
        Forward(arguments, [&](auto... all) { return object_->Call(member, {all...}); }));
  }
  std::vector<Ref<AutomationObject>> DoItems() override {
    std::vector<Ref<AutomationObject>> items = object_->Items();
    for (Ref<AutomationObject>& item : items) {
      item = MakeRef<WatchedObject>(item, watch_);
    }
    return items;
  }

 private:
  /// Up to two arguments: no member that is used has more.
  template <class Action>
  static Variant Forward(std::span<const Variant> arguments, const Action& action) {
    switch (arguments.size()) {
      case 0:
        return action();
      case 1:
        return action(arguments[0]);
      case 2:
        return action(arguments[0], arguments[1]);
      default:
        throw platform::RuntimeError(platform::kWrongNumberOfArguments,
                                     "Wrong number of arguments");
    }
  }
  Variant Watched(Variant value) const {
    const auto* object = value.Get<Ref<platform::Object>>();
    return object == nullptr || object->IsNothing()
               ? value
               : Variant(MakeRef<WatchedObject>(platform::ToAutomationObject(value), watch_));
  }

  Ref<AutomationObject> object_;
  CellWatch& watch_;
};

}  // namespace

Ref<AutomationObject> WatchedServers::CreateObject(const std::string& identifier) {
  return MakeRef<WatchedObject>(servers_.CreateObject(identifier), watch_);
}

}  // namespace nimbrel::cli

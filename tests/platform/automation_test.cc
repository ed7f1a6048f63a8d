#include "platform/automation.h"

#include <gtest/gtest.h>

#include "platform/locale.h"
#include "platform/runtime_error.h"

namespace nimbrel::platform {
namespace {

/// A list of texts, each in an object of its own.
class TextObject : public AutomationObject {
 public:
  explicit TextObject(std::string text) : text_(std::move(text)) {}

 protected:
  Variant DoGet(std::string_view, std::span<const Variant> arguments) override {
    return arguments.empty() ? Variant(text_) : arguments.back();
  }
  void DoPut(std::string_view, const Variant& value, std::span<const Variant>) override {
    text_ = value.ToText(DefaultLocale());
  }
  Variant DoCall(std::string_view, std::span<const Variant>) override { return Variant(); }

 private:
  std::string text_;
};

class PlainObject : public Object {};

std::int32_t ErrorOf(const auto& statement) {
  try {
    statement();
  } catch (const RuntimeError& error) {
    return error.number();
  }
  return 0;
}

TEST(AutomationObject, GetPutAndCallReachTheObject) {
  const auto object = MakeRef<TextObject>("first");
  EXPECT_EQ(object->Get("Value"), Variant("first"));
  object->Put("Value", 5);
  EXPECT_EQ(object->Get("Value"), Variant("5"));
  EXPECT_EQ(object->Get("Cells", {1, "two"}), Variant("two"));
  EXPECT_TRUE(object->Call("Select").IsEmpty());
}

TEST(AutomationObject, AnObjectComesBackFromAVariantAsItself) {
  const auto object = MakeRef<TextObject>("it");
  const Variant value = object;
  EXPECT_FALSE(value.IsEmpty());
  EXPECT_EQ(ToAutomationObject(value).get(), object.get());
  EXPECT_EQ(object->GetRef("Item", {value}).get(), object.get());
}

TEST(AutomationObject, AVariantKeepsItsObjectAlive) {
  Variant value;
  { value = MakeRef<TextObject>("kept"); }
  EXPECT_EQ(ToAutomationObject(value)->Get("Value"), Variant("kept"));
}

TEST(AutomationObject, OnlyAnAutomationObjectIsTakenForOne) {
  EXPECT_EQ(ErrorOf([] { ToAutomationObject(Variant()); }), kObjectRequired);
  EXPECT_EQ(ErrorOf([] { ToAutomationObject("text"); }), kObjectRequired);
  EXPECT_EQ(ErrorOf([] { ToAutomationObject(MakeRef<PlainObject>()); }), kObjectRequired);
  EXPECT_EQ(ErrorOf([] { ToAutomationObject(Ref<TextObject>()); }), kObjectNotSet);
  const auto object = MakeRef<TextObject>("text");
  EXPECT_EQ(ErrorOf([&] { object->GetRef("Value"); }), kObjectRequired);
  EXPECT_EQ(ErrorOf([&] { object->CallRef("Select"); }), kObjectRequired);
}

TEST(AutomationObject, WhatIsNoCollectionHasNoItems) {
  const auto object = MakeRef<TextObject>("text");
  EXPECT_EQ(ErrorOf([&] { object->Items(); }), kMemberNotFound);
}

TEST(Variant, AnObjectIsNoValue) {
  const Locale& locale = DefaultLocale();
  const Variant object = MakeRef<PlainObject>();
  EXPECT_EQ(ErrorOf([&] { object.ToText(locale); }), kMemberNotFound);
  EXPECT_EQ(ErrorOf([&] { object.ToDouble(locale); }), kMemberNotFound);
  EXPECT_EQ(ErrorOf([&] { object.ToDate(locale); }), kMemberNotFound);
  EXPECT_EQ(ErrorOf([&] { object.ToLong(locale); }), kMemberNotFound);
  EXPECT_EQ(ErrorOf([&] { object.ToBoolean(locale); }), kMemberNotFound);
  const Variant nothing = Ref<PlainObject>();
  EXPECT_EQ(ErrorOf([&] { nothing.ToText(locale); }), kObjectNotSet);
  EXPECT_EQ(ErrorOf([&] { nothing.ToDouble(locale); }), kObjectNotSet);
}

TEST(Variant, ObjectsAreEqualIfTheyAreTheSame) {
  const auto object = MakeRef<PlainObject>();
  EXPECT_EQ(Variant(object), Variant(object));
  EXPECT_NE(Variant(object), Variant(MakeRef<PlainObject>()));
  EXPECT_NE(Variant(Ref<PlainObject>()), Variant());
}

}  // namespace
}  // namespace nimbrel::platform

// Events as hosts may deliver them, and objects that are let go while they are called.

#include <nimbrel.h>

#include <memory>
#include <string>
#include <vector>

#include "com/dual_object.h"
#include "com/event_source.h"
#include "com/host_objects.h"
#include "tests/com/bare_object.h"
#include "tests/com/com_test.h"
#include "tests/com/connectable_object.h"

namespace nimbrel::com {
namespace {

/// Takes down which events have come, and the objects and numbers that came with them.
class NotingReceiver final : public Corvane8::ApplicationEvents {
 public:
  using Plan = Ref<Corvane8::Plan>;
  void PlanBeforeRiskAnalysis(const Plan& plan) override { Note(1, plan, 0); }
  void PlanBeforeRiskIteration(const Plan& plan, Corvane8::Long iteration) override {
    Note(2, plan, iteration);
  }
  void PlanAfterRiskIteration(const Plan& plan, Corvane8::Long iteration) override {
    Note(3, plan, iteration);
  }
  void PlanAfterRiskAnalysis(const Plan& plan) override { Note(4, plan, 0); }

  struct Event {
    int number;
    IDispatch* plan;
    std::int32_t iteration;
    bool operator==(const Event&) const = default;
  };
  std::vector<Event> events;

 private:
  void Note(int number, const Plan& plan, std::int32_t iteration) {
    const auto* object = dynamic_cast<const HostObject*>(plan.get());
    events.push_back(
        {number, object == nullptr ? nullptr : object->dispatch().object(), iteration});
  }
};

VARIANT Given(VARTYPE type, void* place) {
  VARIANT value = {};
  value.vt = type;
  value.byref = place;
  return value;
}

/// A receiver that has subscribed to a host in this process. The registered class numbers the
/// events from 1 to 4.
class EventDelivery : public ::testing::Test {
 protected:
  EventDelivery() {
    CLSID id = {};
    EXPECT_EQ(CLSIDFromProgID(L"Corvane8.Application", &id), S_OK);
    source_ = std::make_unique<EventSource>(host_.As<IUnknown>(IID_IUnknown), id,
                                            std::make_shared<MemberIds>());
    source_->Subscribe(&receiver_);
  }
  ~EventDelivery() override { source_->Unsubscribe(&receiver_); }

  /// `arguments` stand from the last to the first.
  HRESULT Raise(DISPID event, std::vector<VARIANT> arguments) {
    DISPPARAMS parameters = {arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
    EXCEPINFO exception = {};
    const HRESULT result = host_->sink()->Invoke(event, IID_NULL, 0, DISPATCH_METHOD, &parameters,
                                                 nullptr, &exception, nullptr);
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrDescription);
    return result;
  }

  ComPtr<ConnectableObject> host_ = MakeCom<ConnectableObject>();
  ComPtr<BareObject> plan_object_ = MakeCom<BareObject>();
  IDispatch* plan_ = plan_object_.get();
  VARIANT plan_value_ = Given(VT_DISPATCH, plan_);
  LONG seventh_ = 7;
  VARIANT iteration_value_ = *ComVariant::Of(std::int32_t{7}).get();
  std::unique_ptr<EventSource> source_;
  NotingReceiver receiver_;
};

using Events = std::vector<NotingReceiver::Event>;

TEST_F(EventDelivery, EachNumberIsItsEvent) {
  EXPECT_EQ(Raise(1, {plan_value_}), S_OK);
  EXPECT_EQ(Raise(2, {iteration_value_, plan_value_}), S_OK);
  EXPECT_EQ(Raise(3, {iteration_value_, plan_value_}), S_OK);
  EXPECT_EQ(Raise(4, {plan_value_}), S_OK);
  EXPECT_EQ(receiver_.events, (Events{{1, plan_, 0}, {2, plan_, 7}, {3, plan_, 7}, {4, plan_, 0}}));
}

TEST_F(EventDelivery, OtherEventsOfTheHostAreNoFailures) {
  EXPECT_EQ(Raise(5, {plan_value_}), S_OK);
  EXPECT_EQ(Raise(0, {}), S_OK);
  EXPECT_EQ(Raise(-600, {iteration_value_, iteration_value_, plan_value_}), S_OK);
  EXPECT_TRUE(receiver_.events.empty());
}

TEST_F(EventDelivery, AKnownEventWithAnotherCountOfArgumentsIsRefused) {
  EXPECT_EQ(Raise(1, {}), DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(Raise(1, {iteration_value_, plan_value_}), DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(Raise(2, {plan_value_}), DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(Raise(4, {iteration_value_, plan_value_}), DISP_E_BADPARAMCOUNT);
  EXPECT_TRUE(receiver_.events.empty());
}

TEST_F(EventDelivery, ArgumentsMayLieElsewhere) {
  const VARIANT plan_there = Given(VT_BYREF | VT_DISPATCH, &plan_);
  const VARIANT iteration_there = Given(VT_BYREF | VT_I4, &seventh_);
  const VARIANT plan_variant = Given(VT_BYREF | VT_VARIANT, &plan_value_);
  const VARIANT iteration_variant = Given(VT_BYREF | VT_VARIANT, &iteration_value_);
  EXPECT_EQ(Raise(1, {plan_there}), S_OK);
  EXPECT_EQ(Raise(2, {iteration_there, plan_there}), S_OK);
  EXPECT_EQ(Raise(3, {iteration_variant, plan_variant}), S_OK);
  EXPECT_EQ(Raise(4, {plan_variant}), S_OK);
  EXPECT_EQ(receiver_.events, (Events{{1, plan_, 0}, {2, plan_, 7}, {3, plan_, 7}, {4, plan_, 0}}));
}

TEST_F(EventDelivery, WhatIsNoPlanIsAnError) {
  EXPECT_EQ(Raise(1, {iteration_value_}), DISP_E_EXCEPTION);
  EXPECT_TRUE(receiver_.events.empty());
}

TEST_F(EventDelivery, AHostThatKeepsTheSubscriberReachesNobodyAfterTheEnd) {
  source_->Unsubscribe(&receiver_);
  EXPECT_EQ(Raise(1, {plan_value_}), S_OK);
  EXPECT_TRUE(receiver_.events.empty());
}

/// Lets the last reference to itself go in the middle of its operation.
class LettingGo final : public DualObject<_clsNimbrel> {
 public:
  LettingGo(ComPtr<ITypeInfo> info, ComPtr<_clsNimbrel>& last, bool& gone)
      : DualObject(IID__clsNimbrel, std::move(info)), last_(last), gone_(gone) {}

  HRESULT STDMETHODCALLTYPE Main() override {
    // These outlive the object.
    const bool& gone = gone_;
    last_ = nullptr;
    return gone ? E_UNEXPECTED : S_OK;
  }
  HRESULT STDMETHODCALLTYPE LaunchStartCorvane() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE LaunchStopCorvane() override { return E_NOTIMPL; }

 private:
  ~LettingGo() override { gone_ = true; }

  ComPtr<_clsNimbrel>& last_;
  bool& gone_;
};

TEST(DualObjects, StayWhileTheyAreCalledByName) {
  ComPtr<ITypeLib> library;
  ASSERT_EQ(LoadTypeLibEx(ProgramBeside(L"Nimbrel.dll").c_str(), REGKIND_NONE, library.Receive()),
            S_OK);
  ComPtr<ITypeInfo> info;
  ASSERT_EQ(library->GetTypeInfoOfGuid(IID__clsNimbrel, info.Receive()), S_OK);
  bool gone = false;
  ComPtr<_clsNimbrel> last;
  auto made = MakeCom<LettingGo>(info, last, gone);
  IDispatch* const object = made.get();
  last = ComPtr<_clsNimbrel>::Adopt(made.Detach());
  DISPPARAMS none = {};
  EXPECT_EQ(object->Invoke(1, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
            S_OK);
  EXPECT_TRUE(gone) << "it goes when the call is over";
}

}  // namespace
}  // namespace nimbrel::com

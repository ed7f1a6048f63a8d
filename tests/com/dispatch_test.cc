// Calls of the members of other programs' objects, as those programs may answer them.

#include "com/dispatch.h"

#include <gmock/gmock.h>

#include <set>

#include "com/com_text.h"
#include "com/host_objects.h"
#include "tests/com/bare_object.h"
#include "tests/com/com_test.h"

namespace nimbrel::com {
namespace {

using ::testing::ElementsAre;

/// Answers every name with the number 1, and writes down how it is called.
class NotingObject : public BareObject {
 public:
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID /*id*/, LPOLESTR* /*names*/, UINT /*count*/,
                                          LCID locale, DISPID* ids) override {
    locales_.insert(locale);
    ids[0] = 1;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID /*id*/, REFIID /*interface_id*/, LCID locale, WORD flags,
                                   DISPPARAMS* /*parameters*/, VARIANT* result,
                                   EXCEPINFO* exception, UINT* /*wrong*/) override {
    locales_.insert(locale);
    flags_.push_back(flags);
    return Answer(flags, result, exception);
  }

  const std::set<LCID>& locales() const { return locales_; }
  const std::vector<WORD>& flags() const { return flags_; }

 protected:
  virtual HRESULT Answer(WORD /*flags*/, VARIANT* /*result*/, EXCEPINFO* /*exception*/) {
    return S_OK;
  }

 private:
  std::set<LCID> locales_;
  std::vector<WORD> flags_;
};

/// A collection of one element that never says which was the last one, and fails when it is asked
/// once more than it has to be.
class EndlessObject final : public NotingObject {
  class Walk final : public ComObject<IEnumVARIANT> {
   public:
    HRESULT STDMETHODCALLTYPE Next(ULONG /*count*/, VARIANT* elements, ULONG* fetched) override {
      ++asked_;
      elements[0].vt = VT_EMPTY;
      *fetched = asked_ == 1 ? 1 : 0;
      return asked_ > 2 ? E_UNEXPECTED : S_OK;
    }
    HRESULT STDMETHODCALLTYPE Skip(ULONG /*count*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reset() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT** /*copy*/) override { return E_NOTIMPL; }

   private:
    void* Find(REFIID id) override {
      return id == IID_IUnknown || id == IID_IEnumVARIANT ? this : nullptr;
    }

    int asked_ = 0;
  };

  HRESULT Answer(WORD /*flags*/, VARIANT* result, EXCEPINFO* /*exception*/) override {
    result->vt = VT_UNKNOWN;
    result->punkVal = MakeCom<Walk>().Detach();
    return S_OK;
  }
};

/// Takes objects as values only.
class ByValueObject final : public NotingObject {
  HRESULT Answer(WORD flags, VARIANT* /*result*/, EXCEPINFO* /*exception*/) override {
    return flags == DISPATCH_PROPERTYPUTREF ? DISP_E_MEMBERNOTFOUND : S_OK;
  }
};

/// Has something else to do for its first calls.
class BusyObject final : public NotingObject {
 public:
  explicit BusyObject(std::vector<HRESULT> refusals) : refusals_(std::move(refusals)) {}

 private:
  HRESULT Answer(WORD /*flags*/, VARIANT* /*result*/, EXCEPINFO* /*exception*/) override {
    const std::size_t made = flags().size();
    return made <= refusals_.size() ? refusals_[made - 1] : S_OK;
  }

  std::vector<HRESULT> refusals_;
};

/// Gives its only element, itself, as an object of which nothing is said but that it is one.
class OwnChild final : public NotingObject {
  class Walk final : public ComObject<IEnumVARIANT> {
   public:
    explicit Walk(ComPtr<IUnknown> element) : element_(std::move(element)) {}

    HRESULT STDMETHODCALLTYPE Next(ULONG /*count*/, VARIANT* elements, ULONG* fetched) override {
      elements[0].vt = VT_UNKNOWN;
      elements[0].punkVal = element_.Detach();
      *fetched = 1;
      return S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Skip(ULONG /*count*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reset() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT** /*copy*/) override { return E_NOTIMPL; }

   private:
    void* Find(REFIID id) override {
      return id == IID_IUnknown || id == IID_IEnumVARIANT ? this : nullptr;
    }

    ComPtr<IUnknown> element_;
  };

  HRESULT Answer(WORD /*flags*/, VARIANT* result, EXCEPINFO* /*exception*/) override {
    ComPtr<IUnknown> own(static_cast<IDispatch*>(this));
    const bool is_walk = flags().size() > 1;  // after Children
    result->vt = VT_UNKNOWN;
    result->punkVal = is_walk ? MakeCom<Walk>(std::move(own)).Detach() : own.Detach();
    return S_OK;
  }
};

/// Fails in the middle of a walk and leaves no error object.
class BrokenWalkObject final : public NotingObject {
  class Walk final : public ComObject<IEnumVARIANT> {
   public:
    HRESULT STDMETHODCALLTYPE Next(ULONG /*count*/, VARIANT* /*elements*/,
                                   ULONG* /*fetched*/) override {
      return E_UNEXPECTED;
    }
    HRESULT STDMETHODCALLTYPE Skip(ULONG /*count*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reset() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT** /*copy*/) override { return E_NOTIMPL; }

   private:
    void* Find(REFIID id) override {
      return id == IID_IUnknown || id == IID_IEnumVARIANT ? this : nullptr;
    }
  };

  HRESULT Answer(WORD /*flags*/, VARIANT* result, EXCEPINFO* /*exception*/) override {
    result->vt = VT_UNKNOWN;
    result->punkVal = MakeCom<Walk>().Detach();
    return S_OK;
  }
};

/// Fails, and says how only when it is asked.
class DeferringObject final : public NotingObject {
  static HRESULT WINAPI Fill(EXCEPINFO* exception) {
    exception->scode = static_cast<SCODE>(0x800A03EC);
    exception->bstrDescription = MakeBstr("The sheet is protected");
    return S_OK;
  }
  HRESULT Answer(WORD /*flags*/, VARIANT* /*result*/, EXCEPINFO* exception) override {
    exception->pfnDeferredFillIn = Fill;
    return DISP_E_EXCEPTION;
  }
};

template <class T>
Dispatch Calling(const ComPtr<T>& object) {
  return {object.template As<IDispatch>(IID_IDispatch), "Sheet", nullptr};
}

TEST(Dispatch, CallsInEnglishWhateverLanguageTheUserHas) {
  const auto noting = MakeCom<NotingObject>();
  const Dispatch sheet = Calling(noting);
  sheet.Get("NumberFormat");
  sheet.Call("Activate");
  sheet.Put("NumberFormat", *ComVariant::Of(std::string_view("dd mmm yyyy")).get());
  EXPECT_THAT(noting->locales(), ElementsAre(0x0409U));
}

TEST(Dispatch, AnObjectIsSetAndWhereThatIsNotToBeHadPut) {
  const auto noting = MakeCom<NotingObject>();
  const auto by_value = MakeCom<ByValueObject>();
  const ComVariant object = ComVariant::Of(noting.get());
  Calling(noting).Put("Calendar", *object.get());
  EXPECT_THAT(noting->flags(), ElementsAre(DISPATCH_PROPERTYPUTREF));
  Calling(by_value).Put("Calendar", *object.get());
  Calling(by_value).Put("Name", *ComVariant::Of(std::string_view("A")).get());
  EXPECT_THAT(by_value->flags(),
              ElementsAre(DISPATCH_PROPERTYPUTREF, DISPATCH_PROPERTYPUT, DISPATCH_PROPERTYPUT));
}

TEST(Dispatch, ARefusedCallIsMadeAgainUntilItIsTaken) {
  const auto busy = MakeCom<BusyObject>(std::vector<HRESULT>{
      RPC_E_CALL_REJECTED, RPC_E_SERVERCALL_RETRYLATER, static_cast<HRESULT>(0x800AC472)});
  const ComVariant object = ComVariant::Of(busy.get());
  Calling(busy).Put("Calendar", *object.get());
  EXPECT_THAT(busy->flags(), ElementsAre(DISPATCH_PROPERTYPUTREF, DISPATCH_PROPERTYPUTREF,
                                         DISPATCH_PROPERTYPUTREF, DISPATCH_PROPERTYPUTREF));
}

TEST(Dispatch, WhatNeverEndsIsGivenUpWithItsReason) {
  const auto before = SetBusyPatience(std::chrono::milliseconds(250));
  const auto busy = MakeCom<BusyObject>(std::vector<HRESULT>(10'000, RPC_E_CALL_REJECTED));
  const auto error = ErrorOf([&] { Calling(busy).Call("Activate"); });
  SetBusyPatience(before);
  EXPECT_EQ(error.first, RPC_E_CALL_REJECTED);
  EXPECT_EQ(error.second, "Sheet is busy: an entry or a dialog may be open in it (Sheet.Activate)");
  EXPECT_GE(busy->flags().size(), 2U);
}

TEST(Dispatch, AnotherFailureIsNotTriedAgain) {
  const auto failing = MakeCom<BusyObject>(std::vector<HRESULT>{E_UNEXPECTED});
  EXPECT_NE(ErrorOf([&] { Calling(failing).Call("Activate"); }).first, 0);
  EXPECT_EQ(failing->flags().size(), 1U);
}

TEST(Dispatch, WhatAnEarlierFailureHasLeftIsNotToldOfALaterOne) {
  LeaveErrorInfo(platform::RuntimeError(5, "an earlier failure"));
  const auto error = ErrorOf([] { Calling(MakeCom<BrokenWalkObject>()).Elements(); });
  EXPECT_EQ(error.first, E_UNEXPECTED);
  EXPECT_THAT(error.second, ::testing::StartsWith("Sheet._NewEnum: "));
}

TEST(HostObjects, ChildrenComeAsAnyObjectDoes) {
  const auto task = platform::MakeRef<HostTask>(MakeCom<OwnChild>().As<IDispatch>(IID_IDispatch),
                                                std::make_shared<MemberIds>());
  const auto children = task->get_Children();
  ASSERT_EQ(children.size(), 1U);
  EXPECT_FALSE(children[0].IsNothing());
}

TEST(Dispatch, AFailureThatIsToldLateIsAskedFor) {
  EXPECT_EQ(ErrorOf([] { Calling(MakeCom<DeferringObject>()).Call("Protect"); }),
            std::pair(1004, std::string("The sheet is protected")));
}

TEST(Dispatch, AWalkEndsWhereNothingMoreComes) {
  EXPECT_EQ(Calling(MakeCom<EndlessObject>()).Elements().size(), 1U);
}

TEST(HostObjects, ComeDirectlyOrFromWhereTheyLie) {
  IDispatch* const object = MakeCom<BareObject>().Detach();
  ComVariant direct;
  direct.get()->vt = VT_DISPATCH;
  direct.get()->pdispVal = object;
  EXPECT_EQ(ObjectOf(*direct.get()).get(), object);
  VARIANT elsewhere = {};
  elsewhere.vt = VT_BYREF | VT_DISPATCH;
  elsewhere.ppdispVal = &direct.get()->pdispVal;
  EXPECT_EQ(ObjectOf(elsewhere).get(), object);
  elsewhere.vt = VT_BYREF | VT_VARIANT;
  elsewhere.pvarVal = direct.get();
  EXPECT_EQ(ObjectOf(elsewhere).get(), object);
}

TEST(HostObjects, NothingIsAnObjectAndAnEmptyValueIsNone) {
  EXPECT_FALSE(ObjectOf(*ComVariant::Of(static_cast<IDispatch*>(nullptr)).get()));
  EXPECT_EQ(ErrorOf([] { ObjectOf(*ComVariant().get()); }).first, 424);
  EXPECT_EQ(ErrorOf([] { ObjectOf(*ComVariant::Of(7).get()); }).first, 424);
  ComVariant error;
  error.get()->vt = VT_ERROR;
  error.get()->scode = DISP_E_PARAMNOTFOUND;
  EXPECT_EQ(ErrorOf([&] { ObjectOf(*error.get()); }).first, 424);
}

TEST(HostObjects, OneWithoutMembersIsRefused) {
  class Mute final : public ComObject<IUnknown> {
    void* Find(REFIID id) override { return id == IID_IUnknown ? this : nullptr; }
  };
  ComVariant value;
  value.get()->vt = VT_UNKNOWN;
  value.get()->punkVal = MakeCom<Mute>().Detach();
  EXPECT_EQ(ErrorOf([&] { ObjectOf(*value.get()); }).first, 13);
}

}  // namespace
}  // namespace nimbrel::com

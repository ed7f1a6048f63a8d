#include "com/event_source.h"

#include <algorithm>
#include <string>
#include <utility>

#include "com/com_error.h"
#include "com/com_text.h"
#include "com/host_objects.h"
#include "com/untyped_object.h"

namespace nimbrel::com {
namespace {

using Corvane8::ApplicationEvents;

constexpr std::int32_t kNoSuchEvents = 459;
/// The registry has the versions of type libraries in hexadecimal.
constexpr int kVersionBase = 16;
constexpr std::array<const wchar_t*, 4> kNames = {
    L"PlanBeforeRiskAnalysis", L"PlanBeforeRiskIteration", L"PlanAfterRiskIteration",
    L"PlanAfterRiskAnalysis"};

/// The value of a key below a class's own, empty if there is none.
std::wstring ClassValue(REFCLSID class_id, const wchar_t* key) {
  wchar_t id[40] = {};
  StringFromGUID2(class_id, id, 40);
  wchar_t value[64] = {};
  LONG size = sizeof(value);
  const std::wstring path = std::wstring(L"CLSID\\") + id + L"\\" + key;
  return RegQueryValueW(HKEY_CLASSES_ROOT, path.c_str(), value, &size) == ERROR_SUCCESS ? value
                                                                                        : L"";
}

/// The class in the type library that it is registered with, null if there is none.
ComPtr<ITypeInfo> RegisteredClass(REFCLSID class_id) {
  GUID library_id = {};
  if (FAILED(CLSIDFromString(ClassValue(class_id, L"TypeLib").c_str(), &library_id))) {
    return nullptr;
  }
  const std::wstring version = ClassValue(class_id, L"Version");
  wchar_t* minor = nullptr;
  const unsigned long major = std::wcstoul(version.c_str(), &minor, kVersionBase);
  ComPtr<ITypeLib> library;
  ComPtr<ITypeInfo> found;
  if (SUCCEEDED(LoadRegTypeLib(
          library_id, static_cast<WORD>(major),
          static_cast<WORD>(*minor == L'.' ? std::wcstoul(minor + 1, nullptr, kVersionBase) : 0),
          LOCALE_SYSTEM_DEFAULT, library.Receive()))) {
    library->GetTypeInfoOfGuid(class_id, found.Receive());
  }
  return found;
}

/// The class as the object tells it, null if it does not.
ComPtr<ITypeInfo> ToldClass(IUnknown& object) {
  ComPtr<ITypeInfo> found;
  if (const auto provider =
          ComPtr<IUnknown>(&object).As<IProvideClassInfo>(IID_IProvideClassInfo)) {
    provider->GetClassInfo(found.Receive());
  }
  return found;
}

/// The class in the type library that the object's own interface stands in, null if there is none.
ComPtr<ITypeInfo> ClassBesideInterface(IUnknown& object, REFCLSID class_id) {
  ComPtr<ITypeInfo> own;
  ComPtr<ITypeLib> library;
  ComPtr<ITypeInfo> found;
  UINT index = 0;
  const auto dispatch = ComPtr<IUnknown>(&object).As<IDispatch>(IID_IDispatch);
  if (dispatch && SUCCEEDED(dispatch->GetTypeInfo(0, LOCALE_SYSTEM_DEFAULT, own.Receive())) &&
      own && SUCCEEDED(own->GetContainingTypeLib(library.Receive(), &index))) {
    library->GetTypeInfoOfGuid(class_id, found.Receive());
  }
  return found;
}

/// The interface of a class's events, null if it has none.
ComPtr<ITypeInfo> DefaultSource(ITypeInfo& class_info) {
  constexpr int kWanted = IMPLTYPEFLAG_FDEFAULT | IMPLTYPEFLAG_FSOURCE;
  ComPtr<ITypeInfo> source;
  int flags = 0;
  for (UINT i = 0; SUCCEEDED(class_info.GetImplTypeFlags(i, &flags)); ++i) {
    HREFTYPE type = 0;
    if ((flags & kWanted) == kWanted && SUCCEEDED(class_info.GetRefTypeOfImplType(i, &type)) &&
        SUCCEEDED(class_info.GetRefTypeInfo(type, source.Receive()))) {
      return source;
    }
  }
  return nullptr;
}

bool ReadNumbers(ITypeInfo& source, EventNumbers& numbers) {
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    auto* name = const_cast<wchar_t*>(kNames[i]);
    if (FAILED(source.GetIDsOfNames(&name, 1, &numbers.ids[i]))) {
      return false;
    }
  }
  TYPEATTR* attributes = nullptr;
  if (FAILED(source.GetTypeAttr(&attributes))) {
    return false;
  }
  numbers.interface_id = attributes->guid;
  source.ReleaseTypeAttr(attributes);
  return true;
}

}  // namespace

EventNumbers FindEvents(IUnknown& object, REFCLSID class_id) {
  EventNumbers numbers;
  for (const ComPtr<ITypeInfo>& info :
       {RegisteredClass(class_id), ToldClass(object), ClassBesideInterface(object, class_id)}) {
    const ComPtr<ITypeInfo> source = info ? DefaultSource(*info.get()) : nullptr;
    if (source && ReadNumbers(*source.get(), numbers)) {
      return numbers;
    }
  }
  throw platform::RuntimeError(kNoSuchEvents, "Application: the host does not have the events");
}

/// Receives the events of one subscription.
class EventSource::Sink final : public UntypedObject {
 public:
  Sink(const EventNumbers& numbers, std::shared_ptr<MemberIds> ids, ApplicationEvents* events)
      : numbers_(numbers), ids_(std::move(ids)), events_(events) {}

  /// From here on nothing reaches the receiver.
  void Disconnect() { events_ = nullptr; }

  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID /*id*/, LPOLESTR* /*names*/, UINT /*count*/,
                                          LCID /*locale*/, DISPID* /*ids*/) override {
    return DISP_E_UNKNOWNNAME;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID /*id*/, LCID /*locale*/, WORD /*flags*/,
                                   DISPPARAMS* parameters, VARIANT* /*result*/,
                                   EXCEPINFO* exception, UINT* /*wrong*/) override {
    const auto known = std::find(numbers_.ids.begin(), numbers_.ids.end(), id);
    if (known == numbers_.ids.end()) {
      // A host may have more events than these: nobody has asked for them, and that is no failure.
      return S_OK;
    }
    const auto event = known - numbers_.ids.begin();
    const bool of_iteration = event == 1 || event == 2;
    if (parameters->cArgs != (of_iteration ? 2U : 1U)) {
      return DISP_E_BADPARAMCOUNT;
    }
    // The receiver may end its subscription, and with it this, while it is called.
    const ComPtr<Sink> kept(this);
    return Guarded(
        [&] { Deliver(event, *parameters); },
        [&](const platform::RuntimeError& error) { return FillException(error, exception); });
  }

 private:
  void* Find(REFIID id) override {
    return id == IID_IUnknown || id == IID_IDispatch || id == numbers_.interface_id ? this
                                                                                    : nullptr;
  }

  void Deliver(std::ptrdiff_t event, const DISPPARAMS& parameters) {
    if (events_ == nullptr) {
      return;
    }
    // Arguments stand from the last to the first.
    const VARIANT& plan_argument = parameters.rgvarg[parameters.cArgs - 1];
    const auto plan = FromHost<Ref<Corvane8::Plan>>(plan_argument, ids_);
    const Long iteration = parameters.cArgs == 2 ? FromHost<Long>(parameters.rgvarg[0], ids_) : 0;
    switch (event) {
      case 0:
        return events_->PlanBeforeRiskAnalysis(plan);
      case 1:
        return events_->PlanBeforeRiskIteration(plan, iteration);
      case 2:
        return events_->PlanAfterRiskIteration(plan, iteration);
      default:
        return events_->PlanAfterRiskAnalysis(plan);
    }
  }

  EventNumbers numbers_;
  std::shared_ptr<MemberIds> ids_;
  ApplicationEvents* events_;
};

EventSource::EventSource(ComPtr<IUnknown> object, REFCLSID class_id, std::shared_ptr<MemberIds> ids)
    : object_(std::move(object)), class_id_(class_id), ids_(std::move(ids)) {}

EventSource::~EventSource() {
  for (const Subscription& subscription : subscriptions_) {
    End(subscription);
  }
}

void EventSource::Subscribe(ApplicationEvents* events) {
  if (!known_) {
    numbers_ = FindEvents(*object_.get(), class_id_);
    known_ = true;
  }
  Subscription subscription{events, MakeCom<Sink>(numbers_, ids_, events), 0};
  Check(ConnectionPoint()->Advise(subscription.sink.get(), &subscription.cookie),
        "Application.Advise");
  subscriptions_.push_back(std::move(subscription));
}

void EventSource::Unsubscribe(ApplicationEvents* events) {
  const auto found =
      std::find_if(subscriptions_.rbegin(), subscriptions_.rend(),
                   [events](const Subscription& other) { return other.events == events; });
  if (found == subscriptions_.rend()) {
    return;
  }
  const Subscription ended = *found;
  subscriptions_.erase(std::next(found).base());
  End(ended);
}

void EventSource::End(const Subscription& subscription) {
  subscription.sink->Disconnect();
  if (g_references_abandoned) {
    return;
  }
  platform::IgnoreErrors([&] { ConnectionPoint()->Unadvise(subscription.cookie); });
  // A host that has ended never lets go of it, and the component could not be unloaded.
  CoDisconnectObject(subscription.sink.get(), 0);
}

ComPtr<IConnectionPoint> EventSource::ConnectionPoint() {
  ComPtr<IConnectionPointContainer> container;
  ComPtr<IConnectionPoint> point;
  HRESULT result = object_->QueryInterface(IID_IConnectionPointContainer, container.ReceiveVoid());
  if (SUCCEEDED(result)) {
    result = container->FindConnectionPoint(numbers_.interface_id, point.Receive());
  }
  if (result == E_NOINTERFACE || result == CONNECT_E_NOCONNECTION) {
    throw platform::RuntimeError(kNoSuchEvents, "Application: the host does not raise the events");
  }
  Check(result, "Application.ConnectionPoint");
  return point;
}

}  // namespace nimbrel::com

#include "com/served/served_application.h"

#include <corvane8.h>

#include <algorithm>
#include <array>
#include <utility>

#include "com/com_error.h"

namespace nimbrel::com::served {

ServedApplication::ServedApplication(Ref<Corvane8::Application> application,
                                     ComPtr<ITypeInfo> class_info)
    : application_(std::move(application)),
      class_info_(std::move(class_info)),
      members_(Serve(application_, TableOf<Corvane8::Application>())) {}

ServedApplication::~ServedApplication() {
  if (!connections_.empty()) {
    platform::IgnoreErrors([this] { application_->Unsubscribe(this); });
  }
}

void* ServedApplication::Find(REFIID id) {
  if (id == IID_IUnknown || id == IID_IDispatch || id == DIID__Application) {
    return static_cast<IDispatch*>(this);
  }
  if (id == IID_IConnectionPointContainer) {
    return static_cast<IConnectionPointContainer*>(this);
  }
  if (id == IID_IConnectionPoint) {
    return static_cast<IConnectionPoint*>(this);
  }
  return id == IID_IProvideClassInfo ? static_cast<IProvideClassInfo*>(this) : nullptr;
}

HRESULT ServedApplication::GetTypeInfoCount(UINT* count) {
  return members_->GetTypeInfoCount(count);
}

HRESULT ServedApplication::GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) {
  return members_->GetTypeInfo(index, locale, info);
}

HRESULT ServedApplication::GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID locale,
                                         DISPID* ids) {
  return members_->GetIDsOfNames(id, names, count, locale, ids);
}

HRESULT ServedApplication::Invoke(DISPID id, REFIID interface_id, LCID locale, WORD flags,
                                  DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                                  UINT* wrong) {
  return members_->Invoke(id, interface_id, locale, flags, parameters, result, exception, wrong);
}

HRESULT ServedApplication::GetClassInfo(ITypeInfo** info) {
  *info = ComPtr<ITypeInfo>(class_info_).Detach();
  return class_info_ ? S_OK : TYPE_E_ELEMENTNOTFOUND;
}

HRESULT ServedApplication::EnumConnectionPoints(IEnumConnectionPoints** points) {
  *points = nullptr;
  return E_NOTIMPL;
}

HRESULT ServedApplication::FindConnectionPoint(REFIID id, IConnectionPoint** point) {
  *point = nullptr;
  if (id != DIID__ApplicationEvents) {
    return CONNECT_E_NOCONNECTION;
  }
  AddRef();
  *point = this;
  return S_OK;
}

HRESULT ServedApplication::GetConnectionInterface(IID* id) {
  *id = DIID__ApplicationEvents;
  return S_OK;
}

HRESULT ServedApplication::GetConnectionPointContainer(IConnectionPointContainer** container) {
  AddRef();
  *container = this;
  return S_OK;
}

HRESULT ServedApplication::Advise(IUnknown* sink, DWORD* cookie) {
  const auto receiver = ComPtr<IUnknown>(sink).As<IDispatch>(DIID__ApplicationEvents);
  if (!receiver) {
    return CONNECT_E_CANNOTCONNECT;
  }
  return Guarded(
      [&] {
        connections_.reserve(connections_.size() + 1);
        if (connections_.empty()) {
          application_->Subscribe(this);
        }
        *cookie = next_cookie_++;
        connections_.push_back({*cookie, receiver});
      },
      LeaveErrorInfo);
}

HRESULT ServedApplication::Unadvise(DWORD cookie) {
  if (std::erase_if(connections_,
                    [cookie](const Connection& other) { return other.cookie == cookie; }) == 0) {
    return CONNECT_E_NOCONNECTION;
  }
  return Guarded(
      [this] {
        if (connections_.empty()) {
          application_->Unsubscribe(this);
        }
      },
      LeaveErrorInfo);
}

HRESULT ServedApplication::EnumConnections(IEnumConnections** connections) {
  *connections = nullptr;
  return E_NOTIMPL;
}

void ServedApplication::PlanBeforeRiskAnalysis(const Ref<Corvane8::Plan>& plan) {
  RaiseWithPlan(1, plan);
}

void ServedApplication::PlanBeforeRiskIteration(const Ref<Corvane8::Plan>& plan, Long iteration) {
  RaiseWithIteration(2, plan, iteration);
}

void ServedApplication::PlanAfterRiskIteration(const Ref<Corvane8::Plan>& plan, Long iteration) {
  RaiseWithIteration(3, plan, iteration);
}

void ServedApplication::PlanAfterRiskAnalysis(const Ref<Corvane8::Plan>& plan) {
  RaiseWithPlan(4, plan);
}

void ServedApplication::RaiseWithPlan(DISPID id, const Ref<Corvane8::Plan>& plan) {
  const ComVariant served = ToCaller(plan);
  std::array<VARIANT, 1> arguments = {*served.get()};
  Raise(id, arguments);
}

void ServedApplication::RaiseWithIteration(DISPID id, const Ref<Corvane8::Plan>& plan,
                                           Long iteration) {
  const ComVariant served = ToCaller(plan);
  const ComVariant number = ToCaller(iteration);
  std::array<VARIANT, 2> arguments = {*number.get(), *served.get()};
  Raise(id, arguments);
}

void ServedApplication::Raise(DISPID id, std::span<VARIANT> arguments) {
  // Whoever hears it may let go of this meanwhile.
  const ComPtr<IDispatch> kept(this);
  // Who connects meanwhile hears the next event, and who leaves meanwhile does not hear this one.
  const std::vector<Connection> connections = connections_;
  for (const Connection& connection : connections) {
    if (std::none_of(connections_.begin(), connections_.end(),
                     [&](const Connection& other) { return other.cookie == connection.cookie; })) {
      continue;
    }
    DISPPARAMS parameters = {arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
    EXCEPINFO exception = {};
    const HRESULT result =
        connection.sink->Invoke(id, IID_NULL, LOCALE_SYSTEM_DEFAULT, DISPATCH_METHOD, &parameters,
                                nullptr, &exception, nullptr);
    if (FAILED(result)) {
      RaiseInvokeFailure(result, exception, "ApplicationEvents");
    }
  }
}

}  // namespace nimbrel::com::served

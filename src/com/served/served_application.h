#pragma once

#include <vector>

#include "com/com_object.h"
#include "com/served/member.h"
#include "host/corvane8.h"

namespace nimbrel::com::served {

/// A host's Application as other programs see it, with a connection point for its events. The
/// events go to all who are connected, in the order of connecting; a failure of one goes to the
/// host and ends the event. It is subscribed to the host while anybody is connected.
class ServedApplication final
    : public ComObject<IDispatch, IConnectionPointContainer, IConnectionPoint, IProvideClassInfo>,
      private Corvane8::ApplicationEvents {
 public:
  /// `class_info` describes the class in the type library.
  ServedApplication(Ref<Corvane8::Application> application, ComPtr<ITypeInfo> class_info);

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID locale,
                                          DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID interface_id, LCID locale, WORD flags,
                                   DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                                   UINT* wrong) override;

  HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) override;

  /// There is one kind of events; who walks over the kinds is not served.
  HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** points) override;
  HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID id, IConnectionPoint** point) override;

  HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* id) override;
  HRESULT STDMETHODCALLTYPE
  GetConnectionPointContainer(IConnectionPointContainer** container) override;
  HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) override;
  HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) override;
  HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections** connections) override;

 private:
  struct Connection {
    DWORD cookie;
    ComPtr<IDispatch> sink;
  };

  ~ServedApplication() override;
  void* Find(REFIID id) override;

  void PlanBeforeRiskAnalysis(const Ref<Corvane8::Plan>& plan) override;
  void PlanBeforeRiskIteration(const Ref<Corvane8::Plan>& plan, Long iteration) override;
  void PlanAfterRiskIteration(const Ref<Corvane8::Plan>& plan, Long iteration) override;
  void PlanAfterRiskAnalysis(const Ref<Corvane8::Plan>& plan) override;
  /// Raises the event `id` with its arguments, which stand from the last to the first.
  void Raise(DISPID id, std::span<VARIANT> arguments);
  void RaiseWithPlan(DISPID id, const Ref<Corvane8::Plan>& plan);
  void RaiseWithIteration(DISPID id, const Ref<Corvane8::Plan>& plan, Long iteration);

  Ref<Corvane8::Application> application_;
  ComPtr<ITypeInfo> class_info_;
  ComPtr<IDispatch> members_;
  std::vector<Connection> connections_;
  DWORD next_cookie_ = 1;
};

}  // namespace nimbrel::com::served

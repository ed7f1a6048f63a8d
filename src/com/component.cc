#include "com/component.h"

#include <nimbrel.h>

#include <memory>
#include <utility>

#include "com/class_factory.h"
#include "com/dual_object.h"
#include "com/host_objects.h"
#include "host/cls_corvane.h"

namespace nimbrel::com {
namespace {

/// The description of an interface in the component's own type library.
ComPtr<ITypeInfo> OwnTypeInfo(REFIID interface_id) {
  ComPtr<ITypeLib> library;
  Check(LoadTypeLibEx(OwnPath().c_str(), REGKIND_NONE, library.Receive()), "type library");
  ComPtr<ITypeInfo> info;
  Check(library->GetTypeInfoOfGuid(interface_id, info.Receive()), "type library");
  return info;
}

class NimbrelObject final : public DualObject<_clsNimbrel> {
 public:
  explicit NimbrelObject(host::Seams seams)
      : DualObject(IID__clsNimbrel, OwnTypeInfo(IID__clsNimbrel)),
        nimbrel_(platform::MakeRef<host::clsNimbrel>(std::move(seams))) {}

  HRESULT STDMETHODCALLTYPE Main() override {
    return Run([this] { nimbrel_->Main(); });
  }
  HRESULT STDMETHODCALLTYPE LaunchStartCorvane() override {
    return Run([this] { nimbrel_->LaunchStartCorvane(); });
  }
  HRESULT STDMETHODCALLTYPE LaunchStopCorvane() override {
    return Run([this] { nimbrel_->LaunchStopCorvane(); });
  }

 private:
  Ref<host::clsNimbrel> nimbrel_;
};

/// The subscriber for a host that delivers the events itself, or subscribes it by itself.
class CorvaneObject final : public DualObject<_clsCorvane> {
 public:
  explicit CorvaneObject(host::RiskHandlers handlers)
      : DualObject(IID__clsCorvane, OwnTypeInfo(IID__clsCorvane)),
        corvane_(platform::MakeRef<host::clsCorvane>(std::move(handlers))) {}

  HRESULT STDMETHODCALLTYPE StartCorvane() override {
    return Run([this] { corvane_->StartCorvane(); });
  }
  HRESULT STDMETHODCALLTYPE StopCorvane() override {
    return Run([this] { corvane_->StopCorvane(); });
  }
  HRESULT STDMETHODCALLTYPE m_CorvyApp_PlanAfterRiskAnalysis(IDispatch* plan) override {
    return Run([&] { corvane_->m_CorvyApp_PlanAfterRiskAnalysis(PlanOf(plan)); });
  }
  HRESULT STDMETHODCALLTYPE m_CorvyApp_PlanAfterRiskIteration(IDispatch* plan,
                                                              LONG iteration) override {
    return Run([&] { corvane_->m_CorvyApp_PlanAfterRiskIteration(PlanOf(plan), iteration); });
  }
  HRESULT STDMETHODCALLTYPE m_CorvyApp_PlanBeforeRiskAnalysis(IDispatch* plan) override {
    return Run([&] { corvane_->m_CorvyApp_PlanBeforeRiskAnalysis(PlanOf(plan)); });
  }
  HRESULT STDMETHODCALLTYPE m_CorvyApp_PlanBeforeRiskIteration(IDispatch* plan,
                                                               LONG iteration) override {
    return Run([&] { corvane_->m_CorvyApp_PlanBeforeRiskIteration(PlanOf(plan), iteration); });
  }

 private:
  Ref<Corvane8::Plan> PlanOf(IDispatch* plan) const {
    return MakeHostObject<Corvane8::Plan>(plan, ids_);
  }

  Ref<host::clsCorvane> corvane_;
  std::shared_ptr<MemberIds> ids_ = std::make_shared<MemberIds>();
};

}  // namespace

ServerEntry ComponentEntry() {
  return {.path = OwnPath(),
          .library = LIBID_Nimbrel,
          .classes = {{CLSID_clsNimbrel, L"Nimbrel.clsNimbrel", L"Nimbrel weather modeling"},
                      {CLSID_clsCorvane, L"Nimbrel.clsCorvane", L"Nimbrel event subscriber"}}};
}

ComPtr<IClassFactory> ComponentFactory(REFCLSID class_id, const host::Seams& seams) {
  ClassFactory::Make make;
  if (class_id == CLSID_clsNimbrel) {
    make = [seams] { return MakeCom<NimbrelObject>(seams).template As<IUnknown>(IID_IUnknown); };
  } else if (class_id == CLSID_clsCorvane) {
    make = [seams] {
      return MakeCom<CorvaneObject>(seams.handlers).template As<IUnknown>(IID_IUnknown);
    };
  } else {
    return nullptr;
  }
  return MakeCom<ClassFactory>(std::move(make)).As<IClassFactory>(IID_IClassFactory);
}

}  // namespace nimbrel::com

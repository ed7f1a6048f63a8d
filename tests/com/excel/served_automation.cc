#include "tests/com/excel/served_automation.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

#include "com/com_error.h"
#include "com/com_variant.h"
#include "com/untyped_object.h"
#include "platform/text.h"
#include "platform/win/wide_text.h"

namespace nimbrel::com {
namespace {

using platform::AutomationObject;
using platform::Object;
using platform::Ref;
using platform::RuntimeError;
using platform::Variant;

/// Opens what derived classes implement.
struct Opened : AutomationObject {
  using AutomationObject::DoCall;
  using AutomationObject::DoGet;
  using AutomationObject::DoPut;
};

/// All names that were ever asked for; a member's number is its place, from 1.
std::vector<std::string> g_names;

std::int32_t g_refusals = 0;
std::string g_never_refused;

/// S_OK if a call of the member is taken, else one of the ways in which a busy Excel refuses.
HRESULT Admit(const std::string& member) {
  constexpr std::array kWays = {RPC_E_CALL_REJECTED, RPC_E_SERVERCALL_RETRYLATER,
                                static_cast<HRESULT>(0x800AC472)};
  if (g_refusals <= 0 || platform::EqualsIgnoreCase(member, g_never_refused)) {
    return S_OK;
  }
  return kWays[static_cast<std::size_t>(--g_refusals) % kWays.size()];
}

DISPID NumberOf(const std::string& name) {
  const auto found = std::find_if(g_names.begin(), g_names.end(), [&](const std::string& other) {
    return platform::EqualsIgnoreCase(other, name);
  });
  const auto place = found - g_names.begin();
  if (found == g_names.end()) {
    g_names.push_back(name);
  }
  return static_cast<DISPID>(place + 1);
}

class ServedAutomation final : public UntypedObject {
 public:
  explicit ServedAutomation(Ref<AutomationObject> object) : object_(std::move(object)) {}

  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID /*id*/, LPOLESTR* names, UINT count,
                                          LCID /*locale*/, DISPID* ids) override {
    std::fill_n(ids, count, DISPID_UNKNOWN);
    const std::string name = platform::ToUtf8(names[0]);
    if (const HRESULT admitted = Admit(name); FAILED(admitted)) {
      return admitted;
    }
    ids[0] = NumberOf(name);
    return count == 1 ? S_OK : DISP_E_UNKNOWNNAME;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID /*interface_id*/, LCID /*locale*/, WORD flags,
                                   DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                                   UINT* /*wrong*/) override {
    if (id < 1 || id > std::ssize(g_names)) {
      return DISP_E_MEMBERNOTFOUND;
    }
    if (const HRESULT admitted = Admit(g_names[static_cast<std::size_t>(id - 1)]);
        FAILED(admitted)) {
      return admitted;
    }
    return Guarded(
        [&] {
          ComVariant given = Answer(g_names[static_cast<std::size_t>(id - 1)], flags, *parameters);
          if (result != nullptr) {
            *result = given.Detach();
          }
        },
        [exception](const RuntimeError& error) { return FillException(error, exception); });
  }

 private:
  void* Find(REFIID id) override {
    return id == IID_IUnknown || id == IID_IDispatch ? this : nullptr;
  }

  ComVariant Answer(const std::string& member, WORD flags, const DISPPARAMS& parameters) {
    std::vector<Variant> arguments;
    for (UINT i = parameters.cArgs; i > 0; --i) {
      arguments.push_back(FromComVariant(parameters.rgvarg[i - 1], [](IDispatch*) -> Ref<Object> {
        throw RuntimeError(platform::kTypeMismatch, "Type mismatch: an object");
      }));
    }
    if ((flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0) {
      const Variant value = arguments.back();
      arguments.pop_back();
      PutTo(*object_, member, value, arguments);
      return {};
    }
    if ((flags & DISPATCH_PROPERTYGET) != 0) {
      return ToCaller(GetFrom(*object_, member, arguments));
    }
    return ToCaller(CallOn(*object_, member, arguments));
  }

  static ComVariant ToCaller(const Variant& value) {
    return ToComVariant(value, [](const Ref<Object>& object) {
      return ServeAutomation(platform::ToAutomationObject(object));
    });
  }

  Ref<AutomationObject> object_;
};

}  // namespace

ComPtr<IDispatch> ServeAutomation(const Ref<AutomationObject>& object) {
  return ComPtr<IDispatch>::Adopt(new ServedAutomation(object));
}

void RefuseCalls(std::int32_t count, const std::string& but) {
  g_refusals = count;
  g_never_refused = but;
}

Variant GetFrom(AutomationObject& object, std::string_view member,
                std::span<const Variant> arguments) {
  return (object.*(&Opened::DoGet))(member, arguments);
}

Variant CallOn(AutomationObject& object, std::string_view member,
               std::span<const Variant> arguments) {
  return (object.*(&Opened::DoCall))(member, arguments);
}

void PutTo(AutomationObject& object, std::string_view member, const Variant& value,
           std::span<const Variant> arguments) {
  (object.*(&Opened::DoPut))(member, value, arguments);
}

}  // namespace nimbrel::com

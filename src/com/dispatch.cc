#include "com/dispatch.h"

#include <algorithm>
#include <utility>

#include "com/com_error.h"
#include "platform/win/wide_text.h"

namespace nimbrel::com {
namespace {

constexpr WORD kRead = DISPATCH_PROPERTYGET | DISPATCH_METHOD;
constexpr ULONG kBatch = 32;
/// Names of members and formats of cells are English ones, whatever language the user has.
constexpr LCID kLanguage = MAKELCID(MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), SORT_DEFAULT);

std::chrono::milliseconds g_busy_patience = std::chrono::seconds(10);

DISPID AskForId(IDispatch& object, const std::string& subject, std::string_view member) {
  std::wstring name = platform::ToWide(member);
  wchar_t* names = name.data();
  DISPID id = DISPID_UNKNOWN;
  if (const HRESULT result =
          WhenNotBusy([&] { return object.GetIDsOfNames(IID_NULL, &names, 1, kLanguage, &id); });
      FAILED(result)) {
    RaiseFailure(result, subject);
  }
  return id;
}

/// IDispatch::Invoke, which gives its result to `result` if that is not null.
void InvokeMember(IDispatch& object, DISPID id, WORD flags, DISPPARAMS& parameters, VARIANT* result,
                  const std::string& subject) {
  EXCEPINFO exception = {};
  const auto invoke = [&](WORD kind) {
    return WhenNotBusy([&] {
      exception = {};
      return object.Invoke(id, IID_NULL, kLanguage, kind, &parameters, result, &exception, nullptr);
    });
  };
  HRESULT outcome = invoke(flags);
  if (outcome == DISP_E_MEMBERNOTFOUND && flags == DISPATCH_PROPERTYPUTREF) {
    outcome = invoke(DISPATCH_PROPERTYPUT);
  }
  if (FAILED(outcome)) {
    RaiseInvokeFailure(outcome, exception, subject);
  }
}

}  // namespace

std::chrono::milliseconds SetBusyPatience(std::chrono::milliseconds patience) {
  return std::exchange(g_busy_patience, patience);
}

std::chrono::milliseconds BusyPatience() {
  return g_busy_patience;
}

DISPID MemberIds::Find(IDispatch& object, const std::string& subject, std::string_view member) {
  const auto found = ids_.find(subject);
  if (found != ids_.end()) {
    return found->second;
  }
  return ids_.emplace(subject, AskForId(object, subject, member)).first->second;
}

Dispatch::Dispatch(ComPtr<IDispatch> object, std::string class_name, std::shared_ptr<MemberIds> ids)
    : object_(std::move(object)), class_name_(std::move(class_name)), ids_(std::move(ids)) {}

ComVariant Dispatch::Get(std::string_view member, std::span<const VARIANT> arguments) const {
  return Invoke(member, kRead, arguments);
}

ComVariant Dispatch::Call(std::string_view member, std::span<const VARIANT> arguments) const {
  return Invoke(member, DISPATCH_METHOD, arguments);
}

void Dispatch::Put(std::string_view member, const VARIANT& value,
                   std::span<const VARIANT> arguments) const {
  const DISPID id = IdOf(member);
  // Arguments go from the last to the first; the value counts as the last one, with a name.
  std::vector<VARIANT> backwards = {value};
  backwards.insert(backwards.end(), arguments.rbegin(), arguments.rend());
  DISPID put = DISPID_PROPERTYPUT;
  DISPPARAMS parameters = {backwards.data(), &put, static_cast<UINT>(backwards.size()), 1};
  const WORD flags = value.vt == VT_DISPATCH ? DISPATCH_PROPERTYPUTREF : DISPATCH_PROPERTYPUT;
  InvokeMember(*object_.get(), id, flags, parameters, nullptr, Subject(member));
}

std::vector<ComVariant> Dispatch::Elements() const {
  const std::string subject = Subject("_NewEnum");
  DISPPARAMS none = {};
  ComVariant made;
  InvokeMember(*object_.get(), DISPID_NEWENUM, kRead, none, made.get(), subject);
  ComPtr<IEnumVARIANT> walk;
  if (made.type() == VT_UNKNOWN || made.type() == VT_DISPATCH) {
    walk = ComPtr<IUnknown>(made.get()->punkVal).As<IEnumVARIANT>(IID_IEnumVARIANT);
  }
  if (!walk) {
    RaiseFailure(DISP_E_MEMBERNOTFOUND, subject);
  }
  std::vector<ComVariant> elements;
  HRESULT result = S_OK;
  ULONG fetched = kBatch;
  while (result == S_OK && fetched != 0) {
    std::vector<VARIANT> batch(kBatch);
    std::for_each(batch.begin(), batch.end(), [](VARIANT& element) { VariantInit(&element); });
    fetched = 0;
    ForgetLeftError();
    result = WhenNotBusy([&] { return walk->Next(kBatch, batch.data(), &fetched); });
    Check(result, subject);
    for (ULONG i = 0; i < fetched; ++i) {
      *elements.emplace_back().get() = batch[i];
    }
  }
  return elements;
}

DISPID Dispatch::IdOf(std::string_view member) const {
  return ids_ == nullptr ? AskForId(*object_.get(), Subject(member), member)
                         : ids_->Find(*object_.get(), Subject(member), member);
}

ComVariant Dispatch::Invoke(std::string_view member, WORD flags,
                            std::span<const VARIANT> arguments) const {
  const DISPID id = IdOf(member);
  std::vector<VARIANT> backwards(arguments.rbegin(), arguments.rend());
  DISPPARAMS parameters = {backwards.data(), nullptr, static_cast<UINT>(backwards.size()), 0};
  ComVariant result;
  InvokeMember(*object_.get(), id, flags, parameters, result.get(), Subject(member));
  return result;
}

std::string Dispatch::Subject(std::string_view member) const {
  return (class_name_.empty() ? "Object" : class_name_) + "." + std::string(member);
}

}  // namespace nimbrel::com

#include "com/served/served_object.h"

#include <corvane8.h>

#include <algorithm>
#include <iterator>

#include "com/com_error.h"
#include "com/registration.h"
#include "platform/runtime_error.h"
#include "platform/text.h"
#include "platform/win/wide_text.h"

namespace nimbrel::com::served {
namespace {

std::int32_t g_held = 0;

/// Known by its address alone: asks an object whether it is one that was offered here.
constexpr GUID kServedObject = {
    0x5f3a1c42, 0x7d0e, 0x4b7a, {0x9a, 0x61, 0x0c, 0x8e, 0x52, 0xd4, 0x3b, 0x17}};

/// What a walk over a collection gives, as an object of its own.
class ObjectList final : public Object {
 public:
  ObjectList(std::vector<Ref<Object>> objects, const ClassTable& table)
      : objects_(std::move(objects)), table_(table) {}

  std::vector<ComVariant> Elements() const {
    std::vector<ComVariant> elements;
    for (const Ref<Object>& object : objects_) {
      elements.push_back(ComVariant::Of(Serve(object, table_).get()));
    }
    return elements;
  }

 private:
  std::vector<Ref<Object>> objects_;
  const ClassTable& table_;
};

std::vector<ComVariant> ElementsOfList(Object& object) {
  return dynamic_cast<ObjectList&>(object).Elements();
}

constexpr ClassTable kListTable = {"TaskChildren", {}, ElementsOfList, &DIID__TaskChildren};

/// The description of a class's interface in the program's type library; null where either is
/// missing.
ComPtr<ITypeInfo> TypeInfoOf(const ClassTable& table) {
  ComPtr<ITypeLib> library;
  ComPtr<ITypeInfo> info;
  if (table.interface_id == nullptr ||
      FAILED(LoadTypeLibEx(OwnPath().c_str(), REGKIND_NONE, library.Receive())) ||
      FAILED(library->GetTypeInfoOfGuid(*table.interface_id, info.Receive()))) {
    return nullptr;
  }
  return info;
}

/// Walks over values that stand fast.
class ValueWalk final : public ComObject<IEnumVARIANT> {
 public:
  explicit ValueWalk(std::vector<ComVariant> values, std::size_t at = 0)
      : values_(std::move(values)), at_(at) {}

  HRESULT STDMETHODCALLTYPE Next(ULONG count, VARIANT* values, ULONG* fetched) override {
    ULONG given = 0;
    while (given < count && at_ < values_.size()) {
      VariantInit(&values[given]);
      VariantCopy(&values[given], values_[at_].get());
      ++given;
      ++at_;
    }
    if (fetched != nullptr) {
      *fetched = given;
    }
    return given == count ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE Skip(ULONG count) override {
    const std::size_t left = values_.size() - at_;
    at_ += std::min<std::size_t>(count, left);
    return count <= left ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE Reset() override {
    at_ = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT** clone) override {
    return Guarded(
        [&] {
          std::vector<ComVariant> values(values_.size());
          for (std::size_t i = 0; i < values.size(); ++i) {
            VariantCopy(values[i].get(), values_[i].get());
          }
          *clone = new ValueWalk(std::move(values), at_);
        },
        LeaveErrorInfo);
  }

 private:
  void* Find(REFIID id) override {
    return id == IID_IUnknown || id == IID_IEnumVARIANT ? this : nullptr;
  }

  std::vector<ComVariant> values_;
  std::size_t at_;
};

}  // namespace

std::int32_t ObjectsHeld() {
  return g_held;
}

ServedObject::ServedObject(Ref<Object> object, const ClassTable& table)
    : object_(std::move(object)), table_(table) {
  ++g_held;
}

ServedObject::~ServedObject() {
  --g_held;
}

HRESULT ServedObject::GetIDsOfNames(REFIID /*id*/, LPOLESTR* names, UINT count, LCID /*locale*/,
                                    DISPID* ids) {
  std::fill_n(ids, count, DISPID_UNKNOWN);
  const HRESULT asked =
      Guarded([&] { ids[0] = IdOf(table_, platform::ToUtf8(names[0])); }, LeaveErrorInfo);
  if (FAILED(asked)) {
    return asked;
  }
  return ids[0] == DISPID_UNKNOWN || count != 1 ? DISP_E_UNKNOWNNAME : S_OK;
}

HRESULT ServedObject::Invoke(DISPID id, REFIID /*interface_id*/, LCID /*locale*/, WORD flags,
                             DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                             UINT* /*wrong*/) {
  // The call may end the object that it is made to.
  const ComPtr<ServedObject> kept(this);
  ComVariant given;
  const auto fail = [exception](const platform::RuntimeError& error) {
    return FillException(error, exception);
  };
  HRESULT outcome = DISP_E_MEMBERNOTFOUND;
  if (id == DISPID_NEWENUM) {
    if (table_.elements != nullptr) {
      outcome = Guarded(
          [&] {
            given.get()->punkVal = new ValueWalk(table_.elements(*object_));
            given.get()->vt = VT_UNKNOWN;
          },
          fail);
    }
  } else if (const Member* member = FindMember(id, flags)) {
    if (parameters->cArgs != member->arguments) {
      return DISP_E_BADPARAMCOUNT;
    }
    outcome = Guarded(
        [&] {
          const std::reverse_iterator last(parameters->rgvarg + parameters->cArgs);
          const std::vector<VARIANT> arguments(last, std::reverse_iterator(parameters->rgvarg));
          member->call(*object_, arguments, *given.get());
        },
        fail);
  }
  if (SUCCEEDED(outcome) && result != nullptr) {
    *result = given.Detach();
  }
  return outcome;
}

HRESULT ServedObject::GetTypeInfoCount(UINT* count) {
  return Guarded([&] { *count = TypeInfoOf(table_) ? 1 : 0; }, LeaveErrorInfo);
}

HRESULT ServedObject::GetTypeInfo(UINT index, LCID /*locale*/, ITypeInfo** info) {
  *info = nullptr;
  if (index != 0) {
    return DISP_E_BADINDEX;
  }
  const HRESULT asked = Guarded([&] { *info = TypeInfoOf(table_).Detach(); }, LeaveErrorInfo);
  return SUCCEEDED(asked) && *info == nullptr ? DISP_E_BADINDEX : asked;
}

void* ServedObject::Find(REFIID id) {
  const bool is_own = table_.interface_id != nullptr && id == *table_.interface_id;
  return is_own || id == IID_IUnknown || id == IID_IDispatch || id == kServedObject ? this
                                                                                    : nullptr;
}

const Member* ServedObject::FindMember(DISPID id, WORD flags) const {
  for (const Member& member : table_.members) {
    const WORD answered = member.kind == Kind::kGet ? DISPATCH_PROPERTYGET
                          : member.kind == Kind::kPut
                              ? DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF
                              : DISPATCH_METHOD;
    if ((flags & answered) != 0 && IdOf(table_, member.name) == id) {
      return &member;
    }
  }
  return nullptr;
}

DISPID IdOf(const ClassTable& table, std::string_view name) {
  DISPID id = 0;
  for (std::size_t i = 0; i < table.members.size(); ++i) {
    const auto before = table.members.first(i);
    if (std::none_of(before.begin(), before.end(),
                     [&](const Member& other) { return other.name == table.members[i].name; })) {
      ++id;
    }
    if (platform::EqualsIgnoreCase(table.members[i].name, name)) {
      return id;
    }
  }
  return DISPID_UNKNOWN;
}

ComPtr<IDispatch> Serve(const Ref<Object>& object, const ClassTable& table) {
  return object.IsNothing() ? nullptr : ComPtr<IDispatch>::Adopt(new ServedObject(object, table));
}

ComPtr<IDispatch> ServeList(std::vector<Ref<Object>> objects, const ClassTable& table) {
  return Serve(platform::MakeRef<ObjectList>(std::move(objects), table), kListTable);
}

Ref<Object> Served(IDispatch* dispatch) {
  if (dispatch == nullptr) {
    return nullptr;
  }
  const auto ours = ComPtr<IDispatch>(dispatch).As<ServedObject>(kServedObject);
  if (!ours) {
    throw platform::RuntimeError(platform::kTypeMismatch,
                                 "Type mismatch: the object is of another program");
  }
  return ours->object();
}

void WriteOut(const VARIANT& place, ComVariant value) {
  if (place.vt == (VT_BYREF | VT_VARIANT)) {
    VariantClear(place.pvarVal);
    *place.pvarVal = value.Detach();
    return;
  }
  const VARTYPE wanted = place.vt & VT_TYPEMASK;
  // An empty value has no place in a typed one; all else is of the member's own kind.
  if ((place.vt & VT_BYREF) == 0 || wanted != value.type()) {
    throw platform::RuntimeError(platform::kTypeMismatch, "Type mismatch: the place of a result");
  }
  switch (wanted) {
    case VT_I4:
      *place.plVal = value.get()->lVal;
      break;
    case VT_DATE:
      *place.pdate = value.get()->date;
      break;
    case VT_BSTR:
      SysFreeString(*place.pbstrVal);
      *place.pbstrVal = value.Detach().bstrVal;
      break;
    case VT_DISPATCH:
      if (*place.ppdispVal != nullptr) {
        (*place.ppdispVal)->Release();
      }
      *place.ppdispVal = value.Detach().pdispVal;
      break;
    default:
      throw platform::RuntimeError(platform::kTypeMismatch, "Type mismatch: the place of a result");
  }
}

}  // namespace nimbrel::com::served

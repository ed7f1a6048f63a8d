#pragma once

#include <string_view>
#include <vector>

#include "com/served/member.h"
#include "com/untyped_object.h"

namespace nimbrel::com::served {

/// One object of the host as callers of other programs see it. Each time that it is handed out it
/// is offered anew.
class ServedObject final : public UntypedObject {
 public:
  /// `object` must not be Nothing.
  ServedObject(Ref<Object> object, const ClassTable& table);

  const Ref<Object>& object() const { return object_; }

  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID locale,
                                          DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID interface_id, LCID locale, WORD flags,
                                   DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                                   UINT* wrong) override;

  /// As the object library of this program describes the class, if there is one.
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;

 private:
  ~ServedObject() override;
  void* Find(REFIID id) override;
  const Member* FindMember(DISPID id, WORD flags) const;

  Ref<Object> object_;
  const ClassTable& table_;
};

/// The number of a member, DISPID_UNKNOWN if the class has none of the name; names have no case.
DISPID IdOf(const ClassTable& table, std::string_view name);

}  // namespace nimbrel::com::served

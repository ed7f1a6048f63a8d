// The object library in its IDL against what the stand-in host answers and the binding asks for.

#include <gmock/gmock.h>

#include "com/com_text.h"
#include "com/event_source.h"
#include "com/host_objects.h"
#include "com/served/member.h"
#include "com/served/served_object.h"
#include "tests/com/bare_object.h"
#include "tests/com/com_test.h"

namespace nimbrel::com {
namespace {

using served::ClassTable;
using served::Kind;
using served::Member;

ComPtr<ITypeLib> Library() {
  ComPtr<ITypeLib> library;
  LoadTypeLibEx(ProgramBeside(L"NimbrelTrialHost.exe").c_str(), REGKIND_NONE, library.Receive());
  return library;
}

std::string NameOf(ITypeInfo& info, MEMBERID id) {
  BSTR name = nullptr;
  info.GetDocumentation(id, &name, nullptr, nullptr, nullptr);
  return TakeText(name);
}

/// "4 get Name 0": number, kind, name, count of arguments and whether the last one is a result.
std::vector<std::string> OperationsIn(ITypeInfo& info) {
  std::vector<std::string> lines;
  TYPEATTR* attributes = nullptr;
  info.GetTypeAttr(&attributes);
  for (UINT i = 0; i < attributes->cFuncs; ++i) {
    FUNCDESC* function = nullptr;
    info.GetFuncDesc(i, &function);
    if (function->memid > 0 && function->memid < 0x10000) {
      const char* kind = function->invkind == INVOKE_PROPERTYGET ? " get "
                         : function->invkind == INVOKE_FUNC      ? " call "
                                                                 : " put ";
      lines.push_back(std::to_string(function->memid) + kind + NameOf(info, function->memid) + " " +
                      std::to_string(function->cParams));
    }
    info.ReleaseFuncDesc(function);
  }
  info.ReleaseTypeAttr(attributes);
  return lines;
}

std::vector<std::string> OperationsIn(const ClassTable& table) {
  std::vector<std::string> lines;
  for (const Member& member : table.members) {
    const char* kind = member.kind == Kind::kGet   ? " get "
                       : member.kind == Kind::kPut ? " put "
                                                   : " call ";
    lines.push_back(std::to_string(served::IdOf(table, member.name)) + kind +
                    std::string(member.name) + " " + std::to_string(member.arguments));
  }
  return lines;
}

ComPtr<ITypeInfo> InterfaceOf(ITypeLib& library, std::string_view class_name) {
  const std::string wanted = "_" + std::string(class_name);
  ComPtr<ITypeInfo> info;
  for (UINT i = 0; i < library.GetTypeInfoCount(); ++i) {
    library.GetTypeInfo(i, info.Receive());
    if (NameOf(*info.get(), MEMBERID_NIL) == wanted) {
      return info;
    }
  }
  return nullptr;
}

template <class... Interfaces>
std::vector<const ClassTable*> TablesOf() {
  return {&served::TableOf<Interfaces>()...};
}

/// Every class that has members.
std::vector<const ClassTable*> Tables() {
  namespace c = Corvane8;
  return TablesOf<c::Application, c::Plan, c::PlanProperties, c::PlanDisplay, c::RiskAnalysis,
                  c::RiskOptions, c::ChangeMonitor, c::CustomFields, c::PlanTasks, c::PlanCalendars,
                  c::PlanRiskCalendars, c::RiskCalendar, c::Calendar, c::Task, c::TaskDates,
                  c::UserFields, c::Duration, c::TaskRisk, c::TaskLinks, c::LinkList, c::TaskLink,
                  c::TaskRiskCalendars, c::TaskRiskCalendar>();
}

GUID IdOf(ITypeInfo& info) {
  TYPEATTR* attributes = nullptr;
  info.GetTypeAttr(&attributes);
  const GUID id = attributes->guid;
  info.ReleaseTypeAttr(attributes);
  return id;
}

TEST(ObjectLibrary, HasTheMembersThatTheHostAnswersInTheirOrder) {
  const auto library = Library();
  ASSERT_TRUE(library);
  for (const ClassTable* table : Tables()) {
    const auto info = InterfaceOf(*library.get(), table->name);
    ASSERT_TRUE(info) << table->name;
    EXPECT_EQ(OperationsIn(*info.get()), OperationsIn(*table)) << table->name;
  }
}

TEST(ObjectLibrary, EachObjectHasTheInterfaceOfItsClassAndNoOther) {
  const auto library = Library();
  ASSERT_TRUE(library);
  const auto object = platform::MakeRef<platform::Object>();
  for (const ClassTable* table : Tables()) {
    const auto served = served::Serve(object, *table);
    for (const ClassTable* other : Tables()) {
      const auto info = InterfaceOf(*library.get(), other->name);
      ASSERT_TRUE(info) << other->name;
      const auto found = served.As<IDispatch>(IdOf(*info.get()));
      EXPECT_EQ(static_cast<bool>(found), table == other) << table->name << " as " << other->name;
    }
  }
  const auto children = InterfaceOf(*library.get(), "TaskChildren");
  ASSERT_TRUE(children);
  EXPECT_TRUE(served::ServeList({object}, served::TableOf<Corvane8::Task>())
                  .As<IDispatch>(IdOf(*children.get())));
}

TEST(ObjectLibrary, AnObjectOfTheHostsProgramHasItsInterfaceAndTellsItsType) {
  auto& control = SharedTrialProgram().control();
  control.Call("NewPlan", {1, 8});
  control.Call("OpenPlan");
  const Dispatch application(CreateByIdentifier("Corvane8.Application"), "Application", nullptr);
  const ComPtr<IDispatch> plan = ObjectOf(*application.Get("ActivePlan").get());
  ASSERT_TRUE(plan);
  const auto info = InterfaceOf(*Library().get(), "Plan");
  ASSERT_TRUE(info);
  EXPECT_TRUE(plan.As<IDispatch>(IdOf(*info.get())));
  UINT count = 0;
  ASSERT_EQ(plan->GetTypeInfoCount(&count), S_OK);
  ASSERT_EQ(count, 1U);
  ComPtr<ITypeInfo> told;
  ASSERT_EQ(plan->GetTypeInfo(0, LOCALE_SYSTEM_DEFAULT, told.Receive()), S_OK);
  EXPECT_TRUE(IsEqualGUID(IdOf(*told.get()), IdOf(*info.get())));
  EXPECT_EQ(plan->GetTypeInfo(1, LOCALE_SYSTEM_DEFAULT, told.Receive()), DISP_E_BADINDEX);
}

TEST(ObjectLibrary, NumbersTheEventsInTheirOrder) {
  const auto info = InterfaceOf(*Library().get(), "ApplicationEvents");
  ASSERT_TRUE(info);
  EXPECT_THAT(
      OperationsIn(*info.get()),
      ::testing::ElementsAre("1 call PlanBeforeRiskAnalysis 1", "2 call PlanBeforeRiskIteration 2",
                             "3 call PlanAfterRiskIteration 2", "4 call PlanAfterRiskAnalysis 1"));
}

/// Tells the type of its interface.
class TypedObject final : public BareObject {
 public:
  explicit TypedObject(ComPtr<ITypeInfo> info) : info_(std::move(info)) {}

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 1;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT /*index*/, LCID /*locale*/,
                                        ITypeInfo** info) override {
    *info = ComPtr<ITypeInfo>(info_).Detach();
    return S_OK;
  }

 private:
  ComPtr<ITypeInfo> info_;
};

TEST(ObjectLibrary, TheEventsAreFoundBesideTheObjectsInterfaceWhereNothingElseTellsThem) {
  CLSID application = {};
  ASSERT_EQ(CLSIDFromProgID(L"Corvane8.Application", &application), S_OK);
  ComPtr<ITypeInfo> class_info;
  ASSERT_EQ(Library()->GetTypeInfoOfGuid(application, class_info.Receive()), S_OK);
  HREFTYPE type = 0;
  ASSERT_EQ(class_info->GetRefTypeOfImplType(0, &type), S_OK);
  ComPtr<ITypeInfo> interface_info;
  ASSERT_EQ(class_info->GetRefTypeInfo(type, interface_info.Receive()), S_OK);

  const auto mute = MakeCom<BareObject>().As<IUnknown>(IID_IUnknown);
  const auto told = MakeCom<TypedObject>(interface_info).As<IUnknown>(IID_IUnknown);
  const EventNumbers registered = FindEvents(*mute.get(), application);
  UnregisterTrialHost();
  EXPECT_EQ(ErrorOf([&] { FindEvents(*mute.get(), application); }).first, 459);
  EXPECT_EQ(FindEvents(*told.get(), application).ids, registered.ids);
  RegisterTrialHost();
}

}  // namespace
}  // namespace nimbrel::com

#include "exchange/mod_excel.h"

#include <cstddef>
#include <string_view>
#include <utility>

#include "desktop/mod_tool_box.h"
#include "platform/runtime_error.h"

namespace nimbrel::modExcel {

std::vector<std::string> g_asColumnLetters;

namespace {

constexpr std::string_view kColumnLetters =
    "A;B;C;D;E;F;G;H;I;J;K;L;M;N;O;P;Q;R;S;T;U;V;W;X;Y;Z;AA;AB;AC;AD;AE;AF;AG;AH;AI;AJ;AK;AL;AM;AN;"
    "AO;AP;AQ;AR;AS;AT;AU;AV;AW;AX;AY;AZ;BA;BB;BC;BD;BE;BF;BG;BH;BI;BJ;BK;BL;BM;BN;BO;BP;BQ;BR;BS;"
    "BT;BU;BV;BW;BX;BY;BZ";

Services& TheServices() {
  static Services services;
  return services;
}

template <class Service>
Service& Need(Service* service) {
  if (service == nullptr) {
    platform::RaiseNothing();
  }
  return *service;
}

Ref<AutomationObject> SelectionOf(const Ref<AutomationObject>& Sheet) {
  return Sheet->GetRef("Application")->GetRef("Selection");
}

void Fill(const Ref<AutomationObject>& selection, std::int32_t ColorIndex, std::int32_t Pattern) {
  selection->GetRef("Interior")->Put("Colorindex", ColorIndex);
  selection->GetRef("Interior")->Put("Pattern", Pattern);
}

}  // namespace

void Wire(Services services) {
  TheServices() = std::move(services);
}

Ref<AutomationObject> StartExcel() {
  Ref<AutomationObject> excel;
  platform::IgnoreErrors(
      [&] { excel = Need(TheServices().servers).CreateObject("Excel.Application"); });
  if (excel.IsNothing()) {
    const std::string text = modToolBox::FormatMsg(
        "Either Microsoft Excel is not installed or there is a problem starting it.\r\n\r\nPlease "
        "%x for support.",
        {"contact Velmora Risk Analysis (" + TheServices().support_address + ")"});
    Need(TheServices().message_box).Show(text, "Weather");
  }
  return excel;
}

void InitColumnLetters() {
  g_asColumnLetters.clear();
  std::size_t begin = 0;
  for (std::size_t end = 0; end != std::string_view::npos; begin = end + 1) {
    end = kColumnLetters.find(';', begin);
    g_asColumnLetters.emplace_back(kColumnLetters.substr(begin, end - begin));
  }
}

std::string GetColumnLetter(std::int32_t Col) {
  if (g_asColumnLetters.empty()) {
    throw platform::RuntimeError(platform::kSubscriptOutOfRange,
                                 "Subscript out of range: there are no column letters yet");
  }
  std::int32_t index = 0;
  for (const std::string& letters : g_asColumnLetters) {
    if (index++ == Col - 1) {
      return letters;
    }
  }
  return {};
}

void SelectSheet(const Ref<AutomationObject>& Sheet) {
  Sheet->Call("Select");
}

bool SelectRange(const Ref<AutomationObject>& Sheet, std::int32_t Col1, std::int32_t Col2,
                 std::int32_t Row1, std::int32_t Row2) {
  try {
    const std::string text = GetColumnLetter(Col1) + std::to_string(Row1) + ":" +
                             GetColumnLetter(Col2) + std::to_string(Row2);
    Sheet->GetRef("Range", {text})->Call("Select");
    return true;
  } catch (const platform::RuntimeError&) {
    return false;
  }
}

void SetColumnsAlignment(const Ref<AutomationObject>& Sheet, const std::string& Range,
                         std::int32_t Alignment) {
  SelectSheet(Sheet);
  Sheet->GetRef("Application")->GetRef("Range", {Range})->Call("Select");
  SelectionOf(Sheet)->Put("HorizontalAlignment", Alignment);
}

void SetPercentFormat(const Ref<AutomationObject>& App, const Ref<AutomationObject>& Sheet,
                      const std::string& Range) {
  Sheet->Call("Select");
  Sheet->GetRef("Range", {Range})->Call("Select");
  App->GetRef("Selection")->Put("NumberFormat", "0.00%");
}

void SetDateFormat(const Ref<AutomationObject>& App, const Ref<AutomationObject>& Sheet,
                   const std::string& Range) {
  Sheet->GetRef("Range", {Range})->Call("Select");
  App->GetRef("Selection")->Put("NumberFormat", "dd mmm yyyy");
}

void SetRangeFill(const Ref<AutomationObject>& Sheet, const std::string& Range,
                  std::int32_t ColorIndex, std::int32_t Pattern) {
  Sheet->GetRef("Range", {Range})->Call("Select");
  Fill(SelectionOf(Sheet), ColorIndex, Pattern);
}

void SetBlockFill(const Ref<AutomationObject>& Sheet, std::int32_t Col1, std::int32_t Col2,
                  std::int32_t Row1, std::int32_t Row2, std::int32_t ColorIndex,
                  std::int32_t Pattern) {
  if (SelectRange(Sheet, Col1, Col2, Row1, Row2)) {
    Fill(SelectionOf(Sheet), ColorIndex, Pattern);
  }
}

void SetBlockFont(const Ref<AutomationObject>& Sheet, std::int32_t Col1, std::int32_t Col2,
                  std::int32_t Row1, std::int32_t Row2, std::int32_t ColorIndex, bool Bold) {
  if (SelectRange(Sheet, Col1, Col2, Row1, Row2)) {
    const Ref<AutomationObject> selection = SelectionOf(Sheet);
    selection->GetRef("Font")->Put("Colorindex", ColorIndex);
    selection->GetRef("Font")->Put("Bold", Bold);
  }
}

}  // namespace nimbrel::modExcel

#include "tests/support/automation/recording_excel.h"

#include <algorithm>
#include <set>
#include <stdexcept>

#include "platform/locale.h"
#include "platform/runtime_error.h"
#include "platform/text.h"

namespace nimbrel::recording {
namespace {

using platform::AutomationObject;
using platform::EqualsIgnoreCase;
using platform::MakeRef;
using platform::Ref;
using platform::RuntimeError;
using platform::Variant;

using Names = std::set<std::string, std::less<>>;

/// What objects of a kind have. An object of this Excel is a kind, a place and the way to it.
struct Members {
  Names objects;  // properties that lead to another object
  Names values;   // properties that are put, and read if the state knows them
  Names methods;
};

enum class Kind { kApplication, kWorkbooks, kWindow, kBook, kSheets, kSheet, kRange, kLook };

const Members& MembersOf(Kind kind) {
  static const std::map<Kind, Members> kMembers = {
      {Kind::kApplication,
       {{"Workbooks", "ActiveWindow", "Selection", "Range"},
        {"Visible", "Calculation", "DisplayAlerts"},
        {"Quit"}}},
      {Kind::kWorkbooks, {{}, {}, {"Add", "open"}}},
      {Kind::kWindow, {{}, {"Zoom"}, {}}},
      {Kind::kBook, {{"Sheets"}, {}, {"Close"}}},
      {Kind::kSheets, {{}, {"Count"}, {"Add"}}},
      {Kind::kSheet,
       {{"Application", "Columns", "Cells", "Range"}, {"Name"}, {"Select", "Delete"}}},
      {Kind::kRange,
       {{"Interior", "Font"},
        {"Value", "WrapText", "ColumnWidth", "VerticalAlignment", "HorizontalAlignment",
         "NumberFormat"},
        {"Select"}}},
      {Kind::kLook, {{}, {"Colorindex", "Pattern", "Bold"}, {}}},
  };
  return kMembers.at(kind);
}

/// The name as this Excel spells it, empty if it is not among them.
std::string Known(const Names& names, std::string_view member) {
  const auto found = std::find_if(names.begin(), names.end(), [member](const std::string& name) {
    return EqualsIgnoreCase(name, member);
  });
  return found == names.end() ? std::string() : *found;
}

/// The same; raises error 438 if it is not among them.
std::string Spelled(const Names& names, std::string_view member) {
  std::string name = Known(names, member);
  if (name.empty()) {
    throw RuntimeError(platform::kMemberNotFound, "No member " + std::string(member));
  }
  return name;
}

std::string ArgumentsText(std::span<const Variant> arguments) {
  std::string text;
  for (const Variant& argument : arguments) {
    text += (text.empty() ? "" : ", ") + LogText(argument);
  }
  return text.empty() ? "" : "(" + text + ")";
}

/// Where in the workbook an object is.
struct Place {
  std::shared_ptr<ExcelState> excel;
  std::shared_ptr<SheetState> sheet;  // of a sheet and what is on it
  CellPlace cell = {0, 0};            // of a range that is one cell
  std::string range;                  // of any other
};

class Node final : public AutomationObject {
 public:
  Node(Recorder& recorder, Kind kind, std::string path, Place place)
      : recorder_(recorder), kind_(kind), path_(std::move(path)), place_(std::move(place)) {}

 protected:
  Variant DoGet(std::string_view member, std::span<const Variant> arguments) override {
    RequireRunning();
    const Members& members = MembersOf(kind_);
    if (const std::string object = Known(members.objects, member); !object.empty()) {
      return Find(object, arguments);
    }
    const std::string name = Spelled(members.values, member);
    Log(name);
    return Read(name);
  }
  void DoPut(std::string_view member, const Variant& value,
             std::span<const Variant> /*arguments*/) override {
    const std::string name = Spelled(MembersOf(kind_).values, member);
    Log(name + " = " + LogText(value));
    if (name == "Visible") {
      place_.excel->visible = *value.Get<bool>();
    } else if (name == "Name") {
      place_.sheet->name = *value.Get<std::string>();
    } else if (name == "Value") {
      place_.sheet->cells[place_.cell] = value;
    }
  }
  Variant DoCall(std::string_view member, std::span<const Variant> arguments) override {
    const std::string name = Spelled(MembersOf(kind_).methods, member);
    Log(name + ArgumentsText(arguments));
    return Run(name);
  }
  std::vector<Ref<AutomationObject>> DoItems() override {
    RequireRunning();
    if (kind_ != Kind::kSheets) {
      return AutomationObject::DoItems();
    }
    std::vector<Ref<AutomationObject>> sheets;
    for (const std::shared_ptr<SheetState>& sheet : place_.excel->sheets) {
      sheets.push_back(MakeSheet(sheet));
    }
    return sheets;
  }

 private:
  void Log(const std::string& step) {
    recorder_.Call(path_, step);
    ExcelState& excel = *place_.excel;
    excel.closed =
        excel.closed || (!excel.closed_at.empty() &&
                         (path_ + "." + step).find(excel.closed_at) != std::string::npos);
    RequireRunning();
  }
  void RequireRunning() const {
    constexpr std::int32_t kServerUnavailable = 462;
    if (place_.excel->closed) {
      throw RuntimeError(kServerUnavailable, "The remote server machine does not exist");
    }
  }

  Ref<AutomationObject> Make(Kind kind, const std::string& step, Place place = {}) const {
    place.excel = place_.excel;
    return MakeRef<Node>(recorder_, kind, path_ + "." + step, std::move(place));
  }
  Ref<AutomationObject> MakeSheet(const std::shared_ptr<SheetState>& sheet) const {
    return MakeRef<Node>(recorder_, Kind::kSheet, sheet->label,
                         Place{place_.excel, sheet, {0, 0}, {}});
  }

  Variant Find(const std::string& name, std::span<const Variant> arguments) {
    if (name == "Sheets") {
      return arguments.empty() ? Variant(Make(Kind::kSheets, name))
                               : Variant(MakeSheet(SheetAt(arguments.front())));
    }
    const std::string step = name + ArgumentsText(arguments);
    if (name == "Application") {
      return Make(Kind::kApplication, step);
    }
    if (name == "Workbooks") {
      return Make(Kind::kWorkbooks, step);
    }
    if (name == "ActiveWindow") {
      return Make(Kind::kWindow, step);
    }
    if (name == "Interior" || name == "Font") {
      return Make(Kind::kLook, step, {{}, place_.sheet, {0, 0}, {}});
    }
    if (name == "Cells" && arguments.size() == 2) {
      const CellPlace cell = {*arguments[0].Get<std::int32_t>(), *arguments[1].Get<std::int32_t>()};
      return Make(Kind::kRange, step, {{}, place_.sheet, cell, {}});
    }
    const std::shared_ptr<SheetState>& sheet =
        kind_ == Kind::kApplication ? place_.excel->active : place_.sheet;
    const std::string range =
        arguments.empty() ? name : arguments.front().ToText(platform::DefaultLocale());
    return Make(Kind::kRange, step, {{}, sheet, {0, 0}, range});
  }

  std::shared_ptr<SheetState> SheetAt(const Variant& index) const {
    const std::vector<std::shared_ptr<SheetState>>& sheets = place_.excel->sheets;
    if (const auto* name = index.Get<std::string>()) {
      for (const std::shared_ptr<SheetState>& sheet : sheets) {
        if (EqualsIgnoreCase(sheet->name, *name)) {
          return sheet;
        }
      }
    } else if (const auto* number = index.Get<std::int32_t>();
               number != nullptr && *number >= 1 && *number <= std::ssize(sheets)) {
      return sheets[static_cast<std::size_t>(*number - 1)];
    }
    throw RuntimeError(platform::kSubscriptOutOfRange, "No sheet " + LogText(index));
  }

  Variant Read(const std::string& name) const {
    if (name == "Count") {
      return static_cast<std::int32_t>(place_.excel->sheets.size());
    }
    if (name == "Name") {
      return place_.sheet->name;
    }
    if (name == "Value") {
      const auto cell = place_.sheet->cells.find(place_.cell);
      return cell == place_.sheet->cells.end() ? Variant() : cell->second;
    }
    throw RuntimeError(platform::kMemberNotFound, "Nothing is known of " + path_ + "." + name);
  }

  Variant Run(const std::string& name) {
    ExcelState& excel = *place_.excel;
    if (kind_ == Kind::kWorkbooks) {
      excel.open = true;
      for (int i = 0; name == "Add" && i < excel.new_sheets; ++i) {
        excel.AddSheet("Sheet" + std::to_string(excel.sheets_made + 1));
      }
      return MakeRef<Node>(recorder_, Kind::kBook, "Book", Place{place_.excel, {}, {0, 0}, {}});
    }
    if (name == "Add") {
      const auto at = std::find(excel.sheets.begin(), excel.sheets.end(), excel.active);
      const std::ptrdiff_t place = at - excel.sheets.begin();
      excel.AddSheet("Sheet" + std::to_string(excel.sheets_made + 1));
      std::rotate(excel.sheets.begin() + place, excel.sheets.end() - 1, excel.sheets.end());
      excel.active = excel.sheets[static_cast<std::size_t>(place)];
    } else if (name == "Delete") {
      std::erase(excel.sheets, place_.sheet);
      if (excel.active == place_.sheet) {
        excel.active = excel.sheets.front();
      }
    } else if (name == "Close") {
      excel.open = false;
    } else if (name == "Select" && kind_ == Kind::kSheet) {
      excel.active = place_.sheet;
    } else if (name == "Select") {
      SelectRange();
    }
    return {};
  }

  /// As in Excel, nothing can be selected on a sheet that is not the active one.
  void SelectRange() {
    if (place_.excel->active != place_.sheet) {
      throw RuntimeError(platform::kApplicationDefined, "Select method of Range class failed");
    }
    place_.sheet->selection = place_.range;
  }

  Recorder& recorder_;
  Kind kind_;
  std::string path_;
  Place place_;
};

}  // namespace

SheetState& ExcelState::AddSheet(const std::string& name) {
  const auto sheet = std::make_shared<SheetState>();
  sheet->label = "Sheet" + std::to_string(++sheets_made);
  sheet->name = name;
  sheets.push_back(sheet);
  if (active == nullptr) {
    active = sheet;
  }
  return *sheet;
}

SheetState& ExcelState::Sheet(const std::string& name) const {
  for (const std::shared_ptr<SheetState>& sheet : sheets) {
    if (sheet->name == name) {
      return *sheet;
    }
  }
  throw std::out_of_range("no sheet " + name);
}

RecordingExcel::RecordingExcel(Recorder& recorder)
    : recorder_(recorder), state_(std::make_shared<ExcelState>()) {}

Ref<AutomationObject> RecordingExcel::CreateObject(const std::string& identifier) {
  recorder_.Call("Automation", "CreateObject", identifier);
  if (!installed) {
    throw RuntimeError(platform::kCannotCreateObject, "There is no " + identifier);
  }
  return MakeRef<Node>(recorder_, Kind::kApplication, "Excel", Place{state_, {}, {0, 0}, {}});
}

}  // namespace nimbrel::recording

#include "spreadsheet/xlsx_reader.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "spreadsheet/package.h"
#include "spreadsheet/read_error.h"
#include "spreadsheet/relationships.h"
#include "spreadsheet/sheet_name.h"
#include "spreadsheet/text_coding.h"
#include "spreadsheet/xlsx_parts.h"

namespace nimbrel::spreadsheet {
namespace {

using Relationships = std::vector<Relationship>;

const Relationship* FindKind(const Relationships& relationships, std::string_view kind) {
  const auto found =
      std::find_if(relationships.begin(), relationships.end(),
                   [&](const Relationship& relationship) { return relationship.kind == kind; });
  return found == relationships.end() ? nullptr : &*found;
}

std::string FindWorkbookPart(Package& package) {
  const Relationships relationships = ReadRelationships(package, "");
  const Relationship* const document = FindKind(relationships, "officeDocument");
  if (document == nullptr) {
    RaiseReadError({.file = package.file()}, "is a package, but no .xlsx workbook");
  }
  const std::string part = ResolveTarget(package, "", *document);
  if (part.ends_with(".bin")) {
    RaiseReadError({.file = package.file()}, "is a binary workbook (.xlsb), which is not read");
  }
  return part;
}

/// Reads the sheets that hold cells, in the workbook's order.
void ReadSheets(Package& package, const std::string& part, const Relationships& relationships,
                const XlsxWorkbookPart& listed, XlsxCellContext& context) {
  std::unordered_map<std::string_view, const Relationship*> links;
  for (const Relationship& relationship : relationships) {
    links.try_emplace(relationship.id, &relationship);
  }
  for (const XlsxSheetEntry& entry : listed.sheets) {
    const auto found = links.find(entry.relationship);
    if (found == links.end()) {
      RaiseReadError({.file = package.file(), .sheet = entry.name},
                     "the sheet refers to " + Quoted(entry.relationship) +
                         ", which is not among the workbook's relationships");
    }
    if (found->second->kind == "worksheet") {
      const std::string sheet_part = ResolveTarget(package, part, *found->second);
      ReadXlsxSheet(package, sheet_part, context, context.workbook.AddSheet(entry.name));
    }
  }
}

}  // namespace

Workbook ReadXlsx(std::string_view bytes, const std::string& name) {
  Package package(bytes, name);
  const std::string part = FindWorkbookPart(package);
  const Relationships relationships = ReadRelationships(package, part);
  const XlsxWorkbookPart listed = ReadXlsxWorkbookPart(package, part);
  std::vector<std::string> names;
  for (const XlsxSheetEntry& entry : listed.sheets) {
    names.push_back(entry.name);
  }
  CheckSheetNames({.file = name}, names);

  Workbook workbook;
  workbook.set_date_1904(listed.date_1904);
  ReadCounts counts;
  XlsxCellContext context{.workbook = workbook, .counts = counts, .formats = {}};
  if (const auto* styles = FindKind(relationships, "styles")) {
    context.has_styles = true;
    context.formats = ReadXlsxStyles(package, ResolveTarget(package, part, *styles), workbook);
  }
  if (const auto* texts = FindKind(relationships, "sharedStrings")) {
    ReadXlsxSharedTexts(package, ResolveTarget(package, part, *texts), counts, workbook);
    context.shared_texts = workbook.text_count();
  }
  ReadSheets(package, part, relationships, listed, context);
  if (workbook.sheets().empty()) {
    RaiseReadError({.file = name}, "has no sheet with cells");
  }
  return workbook;
}

}  // namespace nimbrel::spreadsheet

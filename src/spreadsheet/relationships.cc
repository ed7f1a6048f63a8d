#include "spreadsheet/relationships.h"

#include <array>
#include <charconv>
#include <utility>

#include "spreadsheet/limits.h"
#include "spreadsheet/read_error.h"
#include "spreadsheet/text_coding.h"
#include "spreadsheet/xml_parser.h"

namespace nimbrel::spreadsheet {
namespace {

using std::literals::operator""sv;

constexpr std::array kOfficeTypes = {
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/"sv,
    "http://purl.oclc.org/ooxml/officeDocument/relationships/"sv,
};

/// The folder of a part with its "/" at the end; empty for the package itself.
std::string_view FolderOf(std::string_view part) {
  const auto slash = part.rfind('/');
  return slash == std::string_view::npos ? std::string_view() : part.substr(0, slash + 1);
}

enum class State { kStart, kList, kItem, kOther };

class RelationshipSink : public XmlStates<State> {
 public:
  explicit RelationshipSink(std::string file) : place_{.file = std::move(file)} {}

  std::vector<Relationship> Take() { return std::move(relationships_); }

 protected:
  State Enter(State parent, const XmlElement& element) override {
    if (element.vocabulary() != Vocabulary::kRelationships) {
      return State::kOther;
    }
    if (parent == State::kStart && element.name() == "Relationships") {
      return State::kList;
    }
    if (parent != State::kList || element.name() != "Relationship") {
      return State::kOther;
    }
    if (relationships_.size() == kMaxRelationships) {
      RaiseReadError(
          place_, "a part has more than " + std::to_string(kMaxRelationships) + " relationships");
    }
    Relationship relationship;
    relationship.id = ShortText(element.Attribute("Id").value_or(""));
    relationship.target = ShortText(element.Attribute("Target").value_or(""));
    relationship.external = element.Attribute("TargetMode").value_or("") == "External";
    const std::string_view type = element.Attribute("Type").value_or("");
    for (const auto prefix : kOfficeTypes) {
      if (type.starts_with(prefix)) {
        relationship.kind = type.substr(prefix.size());
      }
    }
    relationships_.push_back(std::move(relationship));
    return State::kItem;
  }
  void Leave(State) override {}
  void Take(State, std::string_view) override {}

 private:
  std::string ShortText(std::string_view text) const {
    if (text.size() > kMaxNameBytes) {
      RaiseReadError(place_, "a relationship has a name that is too long: " + Quoted(text));
    }
    return std::string(text);
  }

  ReadPlace place_;
  std::vector<Relationship> relationships_;
};

/// Follows a path from a folder. Nothing if it leads out of the package.
std::optional<std::string> FollowPath(std::string_view folder, std::string_view path) {
  std::vector<std::string_view> steps;
  const auto walk = [&](std::string_view way) {
    while (!way.empty()) {
      const auto slash = way.find('/');
      const auto step = way.substr(0, slash);
      way.remove_prefix(slash == std::string_view::npos ? way.size() : slash + 1);
      if (step == "..") {
        if (steps.empty()) {
          return false;
        }
        steps.pop_back();
      } else if (!step.empty() && step != ".") {
        steps.push_back(step);
      }
    }
    return true;
  };
  const bool from_root = path.starts_with('/');
  if ((!from_root && !walk(folder)) || !walk(path)) {
    return std::nullopt;
  }
  std::string name;
  for (const auto step : steps) {
    name += (name.empty() ? "" : "/");
    name += step;
  }
  return name;
}

std::string DecodePercent(std::string_view text) {
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    unsigned byte = 0;
    if (text[i] == '%' && i + 2 < text.size()) {
      const char* const end = text.data() + i + 3;
      if (std::from_chars(text.data() + i + 1, end, byte, 16).ptr == end) {
        decoded += static_cast<char>(byte);
        i += 2;
        continue;
      }
    }
    decoded += text[i];
  }
  return decoded;
}

}  // namespace

std::vector<Relationship> ReadRelationships(Package& package, std::string_view part) {
  const std::string_view folder = FolderOf(part);
  std::string name(folder);
  name += "_rels/";
  name += part.substr(folder.size());
  name += ".rels";
  if (!package.Has(name)) {
    return {};
  }
  RelationshipSink sink(package.file());
  ParseXml(package, name, sink);
  if (!sink.knows_root()) {
    RaiseReadError({.file = package.file()}, "part " + Quoted(name) + " lists no relationships");
  }
  return sink.Take();
}

std::string ResolveTarget(const Package& package, std::string_view part,
                          const Relationship& relationship) {
  const ReadPlace place{.file = package.file()};
  if (relationship.external) {
    RaiseReadError(place, "refers to " + Quoted(relationship.target) + " outside the package");
  }
  const auto name = FollowPath(FolderOf(part), relationship.target);
  if (!name) {
    RaiseReadError(place, "refers to " + Quoted(relationship.target) + " outside the package");
  }
  if (package.Has(*name)) {
    return *name;
  }
  const std::string decoded = DecodePercent(*name);
  // What a decoded name holds is looked up as it is and never followed as a path.
  if (!package.Has(decoded)) {
    RaiseReadError(place, "part " + Quoted(*name) + " is missing");
  }
  return decoded;
}

}  // namespace nimbrel::spreadsheet

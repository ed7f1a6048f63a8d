#include "nimbrel/json_node.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <set>
#include <string_view>

#include "engine/calendar/instant.h"
#include "nimbrel/command_error.h"
#include "nimbrel/input_text.h"
#include "platform/text.h"

namespace nimbrel::cli {
namespace {

constexpr double kMostDays = 73050;  // 200 years

/// Refuses an object that has a key twice, of which a parser would silently take one.
class UniqueKeys {
 public:
  explicit UniqueKeys(const std::string& file) : file_(file) {}

  bool operator()(int /*depth*/, Json::parse_event_t event, const Json& parsed) {
    if (event == Json::parse_event_t::object_start) {
      open_.emplace_back();
    } else if (event == Json::parse_event_t::object_end) {
      open_.pop_back();
    } else if (event == Json::parse_event_t::key) {
      const auto& key = parsed.get_ref<const std::string&>();
      if (!open_.back().insert(key).second) {
        throw BadInput(fmt::format("{}: expected each key of an object once, found {} twice", file_,
                                   QuotedText(key)));
      }
    }
    return true;
  }

 private:
  const std::string& file_;
  std::vector<std::set<std::string>> open_;  // keys of the objects around this place
};

}  // namespace

Json ParseJsonDocument(const std::string& text, const std::string& file) {
  const auto fault = [&](std::size_t at, const std::string& expected, const std::string& found) {
    const auto row =
        1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(at), '\n');
    return BadInput(fmt::format("{}:{}: expected {}, found {}", file, row, expected, found));
  };
  try {
    UniqueKeys unique(file);
    return Json::parse(text, std::ref(unique));
  } catch (const Json::parse_error& error) {
    const std::size_t at = std::min(error.byte > 0 ? error.byte - 1 : 0, text.size());
    throw fault(
        at, "JSON",
        at >= text.size() ? std::string("the end of the file") : QuotedText(text.substr(at, 20)));
  } catch (const Json::out_of_range& error) {
    // A number beyond what can be held; the library gives its text in quotes, and no place.
    const std::string_view what = error.what();
    const std::size_t first = std::min(what.find('\''), what.size() - 1) + 1;
    const std::string number(what.substr(first, what.rfind('\'') - first));
    throw fault(std::min(text.find(number), text.size()), "a number that is not so large",
                QuotedText(number));
  }
}

void NodeReader::Fail(const std::string& path, const std::string& expected,
                      const std::string& found) const {
  throw BadInput(fmt::format("{}: {}: expected {}, found {}", file_, path, expected, found));
}

void NodeReader::Fail(const Node& node, const std::string& expected) const {
  if (node.value.is_object() || node.value.is_array()) {
    Fail(node.path, expected, node.value.is_object() ? "an object" : "a list");
  }
  if (node.value.is_string()) {
    Fail(node.path, expected, QuotedText(node.value.get_ref<const std::string&>()));
  }
  Fail(node.path, expected, node.value.dump());
}

void NodeReader::RequireObject(const Node& node,
                               std::initializer_list<std::string_view> keys) const {
  if (!node.value.is_object()) {
    Fail(node, "an object");
  }
  for (const auto& [key, value] : node.value.items()) {
    if (std::find(keys.begin(), keys.end(), key) == keys.end()) {
      Fail(node.path, fmt::format("only the keys {}", fmt::join(keys, ", ")), QuotedText(key));
    }
  }
}

Node NodeReader::Child(const Node& node, const char* key) const {
  const auto found = node.value.find(key);
  if (found == node.value.end()) {
    Fail(node.path, fmt::format("the key \"{}\"", key), "none");
  }
  return {*found, node.path + "." + key};
}

std::vector<Node> NodeReader::OptionalList(const Node& node, const char* key) const {
  return Has(node, key) ? List(Child(node, key)) : std::vector<Node>();
}

std::vector<Node> NodeReader::List(const Node& node) const {
  if (!node.value.is_array()) {
    Fail(node, "a list");
  }
  std::vector<Node> items;
  for (std::size_t i = 0; i < node.value.size(); ++i) {
    items.push_back({node.value[i], fmt::format("{}[{}]", node.path, i)});
  }
  return items;
}

const std::string& NodeReader::Text(const Node& node) const {
  if (!node.value.is_string()) {
    Fail(node, "a text");
  }
  return node.value.get_ref<const std::string&>();
}

const std::string& NodeReader::Name(const Node& node) const {
  const std::string& name = Text(node);
  if (platform::Trim(name).empty()) {
    Fail(node, "a name");
  }
  return name;
}

std::vector<std::string> NodeReader::OptionalNames(const Node& node, const char* key) const {
  std::vector<std::string> names;
  for (const Node& item : OptionalList(node, key)) {
    names.push_back(Name(item));
  }
  return names;
}

std::int32_t NodeReader::Day(const Node& node) const {
  const engine::Instant day =
      node.value.is_string() ? engine::ParseIsoText(Text(node)) : engine::Instant();
  if (day.IsAbsent() || Text(node).size() != 10) {
    Fail(node, "a date YYYY-MM-DD");
  }
  return day.day();
}

std::int32_t NodeReader::WholeDays(const Node& node) const {
  const double days = node.value.is_number() ? node.value.get<double>() : -1;
  if (days < 0 || days > kMostDays || days != std::floor(days)) {
    Fail(node, fmt::format("a whole number of days from 0 to {}", kMostDays));
  }
  return static_cast<std::int32_t>(days);
}

double NodeReader::NumberFrom(const Node& node, double least, double most) const {
  const double number = node.value.is_number() ? node.value.get<double>() : least - 1;
  if (!(number >= least && number <= most)) {
    Fail(node, fmt::format("a number from {:g} to {:g}", least, most));
  }
  return number;
}

bool NodeReader::Boolean(const Node& node) const {
  if (!node.value.is_boolean()) {
    Fail(node, "true or false");
  }
  return node.value.get<bool>();
}

}  // namespace nimbrel::cli

#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "nimbrel/json_text.h"

namespace nimbrel::cli {

/// Reads a whole JSON document. Raises CommandError (the input is bad): "FILE:ROW: ..." for text
/// that is no JSON, and for an object with a key twice, of which a parser would silently take one.
Json ParseJsonDocument(const std::string& text, const std::string& file);

/// A value of a document, by its path from "$" on.
struct Node {
  const Json& value;
  std::string path;
};

/// Reads nodes; whatever is not as expected raises CommandError (the input is bad), which names
/// file and path. The name of the file must outlive the reader, the document its nodes.
class NodeReader {
 public:
  explicit NodeReader(const std::string& file) : file_(file) {}

  [[noreturn]] void Fail(const std::string& path, const std::string& expected,
                         const std::string& found) const;
  [[noreturn]] void Fail(const Node& node, const std::string& expected) const;

  /// Checks that the node is an object with no other keys than these.
  void RequireObject(const Node& node, std::initializer_list<std::string_view> keys) const;

  bool Has(const Node& node, const char* key) const { return node.value.contains(key); }
  Node Child(const Node& node, const char* key) const;
  /// The items of a list; none where the key is missing.
  std::vector<Node> OptionalList(const Node& node, const char* key) const;
  std::vector<Node> List(const Node& node) const;

  const std::string& Text(const Node& node) const;
  /// A text with something in it.
  const std::string& Name(const Node& node) const;
  std::vector<std::string> OptionalNames(const Node& node, const char* key) const;
  /// A date without a time, as a day.
  std::int32_t Day(const Node& node) const;
  /// From 0 to those of 200 years, as in plans that are imported.
  std::int32_t WholeDays(const Node& node) const;
  double NumberFrom(const Node& node, double least, double most) const;
  double Probability(const Node& node) const { return NumberFrom(node, 0, 1); }
  bool Boolean(const Node& node) const;

 private:
  const std::string& file_;
};

}  // namespace nimbrel::cli

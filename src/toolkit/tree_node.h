#pragma once

#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "platform/ref.h"
#include "toolkit/control.h"

namespace nimbrel::toolkit {

class Node;
class TreeView;

using NodeRef = platform::Ref<Node>;

/// A node of a tree. A node that has been taken out lives on for those who hold it, with its texts,
/// alone and seen nowhere.
class Node final : public platform::Object {
 public:
  Node(std::string key, std::string text) : key_(std::move(key)), text_(std::move(text)) {}

  /// Empty for a node without one.
  const std::string& Key() const { return key_; }
  /// Raises error 35602 for a key that another node of the tree has; the key is then as it was.
  void SetKey(const std::string& key);
  const std::string& Text() const { return text_; }
  void SetText(std::string text);
  /// Number of its picture in the tree's image list, from 1; 0 for none.
  std::int32_t Image() const { return image_; }
  /// Raises error 35600 for a picture that is not there.
  void SetImage(std::int32_t image);
  const std::string& Tag() const { return tag_; }
  void SetTag(std::string tag) { tag_ = std::move(tag); }

  /// Nothing for a node at the top.
  NodeRef Parent() const;
  /// Moves the node with all below it under `parent`, behind its other children or, if they are
  /// sorted, to its place among them; Nothing moves it to the top. Raises error 35614 for the node
  /// itself or one below it, and 35601 unless both are in one tree.
  void SetParent(const NodeRef& parent);
  /// The first child; Nothing if there is none.
  NodeRef Child() const { return NodeRef(first_child_); }
  NodeRef Next() const { return NodeRef(next_); }
  NodeRef Previous() const { return NodeRef(previous_); }
  /// Number of its direct children.
  std::int32_t Children() const { return children_; }
  /// Number of nodes above it.
  std::int32_t Level() const;

  bool Expanded() const { return expanded_; }
  /// Raises no event.
  void SetExpanded(bool expanded);

  /// Whether its children stand in the order of their texts, without regard to case, character by
  /// character. While it is set they are kept so; children of equal texts keep their order.
  bool Sorted() const { return sorted_index_ != nullptr; }
  void SetSorted(bool sorted);

  /// Whether all nodes above it are expanded.
  bool IsShown() const;
  /// Expands all nodes above it and asks the face to bring it into view.
  void EnsureVisible();

 private:
  friend class NodeList;
  friend class TreeView;

  using SortedIndex = std::multimap<std::string, Node*, std::less<>>;

  /// Puts the node before `before`, or at the end for null; in a sorted parent to its place.
  void Link(Node& parent, Node* before);
  void Unlink();
  void SortChildren();
  /// Leaves the node alone, after its removal or that of its tree.
  void Forget();
  void TellChanged(Property property) const;

  TreeView* tree_ = nullptr;  // null once taken out
  std::string key_;
  std::string text_;
  std::string tag_;
  std::int32_t image_ = 0;
  bool expanded_ = false;
  Node* parent_ = nullptr;
  Node* first_child_ = nullptr;
  Node* last_child_ = nullptr;
  Node* next_ = nullptr;
  Node* previous_ = nullptr;
  std::int32_t children_ = 0;
  /// Where each child stands, by its folded text; only while the children are sorted.
  std::unique_ptr<SortedIndex> sorted_index_;
  SortedIndex::iterator place_in_index_;        // in the parent's index, if it has one
  std::list<NodeRef>::iterator place_in_list_;  // in the tree's list of nodes
};

}  // namespace nimbrel::toolkit

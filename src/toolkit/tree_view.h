#pragma once

#include <cstdint>
#include <functional>
#include <list>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/text.h"
#include "toolkit/control.h"
#include "toolkit/image_list.h"
#include "toolkit/tree_node.h"

namespace nimbrel::toolkit {

/// How a new node stands to the one given with it.
enum class Relationship { kFirst, kLast, kNext, kPrevious, kChild };

/// All nodes of a tree, in the order of adding. Keys have no case. Add and Item by key take
/// constant time, Remove time linear in what goes.
class NodeList {
 public:
  explicit NodeList(TreeView& tree) : tree_(tree) {}
  NodeList(const NodeList&) = delete;
  NodeList& operator=(const NodeList&) = delete;
  ~NodeList();

  std::int32_t Count() const { return static_cast<std::int32_t>(nodes_.size()); }
  /// Adds a node at the end of the top level.
  NodeRef Add(const std::string& key, std::string text, std::int32_t image = 0);
  /// Adds a node as a sibling of `relative` or as its last child; under a sorted parent it goes to
  /// its place in the order instead. Raises error 35602 for a key that is there, 35601 for a
  /// relative that is not in this tree, 35600 for a picture that is not there; the tree is then as
  /// it was.
  NodeRef Add(const NodeRef& relative, Relationship relationship, const std::string& key,
              std::string text, std::int32_t image = 0);
  /// Raises error 35601 if there is none.
  NodeRef Item(std::string_view key) const;
  bool Contains(std::string_view key) const { return keys_.contains(key); }
  /// Takes a node out with all below it; a selected one leaves no SelectedItem. Raises error 35601
  /// if there is none.
  void Remove(std::string_view key);
  void Clear();

  /// In the order of adding. Removing a node ends the life of its own iterator alone.
  std::list<NodeRef>::const_iterator begin() const { return nodes_.begin(); }
  std::list<NodeRef>::const_iterator end() const { return nodes_.end(); }

 private:
  friend class Node;
  friend class TreeView;

  NodeRef Insert(const std::string& key, std::string text, std::int32_t image, Node& parent,
                 Node* before);

  TreeView& tree_;
  std::list<NodeRef> nodes_;
  std::unordered_map<std::string, Node*, platform::IgnoreCaseHash, platform::IgnoreCaseEqual> keys_;
};

/// What a tree shows with its nodes.
enum class TreeStyle { kText = 0, kTreelinesPlusMinusPictureText = 7 };

/// A tree of nodes, one of which may be selected.
class TreeView final : public Control {
 public:
  TreeView(Container& parent, std::string name, Place place = {});

  ControlKind Kind() const override { return ControlKind::kTreeView; }

  NodeList& Nodes() { return nodes_; }
  const NodeList& Nodes() const { return nodes_; }
  /// The first node of the top level; Nothing in an empty tree.
  NodeRef Root() const { return top_->Child(); }

  TreeStyle Style() const { return style_; }
  void SetStyle(TreeStyle style);
  /// Where the nodes' pictures are; null for none. Must outlive its use.
  const ImageList* Images() const { return images_; }
  void SetImages(const ImageList* images);

  /// The selected node or Nothing.
  const NodeRef& SelectedItem() const { return selected_; }
  /// Raises no event. Raises error 35601 for a node that is not in this tree.
  void SetSelectedItem(const NodeRef& node);

  /// The node that was last asked to be brought into view, for faces; Nothing if there is none or
  /// it has been taken out.
  const NodeRef& ScrollTarget() const { return scroll_target_; }

  /// The node that stands below, or above, on show; Nothing at the end.
  static NodeRef ShownBelow(const Node& node);
  static NodeRef ShownAbove(const Node& node);

  /// Also "SelectedItem": the text of the selected node, or empty.
  std::optional<std::string> PropertyText(std::string_view property) const override;

  /// A node is clicked, or reached by the arrow keys; it is then the SelectedItem.
  std::function<void(const NodeRef& node)> NodeClick;

  /// Why a hand can't click on a node at present; empty if it can.
  std::string WhyNoNode(const NodeRef& node) const;
  /// A click on a node, which must be in this tree. Those above it are opened first.
  GestureResult UserClickNode(const NodeRef& node);
  /// Opens or closes a node by its sign. If the selected node goes out of sight by that, the closed
  /// one takes the selection, as by a click.
  GestureResult UserExpand(const NodeRef& node, bool expanded);

 protected:
  bool OnKey(Key key) override;

 private:
  friend class Node;
  friend class NodeList;

  void Select(const NodeRef& node);
  void Open(const NodeRef& node, bool expanded);
  void CheckImage(std::int32_t image) const;
  bool Owns(const NodeRef& node) const;

  NodeRef top_;  // the unseen parent of the top level
  NodeList nodes_{*this};
  const ImageList* images_ = nullptr;
  NodeRef selected_;
  NodeRef scroll_target_;
  TreeStyle style_ = TreeStyle::kText;
};

}  // namespace nimbrel::toolkit

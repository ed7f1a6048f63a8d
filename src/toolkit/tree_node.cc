#include "toolkit/tree_node.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/runtime_error.h"
#include "platform/text.h"
#include "toolkit/errors.h"
#include "toolkit/tree_view.h"

namespace nimbrel::toolkit {

void Node::TellChanged(Property property) const {
  if (tree_ != nullptr) {
    tree_->Changed(property);
  }
}

void Node::SetKey(const std::string& key) {
  if (tree_ != nullptr && !platform::EqualsIgnoreCase(key, key_)) {
    auto& keys = tree_->nodes_.keys_;
    if (!key.empty() && !keys.try_emplace(key, this).second) {
      throw platform::RuntimeError(kKeyNotUnique, "Key is not unique in collection: " + key);
    }
    keys.erase(key_);
  }
  key_ = key;
}

void Node::SetText(std::string text) {
  text_ = std::move(text);
  if (parent_ != nullptr && parent_->Sorted()) {
    Node& parent = *parent_;
    Unlink();
    Link(parent, nullptr);
  }
  TellChanged(Property::kEntries);
}

void Node::SetImage(std::int32_t image) {
  if (tree_ != nullptr) {
    tree_->CheckImage(image);
  }
  image_ = image;
  TellChanged(Property::kEntries);
}

NodeRef Node::Parent() const {
  const bool at_top = parent_ == nullptr || parent_ == tree_->top_.get();
  return at_top ? NodeRef() : NodeRef(parent_);
}

void Node::SetParent(const NodeRef& parent) {
  const bool in_one_tree = tree_ != nullptr && (parent.IsNothing() || parent->tree_ == tree_);
  if (!in_one_tree) {
    throw platform::RuntimeError(kElementNotFound,
                                 "Element not found: the nodes are not in one tree");
  }
  Node& target = parent.IsNothing() ? *tree_->top_ : *parent;
  for (const Node* above = &target; above != nullptr; above = above->parent_) {
    if (above == this) {
      throw platform::RuntimeError(kWouldIntroduceCycle,
                                   "This would introduce a cycle: " + text_ + " below itself");
    }
  }
  Unlink();
  Link(target, nullptr);
  TellChanged(Property::kEntries);
}

std::int32_t Node::Level() const {
  std::int32_t level = 0;
  for (NodeRef above = Parent(); !above.IsNothing(); above = above->Parent()) {
    ++level;
  }
  return level;
}

void Node::SetExpanded(bool expanded) {
  if (expanded != expanded_) {
    expanded_ = expanded;
    TellChanged(Property::kExpanded);
  }
}

void Node::SetSorted(bool sorted) {
  if (sorted == Sorted()) {
    return;
  }
  sorted_index_.reset();
  if (sorted) {
    SortChildren();
    TellChanged(Property::kEntries);
  }
}

bool Node::IsShown() const {
  for (NodeRef above = Parent(); !above.IsNothing(); above = above->Parent()) {
    if (!above->Expanded()) {
      return false;
    }
  }
  return true;
}

void Node::EnsureVisible() {
  for (NodeRef above = Parent(); !above.IsNothing(); above = above->Parent()) {
    above->SetExpanded(true);
  }
  if (tree_ != nullptr) {
    tree_->scroll_target_ = NodeRef(this);
    tree_->Changed(Property::kScroll);
  }
}

void Node::Link(Node& parent, Node* before) {
  if (parent.sorted_index_ != nullptr) {
    SortedIndex& index = *parent.sorted_index_;
    place_in_index_ = index.emplace(platform::FoldCase(text_), this);
    const auto behind = std::next(place_in_index_);
    before = behind == index.end() ? nullptr : behind->second;
  }
  parent_ = &parent;
  next_ = before;
  previous_ = before == nullptr ? parent.last_child_ : before->previous_;
  (previous_ == nullptr ? parent.first_child_ : previous_->next_) = this;
  (next_ == nullptr ? parent.last_child_ : next_->previous_) = this;
  ++parent.children_;
}

void Node::Unlink() {
  Node& parent = *parent_;
  if (parent.sorted_index_ != nullptr) {
    parent.sorted_index_->erase(place_in_index_);
  }
  (previous_ == nullptr ? parent.first_child_ : previous_->next_) = next_;
  (next_ == nullptr ? parent.last_child_ : next_->previous_) = previous_;
  --parent.children_;
  parent_ = next_ = previous_ = nullptr;
}

void Node::SortChildren() {
  std::vector<Node*> children;
  children.reserve(static_cast<std::size_t>(children_));
  for (Node* child = first_child_; child != nullptr; child = child->next_) {
    children.push_back(child);
  }
  // From here on Link keeps the order; equal texts are put behind one another as they come.
  first_child_ = last_child_ = nullptr;
  children_ = 0;
  sorted_index_ = std::make_unique<SortedIndex>();
  for (Node* const child : children) {
    child->Link(*this, nullptr);
  }
}

void Node::Forget() {
  tree_ = nullptr;
  parent_ = first_child_ = last_child_ = next_ = previous_ = nullptr;
  children_ = 0;
  sorted_index_.reset();
}

}  // namespace nimbrel::toolkit

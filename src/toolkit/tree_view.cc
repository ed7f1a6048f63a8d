#include "toolkit/tree_view.h"

#include <utility>
#include <vector>

#include "platform/runtime_error.h"
#include "toolkit/errors.h"

namespace nimbrel::toolkit {
namespace {

[[noreturn]] void RaiseNotFound(std::string_view what) {
  throw platform::RuntimeError(kElementNotFound, "Element not found: " + std::string(what));
}

}  // namespace

NodeList::~NodeList() {
  for (const NodeRef& node : nodes_) {
    node->Forget();
  }
}

NodeRef NodeList::Add(const std::string& key, std::string text, std::int32_t image) {
  return Insert(key, std::move(text), image, *tree_.top_, nullptr);
}

NodeRef NodeList::Add(const NodeRef& relative, Relationship relationship, const std::string& key,
                      std::string text, std::int32_t image) {
  if (relative->tree_ != &tree_) {
    RaiseNotFound("the relative of the new node " + text);
  }
  Node& beside = *relative;
  switch (relationship) {
    case Relationship::kChild:
      return Insert(key, std::move(text), image, beside, nullptr);
    case Relationship::kFirst:
      return Insert(key, std::move(text), image, *beside.parent_, beside.parent_->first_child_);
    case Relationship::kNext:
      return Insert(key, std::move(text), image, *beside.parent_, beside.next_);
    case Relationship::kPrevious:
      return Insert(key, std::move(text), image, *beside.parent_, &beside);
    case Relationship::kLast:
      break;
  }
  return Insert(key, std::move(text), image, *beside.parent_, nullptr);
}

NodeRef NodeList::Insert(const std::string& key, std::string text, std::int32_t image, Node& parent,
                         Node* before) {
  tree_.CheckImage(image);
  NodeRef node = platform::MakeRef<Node>(key, std::move(text));
  if (!key.empty() && !keys_.try_emplace(key, node.get()).second) {
    throw platform::RuntimeError(kKeyNotUnique, "Key is not unique in collection: " + key);
  }
  node->tree_ = &tree_;
  node->image_ = image;
  node->place_in_list_ = nodes_.insert(nodes_.end(), node);
  node->Link(parent, before);
  tree_.Changed(Property::kEntries);
  return node;
}

NodeRef NodeList::Item(std::string_view key) const {
  const auto found = keys_.find(key);
  if (found == keys_.end()) {
    RaiseNotFound(key);
  }
  return NodeRef(found->second);
}

void NodeList::Remove(std::string_view key) {
  const NodeRef node = Item(key);
  node->Unlink();
  std::vector<Node*> going = {node.get()};
  for (std::size_t i = 0; i < going.size(); ++i) {
    for (Node* child = going[i]->first_child_; child != nullptr; child = child->next_) {
      going.push_back(child);
    }
  }
  for (Node* const each : going) {
    for (NodeRef* const held : {&tree_.selected_, &tree_.scroll_target_}) {
      if (held->get() == each) {
        *held = nullptr;
      }
    }
    keys_.erase(each->key_);
    each->Forget();
    nodes_.erase(each->place_in_list_);  // may end its life
  }
  tree_.Changed(Property::kEntries);
}

void NodeList::Clear() {
  for (const NodeRef& node : nodes_) {
    node->Forget();
  }
  tree_.top_->Forget();
  tree_.top_->tree_ = &tree_;
  tree_.selected_ = nullptr;
  tree_.scroll_target_ = nullptr;
  keys_.clear();
  nodes_.clear();
  tree_.Changed(Property::kEntries);
}

TreeView::TreeView(Container& parent, std::string name, Place place)
    : Control(parent, std::move(name), place),
      top_(platform::MakeRef<Node>(std::string(), std::string())) {
  top_->tree_ = this;
}

void TreeView::SetStyle(TreeStyle style) {
  style_ = style;
  Changed(Property::kStyle);
}

void TreeView::SetImages(const ImageList* images) {
  images_ = images;
  Changed(Property::kStyle);
}

void TreeView::CheckImage(std::int32_t image) const {
  const std::int32_t count = images_ == nullptr ? 0 : images_->Count();
  if (image < 0 || image > count) {
    throw platform::RuntimeError(kIndexOutOfBounds, "Index out of bounds: picture " +
                                                        std::to_string(image) + " of " +
                                                        std::to_string(count) + " of " + Name());
  }
}

bool TreeView::Owns(const NodeRef& node) const {
  return !node.IsNothing() && node->tree_ == this;
}

void TreeView::SetSelectedItem(const NodeRef& node) {
  if (!node.IsNothing() && !Owns(node)) {
    RaiseNotFound("no node of " + Name());
  }
  selected_ = node;
  Changed(Property::kSelection);
}

NodeRef TreeView::ShownBelow(const Node& node) {
  if (node.Expanded() && node.Children() > 0) {
    return node.Child();
  }
  if (NodeRef next = node.Next(); !next.IsNothing()) {
    return next;
  }
  for (NodeRef above = node.Parent(); !above.IsNothing(); above = above->Parent()) {
    if (NodeRef next = above->Next(); !next.IsNothing()) {
      return next;
    }
  }
  return {};
}

NodeRef TreeView::ShownAbove(const Node& node) {
  NodeRef above = node.Previous();
  if (above.IsNothing()) {
    return node.Parent();
  }
  while (above->Expanded() && above->Children() > 0) {
    above = NodeRef(above->last_child_);
  }
  return above;
}

std::optional<std::string> TreeView::PropertyText(std::string_view property) const {
  if (property == "SelectedItem") {
    return selected_.IsNothing() ? std::string() : selected_->Text();
  }
  return Control::PropertyText(property);
}

void TreeView::Select(const NodeRef& node) {
  node->EnsureVisible();
  SetSelectedItem(node);
  Raise(NodeClick, "NodeClick", node->Text(), true, node);
}

std::string TreeView::WhyNoNode(const NodeRef& node) const {
  return WhyNoGestureOr(Owns(node) ? std::string() : Name() + " has no such node");
}

GestureResult TreeView::UserClickNode(const NodeRef& node) {
  return Gesture(WhyNoNode(node), [this, node] {
    if (TakeFocusForClick() && Owns(node)) {
      Select(node);
    }
  });
}

void TreeView::Open(const NodeRef& node, bool expanded) {
  node->SetExpanded(expanded);
  if (!selected_.IsNothing() && !selected_->IsShown() && node->IsShown()) {
    Select(node);
  }
}

GestureResult TreeView::UserExpand(const NodeRef& node, bool expanded) {
  return Gesture(WhyNoNode(node), [this, node, expanded] {
    if (TakeFocusForClick() && Owns(node)) {
      Open(node, expanded);
    }
  });
}

bool TreeView::OnKey(Key key) {
  const bool moves =
      key == Key::kUp || key == Key::kDown || key == Key::kLeft || key == Key::kRight;
  if (!moves || nodes_.Count() == 0) {
    return moves;
  }
  if (selected_.IsNothing()) {
    Select(Root());
    return true;
  }
  const NodeRef at = selected_;
  const bool has_open_children = at->Expanded() && at->Children() > 0;
  NodeRef next;
  if (key == Key::kLeft && has_open_children) {
    Open(at, false);
  } else if (key == Key::kRight && !at->Expanded() && at->Children() > 0) {
    Open(at, true);
  } else if (key == Key::kLeft) {
    next = at->Parent();
  } else if (key == Key::kRight) {
    next = has_open_children ? at->Child() : NodeRef();
  } else {
    next = key == Key::kUp ? ShownAbove(*at) : ShownBelow(*at);
  }
  if (!next.IsNothing()) {
    Select(next);
  }
  return true;
}

}  // namespace nimbrel::toolkit

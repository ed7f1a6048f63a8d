#include "toolkit/tree_view.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

#include "tests/toolkit/support.h"
#include "toolkit/errors.h"

namespace nimbrel::toolkit {
namespace {

class TreeViewTest : public ToolkitTest {
 protected:
  void SetUp() override {
    tree_.NodeClick = [](const NodeRef&) {};
  }

  NodeRef Add(const NodeRef& parent, const std::string& text) {
    return tree_.Nodes().Add(parent, Relationship::kChild, "k" + text, text);
  }
  /// The texts below a node in their order, children in brackets: "a(b c)".
  static std::string Shape(const Node& node) {
    std::string shape = node.Text();
    for (NodeRef child = node.Child(); !child.IsNothing(); child = child->Next()) {
      shape += (child == node.Child() ? "(" : " ") + Shape(*child);
    }
    return node.Children() > 0 ? shape + ")" : shape;
  }
  std::string Shape() const { return Shape(*tree_.Root()); }

  TreeView tree_{form_, "tv"};
  NodeRef root_ = tree_.Nodes().Add("kroot", "root");
};

TEST_F(TreeViewTest, ChildrenStandInTheOrderOfAdding) {
  const NodeRef b = Add(root_, "b");
  Add(root_, "a");
  Add(b, "c");
  EXPECT_EQ(Shape(), "root(b(c) a)");
  EXPECT_EQ(root_->Children(), 2);
  EXPECT_EQ(b->Next()->Text(), "a");
  EXPECT_TRUE(b->Previous().IsNothing());
  EXPECT_TRUE(root_->Parent().IsNothing());
  EXPECT_EQ(b->Child()->Parent(), b);
  EXPECT_EQ(b->Child()->Level(), 2);
}

TEST_F(TreeViewTest, ANodeIsAddedBesideItsRelative) {
  const NodeRef b = Add(root_, "b");
  auto& nodes = tree_.Nodes();
  nodes.Add(b, Relationship::kNext, "kn", "next");
  nodes.Add(b, Relationship::kPrevious, "kp", "previous");
  nodes.Add(b, Relationship::kFirst, "kf", "first");
  nodes.Add(b, Relationship::kLast, "kl", "last");
  EXPECT_EQ(Shape(), "root(first previous b next last)");
}

TEST_F(TreeViewTest, KeysHaveNoCaseAndAreUnique) {
  Add(root_, "a");
  EXPECT_EQ(tree_.Nodes().Item("KA")->Text(), "a");
  EXPECT_EQ(ErrorOf([&] { Add(root_, "A"); }), kKeyNotUnique);
  EXPECT_EQ(ErrorOf([&] { tree_.Nodes().Item("kz"); }), kElementNotFound);
  EXPECT_EQ(ErrorOf([&] { tree_.Nodes().Remove("kz"); }), kElementNotFound);
  EXPECT_EQ(tree_.Nodes().Count(), 2);
  EXPECT_EQ(Shape(), "root(a)");
}

TEST_F(TreeViewTest, ANodeIsFoundByTheKeyThatItIsGivenLater) {
  const NodeRef a = Add(root_, "a");
  a->SetKey("K2");
  EXPECT_EQ(tree_.Nodes().Item("k2"), a);
  EXPECT_FALSE(tree_.Nodes().Contains("ka"));
  EXPECT_EQ(ErrorOf([&] { a->SetKey("KROOT"); }), kKeyNotUnique);
  EXPECT_EQ(a->Key(), "K2");
  EXPECT_EQ(tree_.Nodes().Item("kroot"), root_);
  a->SetKey("k2");
  EXPECT_EQ(tree_.Nodes().Item("K2")->Key(), "k2");
  a->SetKey("");
  EXPECT_FALSE(tree_.Nodes().Contains("k2"));
  tree_.Nodes().Clear();
  a->SetKey("kroot");
  EXPECT_FALSE(tree_.Nodes().Contains("kroot"));
}

TEST_F(TreeViewTest, ANodeMovesWithAllBelowIt) {
  const NodeRef a = Add(root_, "a");
  const NodeRef b = Add(root_, "b");
  Add(a, "c");
  a->SetParent(b);
  EXPECT_EQ(Shape(), "root(b(a(c)))");
  EXPECT_EQ(ErrorOf([&] { b->SetParent(a); }), kWouldIntroduceCycle);
  EXPECT_EQ(ErrorOf([&] { b->SetParent(b); }), kWouldIntroduceCycle);
  EXPECT_EQ(Shape(), "root(b(a(c)))");
}

TEST_F(TreeViewTest, NodesOfTwoTreesDoNotMix) {
  TreeView other(form_, "tvOther");
  const NodeRef foreign = other.Nodes().Add("k", "foreign");
  EXPECT_EQ(ErrorOf([&] { root_->SetParent(foreign); }), kElementNotFound);
  EXPECT_EQ(ErrorOf([&] { Add(foreign, "x"); }), kElementNotFound);
  EXPECT_EQ(ErrorOf([&] { tree_.SetSelectedItem(foreign); }), kElementNotFound);
}

TEST_F(TreeViewTest, RemovingANodeTakesAllBelowItAndTheirKeys) {
  const NodeRef a = Add(root_, "a");
  Add(a, "b");
  Add(root_, "c");
  tree_.SetSelectedItem(tree_.Nodes().Item("kb"));
  tree_.Nodes().Remove("ka");
  EXPECT_EQ(Shape(), "root(c)");
  EXPECT_EQ(tree_.Nodes().Count(), 2);
  EXPECT_FALSE(tree_.Nodes().Contains("kb"));
  EXPECT_TRUE(tree_.SelectedItem().IsNothing());
  EXPECT_EQ(a->Text(), "a");
  EXPECT_EQ(a->Children(), 0);
  Add(root_, "b");
}

TEST_F(TreeViewTest, ClearingTheTreeLeavesNoNodeAndNoSelection) {
  Add(root_, "a");
  tree_.SetSelectedItem(root_);
  tree_.Nodes().Clear();
  EXPECT_EQ(tree_.Nodes().Count(), 0);
  EXPECT_TRUE(tree_.Root().IsNothing());
  EXPECT_TRUE(tree_.SelectedItem().IsNothing());
  tree_.Nodes().Add("kroot", "again");
  EXPECT_EQ(Shape(), "again");
}

TEST_F(TreeViewTest, NodesAreWalkedInTheOrderOfAdding) {
  const NodeRef b = Add(root_, "b");
  Add(b, "c");
  tree_.Nodes().Add(b, Relationship::kPrevious, "ka", "a");
  std::string order;
  for (const NodeRef& node : tree_.Nodes()) {
    order += node->Text() + " ";
  }
  EXPECT_EQ(order, "root b c a ");
}

TEST_F(TreeViewTest, SortingANodeSortsItsChildrenAloneByText) {
  const NodeRef b = Add(root_, "b");
  Add(root_, "C");
  Add(root_, "a");
  Add(b, "z");
  Add(b, "y");
  root_->SetSorted(true);
  EXPECT_EQ(Shape(), "root(a b(z y) C)");
}

TEST_F(TreeViewTest, ASortedNodeKeepsTheOrderForWhatComesMovesAndChanges) {
  root_->SetSorted(true);
  const NodeRef c = Add(root_, "c");
  const NodeRef a = Add(root_, "a");
  Add(c, "b");
  tree_.Nodes().Add(c, Relationship::kNext, "k2", "aa");
  EXPECT_EQ(Shape(), "root(a aa c(b))");
  tree_.Nodes().Item("kb")->SetParent(root_);
  EXPECT_EQ(Shape(), "root(a aa b c)");
  a->SetText("d");
  EXPECT_EQ(Shape(), "root(aa b c d)");
}

TEST_F(TreeViewTest, ImagesComeFromTheImageList) {
  ImageList images(16, 16);
  images.Add({});
  EXPECT_EQ(ErrorOf([&] { root_->SetImage(1); }), kIndexOutOfBounds);
  tree_.SetImages(&images);
  root_->SetImage(1);
  EXPECT_EQ(root_->Image(), 1);
  EXPECT_EQ(ErrorOf([&] { root_->SetImage(2); }), kIndexOutOfBounds);
  EXPECT_EQ(ErrorOf([&] { tree_.Nodes().Add(root_, Relationship::kChild, "k1", "x", 2); }),
            kIndexOutOfBounds);
  EXPECT_EQ(root_->Children(), 0);
  EXPECT_EQ(ErrorOf([&] { images.Item(0); }), kIndexOutOfBounds);
}

TEST_F(TreeViewTest, CodeRaisesNothing) {
  Add(root_, "a");
  tree_.SetSelectedItem(root_);
  root_->SetExpanded(true);
  root_->SetTag("x");
  EXPECT_EQ(log(), Lines{});
  EXPECT_EQ(root_->Tag(), "x");
  EXPECT_EQ(tree_.PropertyText("SelectedItem"), "root");
}

TEST_F(TreeViewTest, AClickSelectsTheNodeAndOpensThoseAboveIt) {
  const NodeRef a = Add(root_, "a");
  const NodeRef b = Add(a, "b");
  EXPECT_FALSE(b->IsShown());
  WhileOpen([&] { tree_.UserClickNode(b); });
  EXPECT_EQ(log(), Lines{"tv NodeClick b"});
  EXPECT_EQ(tree_.SelectedItem(), b);
  EXPECT_TRUE(root_->Expanded());
  EXPECT_TRUE(a->Expanded());
  EXPECT_FALSE(b->Expanded());
  EXPECT_EQ(tree_.ScrollTarget(), b);
  tree_.Nodes().Remove("ka");
  EXPECT_TRUE(tree_.ScrollTarget().IsNothing());
}

TEST_F(TreeViewTest, ANodeThatIsNotInTheTreeCannotBeClicked) {
  const NodeRef a = Add(root_, "a");
  tree_.Nodes().Remove("ka");
  WhileOpen([&] { EXPECT_EQ(tree_.UserClickNode(a).reason(), "tv has no such node"); });
}

TEST_F(TreeViewTest, TheArrowKeysGoThroughTheNodesOnShow) {
  const NodeRef a = Add(root_, "a");
  Add(a, "b");
  Add(root_, "c");
  root_->SetExpanded(true);
  WhileOpen([&] {
    for (int i = 0; i < 4; ++i) {
      tree_.UserKey(Key::kDown);
    }
    tree_.UserKey(Key::kUp);
    tree_.UserKey(Key::kRight);
    tree_.UserKey(Key::kRight);
    tree_.UserKey(Key::kLeft);
    tree_.UserKey(Key::kLeft);
    tree_.UserKey(Key::kUp);
  });
  EXPECT_EQ(log(), (Lines{"tv NodeClick root", "tv NodeClick a", "tv NodeClick c", "tv NodeClick a",
                          "tv NodeClick b", "tv NodeClick a", "tv NodeClick root"}));
  EXPECT_FALSE(a->Expanded());
}

TEST_F(TreeViewTest, UpGoesToTheLastNodeOnShowOfTheBranchAbove) {
  const NodeRef a = Add(root_, "a");
  Add(a, "b");
  const NodeRef c = Add(root_, "c");
  root_->SetExpanded(true);
  EXPECT_EQ(TreeView::ShownAbove(*c), a);
  a->SetExpanded(true);
  EXPECT_EQ(TreeView::ShownAbove(*c)->Text(), "b");
  EXPECT_EQ(TreeView::ShownBelow(*a->Child()), c);
}

TEST_F(TreeViewTest, ClosingANodeOverTheSelectedOneSelectsIt) {
  const NodeRef a = Add(root_, "a");
  WhileOpen([&] {
    tree_.UserClickNode(a);
    tree_.UserExpand(root_, false);
  });
  EXPECT_EQ(log(), (Lines{"tv NodeClick a", "tv NodeClick root"}));
}

/// A tree as a map from each node's text to its parent's and to its children in order.
struct NaiveTree {
  std::map<std::string, std::string> parent;
  std::map<std::string, std::vector<std::string>> children;

  bool IsBelow(std::string node, const std::string& above) const {
    for (; node != "root"; node = parent.at(node)) {
      if (node == above) {
        return true;
      }
    }
    return above == "root";
  }
  void Place(const std::string& node, const std::string& under, bool sorted) {
    parent[node] = under;
    auto& list = children[under];
    list.insert(sorted ? std::upper_bound(list.begin(), list.end(), node) : list.end(), node);
  }
  void TakeOut(const std::string& node) { std::erase(children[parent.at(node)], node); }
  void Remove(const std::string& node) {
    TakeOut(node);
    std::vector<std::string> going = {node};
    for (std::size_t i = 0; i < going.size(); ++i) {
      const auto below = children[going[i]];
      going.insert(going.end(), below.begin(), below.end());
      children.erase(going[i]);
      parent.erase(going[i]);
    }
  }
  std::string Shape(const std::string& node) const {
    const auto found = children.find(node);
    if (found == children.end() || found->second.empty()) {
      return node;
    }
    std::string shape = node + "(";
    for (const std::string& child : found->second) {
      shape += (&child == &found->second.front() ? "" : " ") + Shape(child);
    }
    return shape + ")";
  }
};

TEST_F(TreeViewTest, RandomAddsMovesAndRemovalsKeepTheTreeOfANaiveModel) {
  for (const bool sorted : {false, true}) {
    SCOPED_TRACE(sorted ? "sorted" : "in order of adding");
    tree_.Nodes().Clear();
    root_ = tree_.Nodes().Add("kroot", "root");
    root_->SetSorted(sorted);
    NaiveTree naive;
    std::vector<std::string> texts = {"root"};
    std::mt19937 random(20260301);
    for (int step = 0; step < 2000; ++step) {
      const std::string one = texts[random() % texts.size()];
      const std::string two = texts[random() % texts.size()];
      const auto kind = random() % 10;
      if (kind < 5) {
        const std::string text =
            "n" + std::to_string(random() % 1000000) + "." + std::to_string(step);
        Add(tree_.Nodes().Item("k" + one), text)->SetSorted(sorted);
        naive.Place(text, one, sorted);
        texts.push_back(text);
      } else if (kind < 9) {
        const auto move = [&] {
          tree_.Nodes().Item("k" + one)->SetParent(tree_.Nodes().Item("k" + two));
        };
        if (naive.IsBelow(two, one)) {
          EXPECT_EQ(ErrorOf(move), kWouldIntroduceCycle);
        } else {
          move();
          naive.TakeOut(one);
          naive.Place(one, two, sorted);
        }
      } else if (one != "root") {
        tree_.Nodes().Remove("k" + one);
        naive.Remove(one);
        std::erase_if(texts, [&](const std::string& text) {
          return text != "root" && !naive.parent.contains(text);
        });
      }
      ASSERT_EQ(tree_.Nodes().Count(), static_cast<std::int32_t>(texts.size()));
    }
    EXPECT_EQ(Shape(), naive.Shape("root"));
  }
}

}  // namespace
}  // namespace nimbrel::toolkit

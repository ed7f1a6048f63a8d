// The face of trees.

#include <algorithm>
#include <unordered_map>
#include <utility>
#include <vector>

#include "toolkit/win32/common_controls.h"
#include "toolkit/win32/faces.h"
#include "toolkit/win32/item_face.h"
#include "toolkit/win32/picture_pixels.h"
#include "toolkit/win32/win32_text.h"

namespace nimbrel::toolkit::win32 {
namespace {

/// Pictures as Windows draws them in a tree. Number 0 is an empty one, for nodes without a picture.
class Pictures {
 public:
  Pictures() = default;
  ~Pictures() { Clear(); }
  Pictures(const Pictures&) = delete;
  Pictures& operator=(const Pictures&) = delete;

  HIMAGELIST list() const { return list_; }

  void Make(const ImageList& images, int width, int height) {
    Clear();
    list_ = ::ImageList_Create(width, height, ILC_COLOR32 | ILC_MASK, images.Count() + 1, 1);
    const std::size_t count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    Add(std::vector<std::uint32_t>(count, 0), width, height, true);
    for (std::int32_t i = 1; i <= images.Count(); ++i) {
      Add(PixelsOf(images.Item(i), images.ImageWidth(), images.ImageHeight(), width, height), width,
          height, false);
    }
  }

 private:
  void Clear() {
    if (list_ != nullptr) {
      ::ImageList_Destroy(std::exchange(list_, nullptr));
    }
  }

  void Add(const std::vector<std::uint32_t>& pixels, int width, int height,
           bool see_through) const {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;  // from the top
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    void* bits = nullptr;
    const HBITMAP picture = ::CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    std::copy(pixels.begin(), pixels.end(), static_cast<std::uint32_t*>(bits));
    // Rows of a mask fill whole words.
    const auto row = static_cast<std::size_t>((width + 15) / 16 * 2);
    const std::vector<std::uint8_t> mask(row * static_cast<std::size_t>(height),
                                         see_through ? 0xFF : 0);
    const HBITMAP masked = ::CreateBitmap(width, height, 1, 1, mask.data());
    ::ImageList_Add(list_, picture, masked);
    ::DeleteObject(masked);
    ::DeleteObject(picture);
  }

  HIMAGELIST list_ = nullptr;
};

class TreeViewFace final : public ItemFace {
 public:
  TreeViewFace(TreeView& tree, FaceHost& host, const Pane& pane)
      : ItemFace(tree, host), tree_(tree) {
    Make(WC_TREEVIEWW, TVS_SHOWSELALWAYS | TVS_DISABLEDRAGDROP | TVS_NOTOOLTIPS, WS_EX_CLIENTEDGE,
         pane.Window());
  }

  void TakeLook() override {
    ItemFace::TakeLook();
    MakePictures();
    Ask(TVM_SETITEMHEIGHT, static_cast<WPARAM>(-1));
  }

  std::optional<LRESULT> OnNotify(NMHDR& header) override {
    if (header.code != TVN_ITEMEXPANDINGW || opening_) {
      return std::nullopt;
    }
    // Only the toolkit opens and closes nodes; who asks Windows, such as a screen reader, asks it.
    const auto& wanted = reinterpret_cast<const NMTREEVIEWW&>(header);
    if (!painting_) {
      AskToTurn(wanted.itemNew.hItem, wanted.action);
    }
    return TRUE;
  }

 protected:
  std::optional<LRESULT> OnMessage(HWND window, UINT message, WPARAM w, LPARAM l) override {
    // For a node that was open before, Windows asks nobody.
    if (message == TVM_EXPAND && !opening_) {
      AskToTurn(reinterpret_cast<HTREEITEM>(l), static_cast<UINT>(w));
      return TRUE;
    }
    return ItemFace::OnMessage(window, message, w, l);
  }
  void Paint(const Changes& changes) override {
    const bool before = std::exchange(painting_, true);
    if (changes.Has(Property::kStyle)) {
      PaintStyle();
    }
    const bool entries = changes.Has(Property::kEntries) || changes.Has(Property::kStyle);
    if (entries) {
      UpdateNodes();
    }
    if (entries || changes.Has(Property::kExpanded)) {
      PaintExpanded();
    }
    if (entries || changes.Has(Property::kSelection) || changes.Has(Property::kExpanded)) {
      PaintSelection();
    }
    if (changes.Has(Property::kScroll)) {
      BringIntoView(HandleOf(tree_.ScrollTarget()));
    }
    painting_ = before;
  }
  /// A selected node in a closed one is not marked: to mark it would open what it stands in.
  void PaintSelection() override {
    const bool before = std::exchange(painting_, true);
    const NodeRef& node = tree_.SelectedItem();
    const HTREEITEM wanted = !node.IsNothing() && node->IsShown() ? HandleOf(node) : nullptr;
    if (reinterpret_cast<HTREEITEM>(CurrentItem()) != wanted) {
      Ask(TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(wanted));
    }
    painting_ = before;
  }
  Item ItemAt(POINT place) const override { return reinterpret_cast<Item>(Hit(place).hItem); }
  Item CurrentItem() const override { return static_cast<Item>(Ask(TVM_GETNEXTITEM, TVGN_CARET)); }
  void Click(Item item, POINT place) override {
    const NodeRef node = NodeOf(item);
    if ((Hit(place).flags & TVHT_ONITEMBUTTON) != 0) {
      tree_.UserExpand(node, !node->Expanded());
    } else {
      tree_.UserClickNode(node);
    }
  }
  /// On the node itself the second click opens or closes it, as trees do everywhere.
  void ClickAgain(Item item, POINT /*place*/) override {
    const NodeRef node = NodeOf(item);
    if (node->Children() > 0 && tree_.HasFocus()) {
      tree_.UserExpand(node, !node->Expanded());
    }
  }
  void GoTo(Item item) override { tree_.UserClickNode(NodeOf(item)); }

 private:
  /// A node as Windows has it.
  struct Entry {
    NodeRef node;
    int parent;  // -1 at the top
    HTREEITEM item = nullptr;
    std::string text{};
    std::int32_t image = 0;
    bool has_children = false;
  };

  LRESULT Ask(UINT message, WPARAM w = 0, LPARAM l = 0) const {
    return ::SendMessageW(Window(), message, w, l);
  }
  TVHITTESTINFO Hit(POINT place) const {
    TVHITTESTINFO hit{};
    hit.pt = place;
    Ask(TVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit));
    return hit;
  }
  void BringIntoView(HTREEITEM item) const {
    if (item != nullptr) {
      Ask(TVM_ENSUREVISIBLE, 0, reinterpret_cast<LPARAM>(item));
    }
  }
  bool HasPictures() const {
    return tree_.Style() == TreeStyle::kTreelinesPlusMinusPictureText && tree_.Images() != nullptr;
  }
  HTREEITEM HandleOf(const NodeRef& node) const {
    const auto found = places_.find(node.IsNothing() ? nullptr : node.get());
    return found == places_.end() ? nullptr : entries_[found->second].item;
  }
  NodeRef NodeOf(Item item) const {
    TVITEMW asked{};
    asked.mask = TVIF_PARAM;
    asked.hItem = reinterpret_cast<HTREEITEM>(item);
    Ask(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&asked));
    return entries_[static_cast<std::size_t>(asked.lParam)].node;
  }
  /// Null if it is no node of the tree.
  NodeRef FindNode(HTREEITEM item) const {
    const auto found = std::find_if(entries_.begin(), entries_.end(),
                                    [item](const Entry& entry) { return entry.item == item; });
    return found == entries_.end() ? NodeRef() : found->node;
  }
  /// `request` is that of TVM_EXPAND.
  void AskToTurn(HTREEITEM item, UINT request) {
    const NodeRef node = FindNode(item);
    if (node.IsNothing() || node->Children() == 0) {
      return;
    }
    const UINT wanted = request & TVE_TOGGLE;
    const bool open = wanted == TVE_TOGGLE ? !node->Expanded() : wanted == TVE_EXPAND;
    host().Defer([this, item, open] { Turn(item, open); });
  }
  void Turn(HTREEITEM item, bool open) {
    const NodeRef node = FindNode(item);
    if (!node.IsNothing() && node->Expanded() != open) {
      Do([&] { tree_.UserExpand(node, open); });
    }
  }

  void PaintStyle() {
    const bool lines = tree_.Style() == TreeStyle::kTreelinesPlusMinusPictureText;
    const LONG_PTR signs = TVS_HASLINES | TVS_LINESATROOT | TVS_HASBUTTONS;
    const LONG_PTR style = ::GetWindowLongPtrW(Window(), GWL_STYLE);
    ::SetWindowLongPtrW(Window(), GWL_STYLE, lines ? style | signs : style & ~signs);
    MakePictures();
  }
  /// As high as the text, where the text is higher than the pictures.
  void MakePictures() {
    if (!HasPictures()) {
      Ask(TVM_SETIMAGELIST, TVSIL_NORMAL, 0);
      return;
    }
    const ImageList& images = *tree_.Images();
    const int height = std::max(look().Pixels(images.ImageHeight()), look().line());
    pictures_.Make(images, ::MulDiv(images.ImageWidth(), height, images.ImageHeight()), height);
    Ask(TVM_SETIMAGELIST, TVSIL_NORMAL, reinterpret_cast<LPARAM>(pictures_.list()));
  }

  static void AppendChildren(std::vector<Entry>& entries, const NodeRef& first, int parent) {
    for (NodeRef node = first; !node.IsNothing(); node = node->Next()) {
      entries.push_back({node, parent, nullptr, node->Text(), node->Image(), node->Children() > 0});
    }
  }
  std::vector<Entry> ReadEntries() const {
    std::vector<Entry> entries;
    entries.reserve(static_cast<std::size_t>(tree_.Nodes().Count()));
    AppendChildren(entries, tree_.Root(), -1);
    for (std::size_t i = 0; i < entries.size(); ++i) {
      AppendChildren(entries, entries[i].node->Child(), static_cast<int>(i));
    }
    return entries;
  }
  void UpdateNodes() {
    std::vector<Entry> entries = ReadEntries();
    const bool same = std::equal(
        entries.begin(), entries.end(), entries_.begin(), entries_.end(),
        [](const Entry& a, const Entry& b) { return a.node == b.node && a.parent == b.parent; });
    if (same) {
      UpdateContents(entries);
    } else {
      Rebuild(std::move(entries));
    }
  }
  void UpdateContents(const std::vector<Entry>& entries) {
    for (std::size_t i = 0; i < entries.size(); ++i) {
      Entry& shown = entries_[i];
      if (shown.text != entries[i].text || shown.image != entries[i].image) {
        shown.text = entries[i].text;
        shown.image = entries[i].image;
        std::wstring text = ToWide(shown.text);
        TVITEMW item = ItemOf(shown, text);
        item.hItem = shown.item;
        Ask(TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&item));
      }
    }
  }
  /// The topmost node in view stays there, if it is still in the tree.
  void Rebuild(std::vector<Entry> entries) {
    const Item top = static_cast<Item>(Ask(TVM_GETNEXTITEM, TVGN_FIRSTVISIBLE));
    const NodeRef in_view = top == 0 ? NodeRef() : NodeOf(top);
    ::SendMessageW(Window(), WM_SETREDRAW, FALSE, 0);
    Ask(TVM_SELECTITEM, TVGN_CARET, 0);
    Ask(TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(TVI_ROOT));
    entries_ = std::move(entries);
    places_.clear();
    places_.reserve(entries_.size());
    for (std::size_t i = 0; i < entries_.size(); ++i) {
      Insert(i);
      places_.emplace(entries_[i].node.get(), i);
    }
    PaintExpanded();
    if (const HTREEITEM again = HandleOf(in_view); again != nullptr && in_view->IsShown()) {
      Ask(TVM_SELECTITEM, TVGN_FIRSTVISIBLE, reinterpret_cast<LPARAM>(again));
    }
    ::SendMessageW(Window(), WM_SETREDRAW, TRUE, 0);
    ::InvalidateRect(Window(), nullptr, TRUE);
  }
  void Insert(std::size_t place) {
    Entry& entry = entries_[place];
    std::wstring text = ToWide(entry.text);
    TVINSERTSTRUCTW made{};
    made.hParent =
        entry.parent < 0 ? TVI_ROOT : entries_[static_cast<std::size_t>(entry.parent)].item;
    // Behind the one before it, if that is of the same parent: to look for the last takes time.
    const bool has_brother = place > 0 && entries_[place - 1].parent == entry.parent;
    made.hInsertAfter = has_brother ? entries_[place - 1].item : TVI_FIRST;
    made.item = ItemOf(entry, text);
    made.item.mask |= TVIF_PARAM;
    made.item.lParam = static_cast<LPARAM>(place);
    entry.item =
        reinterpret_cast<HTREEITEM>(Ask(TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&made)));
  }
  static TVITEMW ItemOf(const Entry& entry, std::wstring& text) {
    TVITEMW item{};
    item.mask = TVIF_TEXT | TVIF_IMAGE | TVIF_SELECTEDIMAGE;
    item.pszText = text.data();
    item.iImage = entry.image;
    item.iSelectedImage = entry.image;
    return item;
  }

  void PaintExpanded() {
    const bool before = std::exchange(opening_, true);
    for (const Entry& entry : entries_) {
      if (!entry.has_children) {
        continue;
      }
      const bool open =
          (Ask(TVM_GETITEMSTATE, reinterpret_cast<WPARAM>(entry.item), TVIS_EXPANDED) &
           TVIS_EXPANDED) != 0;
      if (open != entry.node->Expanded()) {
        Ask(TVM_EXPAND, entry.node->Expanded() ? TVE_EXPAND : TVE_COLLAPSE,
            reinterpret_cast<LPARAM>(entry.item));
      }
    }
    opening_ = before;
  }

  TreeView& tree_;
  Pictures pictures_;
  std::vector<Entry> entries_;
  std::unordered_map<const Node*, std::size_t> places_;
  bool painting_ = false;
  bool opening_ = false;
};

}  // namespace

std::unique_ptr<ControlFace> MakeFace(TreeView& tree, FaceHost& host, const Pane& pane) {
  return std::make_unique<TreeViewFace>(tree, host, pane);
}

}  // namespace nimbrel::toolkit::win32

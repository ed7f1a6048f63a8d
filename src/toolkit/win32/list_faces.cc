// The faces of list boxes and list views.

#include <algorithm>
#include <vector>

#include "toolkit/win32/common_controls.h"
#include "toolkit/win32/faces.h"
#include "toolkit/win32/item_face.h"
#include "toolkit/win32/win32_text.h"

namespace nimbrel::toolkit::win32 {
namespace {

/// The states of a check box as lists keep them.
constexpr UINT kUnchecked = 1;
constexpr UINT kChecked = 2;
/// What a column's head has beside its caption, in pixels at 100%.
constexpr int kBesideHead = 12;

class ListBoxFace final : public ItemFace {
 public:
  ListBoxFace(ListBox& list, FaceHost& host, const Pane& pane) : ItemFace(list, host), list_(list) {
    Make(WC_LISTBOXW, LBS_NOTIFY | LBS_HASSTRINGS | LBS_NOINTEGRALHEIGHT | WS_VSCROLL,
         WS_EX_CLIENTEDGE, pane.Window());
  }

 protected:
  void Paint(const Changes& changes) override {
    if (changes.Has(Property::kEntries)) {
      PaintEntries();
    }
    if (changes.Has(Property::kEntries) || changes.Has(Property::kSelection)) {
      PaintSelection();
    }
  }
  void PaintSelection() override {
    if (Ask(LB_GETCURSEL) != list_.ListIndex()) {
      Ask(LB_SETCURSEL, list_.ListIndex());
    }
  }
  Item ItemAt(POINT place) const override {
    const LRESULT found = Ask(LB_ITEMFROMPOINT, 0, MAKELPARAM(place.x, place.y));
    // Below the last entry Windows says that it is the nearest one.
    RECT entry{};
    const bool is_there = HIWORD(found) == 0 && LOWORD(found) < list_.ListCount() &&
                          ::SendMessageW(Window(), LB_GETITEMRECT, LOWORD(found),
                                         reinterpret_cast<LPARAM>(&entry)) != LB_ERR &&
                          ::PtInRect(&entry, place) != 0;
    return is_there ? LOWORD(found) + Item{1} : 0;
  }
  Item CurrentItem() const override { return static_cast<Item>(Ask(LB_GETCURSEL) + 1); }
  void Click(Item item, POINT /*place*/) override { GoTo(item); }
  void ClickAgain(Item item, POINT /*place*/) override { list_.UserClickAgain(IndexOf(item)); }
  void GoTo(Item item) override { list_.UserPick(IndexOf(item)); }

 private:
  static std::int32_t IndexOf(Item item) { return static_cast<std::int32_t>(item) - 1; }
  LRESULT Ask(UINT message, WPARAM w = 0, LPARAM l = 0) const {
    return ::SendMessageW(Window(), message, w, l);
  }
  LRESULT Ask(UINT message, std::int32_t index) const {
    return ::SendMessageW(Window(), message, static_cast<WPARAM>(index), 0);
  }

  /// The place that the list is scrolled to stays.
  void PaintEntries() {
    const LRESULT top = Ask(LB_GETTOPINDEX);
    ::SendMessageW(Window(), WM_SETREDRAW, FALSE, 0);
    Ask(LB_RESETCONTENT);
    for (const std::string& entry : list_.Entries()) {
      Ask(LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(ToWide(entry).c_str()));
    }
    Ask(LB_SETTOPINDEX, static_cast<WPARAM>(top));
    ::SendMessageW(Window(), WM_SETREDRAW, TRUE, 0);
    ::InvalidateRect(Window(), nullptr, TRUE);
  }

  ListBox& list_;
};

/// The rows are the toolkit's own: Windows asks for texts and marks when it paints them. What is
/// kept here is which rows there are, so that it finds its way until they are looked at again.
class ListViewFace final : public ItemFace {
 public:
  ListViewFace(ListView& list, FaceHost& host, const Pane& pane)
      : ItemFace(list, host), list_(list) {
    const bool heads = list.View() == ListViewStyle::kReport;
    Make(WC_LISTVIEWW,
         LVS_REPORT | LVS_OWNERDATA | LVS_SINGLESEL | LVS_SHOWSELALWAYS | LVS_SHAREIMAGELISTS |
             (heads ? 0U : static_cast<DWORD>(LVS_NOCOLUMNHEADER)),
         WS_EX_CLIENTEDGE, pane.Window());
    Ask(LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER);
  }

  /// So wide that the caption of each column fits into its share.
  int NeededWidth() const override {
    double needed = ItemFace::NeededWidth();
    for (std::int32_t i = 1; HasColumns() && i <= list_.ColumnHeaders().Count(); ++i) {
      const ColumnHeader& column = list_.ColumnHeaders().Item(i);
      if (column.Width() > 0 && !column.Text().empty()) {
        const int head = look().TextWidth(ToWide(column.Text())) + look().Pixels(kBesideHead);
        needed = std::max(needed, static_cast<double>(head) * Twips() / column.Width());
      }
    }
    return static_cast<int>(needed) + 2 * SystemMetric(SM_CXEDGE, look().dpi()) +
           (HasColumns() ? SystemMetric(SM_CXVSCROLL, look().dpi()) : 0);
  }

  void TakeLook() override {
    ItemFace::TakeLook();
    // Windows makes the pictures of check boxes once, for the resolution of that moment.
    Ask(LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_CHECKBOXES, 0);
    PaintStyle();
  }

  std::optional<LRESULT> OnNotify(NMHDR& header) override {
    switch (header.code) {
      case LVN_GETDISPINFOW:
        Tell(reinterpret_cast<NMLVDISPINFOW&>(header).item);
        return 0;
      case LVN_ODFINDITEMW:
        return FindRow(reinterpret_cast<const NMLVFINDITEMW&>(header));
      case LVN_COLUMNCLICK: {
        const int column = reinterpret_cast<const NMLISTVIEW&>(header).iSubItem + 1;
        host().Defer([this, column] { Do([&] { list_.UserClickHeader(column); }); });
        return 0;
      }
      default:
        return std::nullopt;
    }
  }

 protected:
  void Paint(const Changes& changes) override {
    const bool columns = changes.Has(Property::kColumns) || changes.Has(Property::kStyle);
    if (changes.Has(Property::kStyle)) {
      PaintStyle();
    }
    if (columns) {
      MakeColumns();
    }
    const bool rows = columns || changes.Has(Property::kEntries);
    if (rows) {
      UpdateRows();
    }
    if (rows || changes.Has(Property::kChecked)) {
      ::InvalidateRect(Window(), nullptr, FALSE);
    }
    if (rows || changes.Has(Property::kSelection)) {
      PaintSelection();
    }
    if (changes.Has(Property::kScroll)) {
      BringIntoView(PlaceOf(list_.ScrollTarget()));
    }
  }
  void PaintSelection() override {
    const int wanted = PlaceOf(list_.SelectedItem());
    if (static_cast<int>(CurrentItem()) - 1 == wanted && selected_ == wanted) {
      return;
    }
    selected_ = wanted;
    SetState(-1, 0);
    if (wanted >= 0) {
      SetState(wanted, LVIS_SELECTED | LVIS_FOCUSED);
      Ask(LVM_SETSELECTIONMARK, 0, wanted);
      BringIntoView(wanted);
    }
  }
  Item ItemAt(POINT place) const override { return static_cast<Item>(Hit(place).iItem + 1); }
  Item CurrentItem() const override {
    return static_cast<Item>(Ask(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED) + 1);
  }
  void Click(Item item, POINT place) override {
    if (OnCheck(place)) {
      list_.UserToggleCheck(NumberOf(item));
    } else {
      GoTo(item);
    }
  }
  void ClickAgain(Item item, POINT place) override {
    if (OnCheck(place)) {
      list_.UserToggleCheck(NumberOf(item));
    } else {
      list_.UserClickRowAgain(NumberOf(item));
    }
  }
  void GoTo(Item item) override { list_.UserClickRow(NumberOf(item)); }
  int HeaderHeight() const override {
    RECT head{};
    ::GetWindowRect(reinterpret_cast<HWND>(Ask(LVM_GETHEADER)), &head);
    return HasColumns() ? std::max<int>(head.bottom - head.top, look().line()) : 0;
  }

  std::optional<LRESULT> OnMessage(HWND window, UINT message, WPARAM w, LPARAM l) override {
    if (message == WM_SIZE) {
      const LRESULT answer = Own(window, message, w, l);
      PaintColumns();
      return answer;
    }
    if (message == WM_NOTIFY) {
      return OnHeader(*reinterpret_cast<const NMHDR*>(l));
    }
    return ItemFace::OnMessage(window, message, w, l);
  }

 private:
  static std::int32_t NumberOf(Item item) { return static_cast<std::int32_t>(item); }
  LRESULT Ask(UINT message, WPARAM w = 0, LPARAM l = 0) const {
    return ::SendMessageW(Window(), message, w, l);
  }
  void SetState(int row, UINT state) const {
    LVITEMW item{};
    item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    item.state = state;
    Ask(LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
  }
  void BringIntoView(int row) const {
    if (row >= 0) {
      Ask(LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
    }
  }
  LVHITTESTINFO Hit(POINT place) const {
    LVHITTESTINFO hit{};
    hit.pt = place;
    Ask(LVM_SUBITEMHITTEST, 0, reinterpret_cast<LPARAM>(&hit));
    return hit;
  }
  bool OnCheck(POINT place) const {
    const LVHITTESTINFO hit = Hit(place);
    return list_.CheckBoxes() && hit.iSubItem == 0 && (hit.flags & LVHT_ONITEM) != LVHT_ONITEM &&
           (hit.flags & LVHT_ONITEMSTATEICON) != 0;
  }

  bool HasColumns() const {
    return list_.View() == ListViewStyle::kReport && list_.ColumnHeaders().Count() > 0;
  }
  /// From 0; -1 for Nothing or a row that is not here.
  int PlaceOf(const ListItemRef& row) const {
    const auto found = std::find(rows_.begin(), rows_.end(), row);
    return row.IsNothing() || found == rows_.end()
               ? -1
               : static_cast<int>(std::distance(rows_.begin(), found));
  }
  std::int32_t FirstShownColumn() const {
    std::int32_t column = 1;
    while (HasColumns() && column < list_.ColumnHeaders().Count() &&
           list_.ColumnHeaders().Item(column).Width() == 0) {
      ++column;
    }
    return column;
  }

  void PaintStyle() const {
    Ask(LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_CHECKBOXES,
        list_.CheckBoxes() ? LVS_EX_CHECKBOXES : 0);
    Ask(LVM_SETCALLBACKMASK, list_.CheckBoxes() ? LVIS_STATEIMAGEMASK : 0);
  }
  void MakeColumns() {
    while (Ask(LVM_DELETECOLUMN, 0) != FALSE) {
    }
    const std::int32_t count = HasColumns() ? list_.ColumnHeaders().Count() : 1;
    for (std::int32_t i = 1; i <= count; ++i) {
      std::wstring head = HasColumns() ? ToWide(list_.ColumnHeaders().Item(i).Text()) : L"";
      LVCOLUMNW column{};
      column.mask = LVCF_TEXT | LVCF_FMT | LVCF_SUBITEM;
      column.fmt = LVCFMT_LEFT;
      column.pszText = head.data();
      column.iSubItem = i - 1;
      Ask(LVM_INSERTCOLUMNW, static_cast<WPARAM>(i - 1), reinterpret_cast<LPARAM>(&column));
    }
    PaintColumns();
  }
  /// The twips of all columns, or of the whole list if that is more.
  double Twips() const {
    int sum = 0;
    for (std::int32_t i = 1; i <= list_.ColumnHeaders().Count(); ++i) {
      sum += list_.ColumnHeaders().Item(i).Width();
    }
    return std::max({sum, list_.Width(), 1});
  }
  void SetColumnWidth(std::int32_t column, int width) const {
    if (Ask(LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(column - 1)) != width) {
      Ask(LVM_SETCOLUMNWIDTH, static_cast<WPARAM>(column - 1), MAKELPARAM(width, 0));
    }
  }
  /// Gives each column its share of the width, so that boxes under the list stay under theirs; the
  /// last one takes what is left.
  void PaintColumns() const {
    RECT inside{};
    ::GetClientRect(Window(), &inside);
    const int room = inside.right;
    if (!HasColumns()) {
      SetColumnWidth(1, room);
      return;
    }
    const double scale = room / Twips();
    int left = 0;
    for (std::int32_t i = 1; i <= list_.ColumnHeaders().Count(); ++i) {
      const int twips = list_.ColumnHeaders().Item(i).Width();
      const bool last = i == list_.ColumnHeaders().Count();
      const int share = std::max(static_cast<int>(twips * scale), 1);
      const int width = twips == 0 ? 0 : (last ? std::max(room - left, share) : share);
      SetColumnWidth(i, width);
      left += width;
    }
  }
  void UpdateRows() {
    const ListItemList& rows = list_.ListItems();
    if (std::equal(rows.begin(), rows.end(), rows_.begin(), rows_.end())) {
      return;
    }
    rows_.assign(rows.begin(), rows.end());
    selected_ = kUnknown;
    Ask(LVM_SETITEMCOUNT, rows_.size(), LVSICF_NOSCROLL);
    PaintColumns();  // a scroll bar may have come or gone
  }

  void Tell(LVITEMW& item) const {
    const auto row = static_cast<std::size_t>(item.iItem);
    if (row >= rows_.size()) {
      return;
    }
    if ((item.mask & LVIF_TEXT) != 0 && item.cchTextMax > 0) {
      const std::wstring text = ToWide(rows_[row]->CellText(item.iSubItem + 1));
      const std::size_t length =
          std::min(text.size(), static_cast<std::size_t>(item.cchTextMax) - 1);
      std::copy_n(text.begin(), length, item.pszText);
      item.pszText[length] = L'\0';
    }
    if ((item.mask & LVIF_STATE) != 0 && list_.CheckBoxes()) {
      const UINT mark = rows_[row]->Checked() ? kChecked : kUnchecked;
      item.state =
          (item.state & ~static_cast<UINT>(LVIS_STATEIMAGEMASK)) | INDEXTOSTATEIMAGEMASK(mark);
    }
  }
  /// The next row that begins with what was typed, from 0; -1 if there is none.
  LRESULT FindRow(const NMLVFINDITEMW& wanted) const {
    if ((wanted.lvfi.flags & (LVFI_STRING | LVFI_PARTIAL)) == 0 || rows_.empty()) {
      return -1;
    }
    const std::wstring typed = wanted.lvfi.psz;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
      const std::size_t row =
          (i + static_cast<std::size_t>(std::max(wanted.iStart, 0))) % rows_.size();
      const std::wstring text = ToWide(rows_[row]->CellText(FirstShownColumn()));
      const int length = static_cast<int>(typed.size());
      if (text.size() >= typed.size() &&
          ::CompareStringW(LOCALE_USER_DEFAULT, NORM_IGNORECASE, text.data(), length, typed.data(),
                           length) == CSTR_EQUAL) {
        return static_cast<LRESULT>(row);
      }
    }
    return -1;
  }
  /// A hidden column is not pulled out of its hiding.
  std::optional<LRESULT> OnHeader(const NMHDR& header) const {
    const bool begins = header.code == HDN_BEGINTRACKW || header.code == HDN_DIVIDERDBLCLICKW;
    const int column = begins ? reinterpret_cast<const NMHEADERW&>(header).iItem + 1 : 0;
    const bool hidden = begins && HasColumns() && column <= list_.ColumnHeaders().Count() &&
                        list_.ColumnHeaders().Item(column).Width() == 0;
    return hidden ? std::optional<LRESULT>(TRUE) : std::nullopt;
  }

  /// Stands for a selection that has yet to be looked at.
  static constexpr int kUnknown = -2;

  ListView& list_;
  std::vector<ListItemRef> rows_;
  int selected_ = kUnknown;
};

}  // namespace

std::unique_ptr<ControlFace> MakeFace(ListBox& list, FaceHost& host, const Pane& pane) {
  return std::make_unique<ListBoxFace>(list, host, pane);
}

std::unique_ptr<ControlFace> MakeFace(ListView& list, FaceHost& host, const Pane& pane) {
  return std::make_unique<ListViewFace>(list, host, pane);
}

}  // namespace nimbrel::toolkit::win32

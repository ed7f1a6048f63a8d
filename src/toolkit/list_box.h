#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/edit.h"

namespace nimbrel::toolkit {

/// The entries of a list box or combo box, numbered from 0, and which one of them is selected.
class EntryList {
 public:
  std::int32_t Count() const { return static_cast<std::int32_t>(entries_.size()); }
  const std::vector<std::string>& Entries() const { return entries_; }
  /// Raises error 381 outside the list.
  const std::string& Entry(std::int32_t index) const;
  /// The first entry that is `text`, else the first that is it without regard to case, else -1.
  std::int32_t Find(std::string_view text) const;

  /// The selected entry, -1 for none.
  std::int32_t Selected() const { return selected_; }
  /// True if another one was selected before.
  bool Select(std::int32_t index);

  /// Puts an entry before the one at `index`, or at the end; the selection stays with its entry.
  /// Raises error 5 beyond the end.
  void Insert(const std::string& entry, std::optional<std::int32_t> index);
  /// True if it was the selected one; then none is selected. Raises error 5 outside the list.
  bool Remove(std::int32_t index);
  /// True if one was selected.
  bool Clear();

 private:
  std::vector<std::string> entries_;
  std::int32_t selected_ = -1;
};

/// A list of texts, one of which may be selected.
class ListBox final : public Control {
 public:
  ListBox(Container& parent, std::string name, Place place = {});

  ControlKind Kind() const override { return ControlKind::kListBox; }

  std::int32_t ListCount() const { return entries_.Count(); }
  /// The entry at `index`, from 0. Raises error 381 outside the list, so also for a ListIndex of
  /// -1.
  const std::string& List(std::int32_t index) const { return entries_.Entry(index); }
  const std::vector<std::string>& Entries() const { return entries_.Entries(); }

  /// The selected entry, from 0; -1 for none.
  std::int32_t ListIndex() const { return entries_.Selected(); }
  /// Raises Change and then Click for a new index, -1 included. Raises error 380 outside the list.
  void SetListIndex(std::int32_t index);

  /// Adds at the end or before the entry at `index`. The same entry stays selected.
  void AddItem(const std::string& entry, std::optional<std::int32_t> index = {});
  /// Takes an entry out. Another entry that is selected stays so, with no event; the selected one
  /// leaves a ListIndex of -1, which raises Change. Raises error 5 outside the list.
  void RemoveItem(std::int32_t index);
  /// Takes all out; raises Change if one was selected.
  void Clear();

  /// The text of the selected entry; empty if there is none.
  std::string Text() const { return ListIndex() < 0 ? std::string() : List(ListIndex()); }
  std::string Value() const { return Text(); }

  /// Also "Text", "Value" and "ListIndex".
  std::optional<std::string> PropertyText(std::string_view property) const override;

  std::function<void()> Change;
  std::function<void()> Click;
  std::function<void()> DblClick;

  /// Why a hand can't click on an entry, from 0, at present; empty if it can.
  std::string WhyNoEntry(std::int32_t index) const;
  /// A click on an entry, from 0, or two.
  GestureResult UserPick(std::int32_t index);
  GestureResult UserDoubleClick(std::int32_t index);
  /// The second of two clicks alone, for faces, which get them one by one: raises DblClick if the
  /// first one was made, which left the focus here and the entry selected.
  GestureResult UserClickAgain(std::int32_t index);

 protected:
  bool OnKey(Key key) override;

 private:
  void EntriesChanged(bool lost_selection);

  EntryList entries_;
};

/// A text box with a list to pick from. A text that is typed counts as an entry as soon as it is
/// the same, without regard to case.
class ComboBox final : public EditControl {
 public:
  ComboBox(Container& parent, std::string name, Place place = {});

  ControlKind Kind() const override { return ControlKind::kComboBox; }

  std::int32_t ListCount() const { return entries_.Count(); }
  /// The entry at `index`, from 0. Raises error 381 outside the list.
  const std::string& List(std::int32_t index) const { return entries_.Entry(index); }
  const std::vector<std::string>& Entries() const { return entries_.Entries(); }

  /// The entry that the text is, from 0; -1 for none.
  std::int32_t ListIndex() const { return entries_.Selected(); }
  /// Takes the entry's text into the edit part, or empties it for -1. Raises Change once if the
  /// index or the text is new. Raises error 380 outside the list.
  void SetListIndex(std::int32_t index);

  /// Adds at the end or before the entry at `index`. The index follows its entry, the text stays.
  void AddItem(const std::string& entry, std::optional<std::int32_t> index = {});
  /// Takes an entry out. The text stays in any case; if it was the selected entry, ListIndex
  /// becomes -1, which raises Change. Raises error 5 outside the list.
  void RemoveItem(std::int32_t index);
  /// Takes all out, as RemoveItem of each.
  void Clear();

  /// Also "ListIndex".
  std::optional<std::string> PropertyText(std::string_view property) const override;

  /// Why a hand can't pick an entry, from 0, at present; empty if it can.
  std::string WhyNoEntry(std::int32_t index) const;
  /// Picks an entry, from 0.
  GestureResult UserPick(std::int32_t index);

 protected:
  bool OnKey(Key key) override;
  void Put(std::string text, std::int32_t caret) override;

 private:
  /// Takes both, and raises Change once if one of them is new.
  void Take(std::string text, std::int32_t caret, std::int32_t index);
  void EntriesChanged(bool lost_selection);

  EntryList entries_;
};

}  // namespace nimbrel::toolkit

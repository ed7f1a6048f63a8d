#pragma once

#include "toolkit/win32/control_face.h"

namespace nimbrel::toolkit::win32 {

/// What the faces of lists and trees have in common: the selection is the toolkit's, and every
/// click goes there. Windows' own ways with the mouse would wait for a drag, and move the focus
/// before anyone is asked.
class ItemFace : public ControlFace {
 public:
  bool Stretches() const override { return true; }
  int NeededWidth() const override;
  int NeededHeight(int width) const override;

 protected:
  using ControlFace::ControlFace;

  /// An item as Windows has it; 0 for none.
  using Item = std::uintptr_t;

  /// The item at a place of the window.
  virtual Item ItemAt(POINT place) const = 0;
  /// The item that Windows has as the current one.
  virtual Item CurrentItem() const = 0;
  /// Forwards a click on an item, on what of it `place` says, or the second click of two.
  virtual void Click(Item item, POINT place) = 0;
  virtual void ClickAgain(Item item, POINT place) = 0;
  /// Forwards that the user went to an item by a key that the toolkit doesn't know.
  virtual void GoTo(Item item) = 0;
  /// Brings Windows' selection to the toolkit's.
  virtual void PaintSelection() = 0;
  /// The height of the head of the columns.
  virtual int HeaderHeight() const { return 0; }

  std::optional<LRESULT> OnMessage(HWND window, UINT message, WPARAM w, LPARAM l) override;
  bool OnKeyDown(WPARAM code, bool repeated) override;

 private:
  /// Windows' own way with a key, and what comes of it for the toolkit.
  void OwnKey(UINT message, WPARAM w, LPARAM l);
};

}  // namespace nimbrel::toolkit::win32

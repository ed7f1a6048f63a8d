#pragma once

#include <memory>
#include <vector>

#include "toolkit/buttons.h"
#include "toolkit/edit.h"
#include "toolkit/frame.h"
#include "toolkit/list_box.h"
#include "toolkit/list_view.h"
#include "toolkit/tab_strip.h"
#include "toolkit/tree_view.h"
#include "toolkit/win32/control_face.h"
#include "toolkit/win32/pane.h"

namespace nimbrel::toolkit::win32 {

/// The face of a control that others stand in.
class ContainerFace : public ControlFace {
 public:
  /// What stands together: all of a frame, or one page of a tab strip.
  struct Group {
    const Container& container;
    std::unique_ptr<Pane> pane;
    TwipsBands bands;
  };

  std::vector<Group>& groups() { return groups_; }
  const std::vector<Group>& groups() const { return groups_; }
  /// Something in it makes use of more height than its place has.
  void SetStretches() { stretches_ = true; }

  bool Stretches() const override { return stretches_; }
  bool FillsHeight() const override { return true; }

 protected:
  using ControlFace::ControlFace;

  void AddGroup(const Container& container, HWND parent, bool on_page);
  /// The most that any of the groups needs at the least.
  TwipsBands::Size LeastOfGroups() const;
  /// Gives a group its place in its parent, and what stands in it its own.
  void Arrange(const Group& group, const RECT& bounds) const;

 private:
  std::vector<Group> groups_;
  bool stretches_ = false;
};

/// Puts what stands in a pane of this size in its place.
void ArrangeAll(const TwipsBands& bands, TwipsBands::Size size, const Look& look);

/// Each makes the face of a control, with its window in `pane`.
std::unique_ptr<ControlFace> MakeFace(CommandButton& button, FaceHost& host, const Pane& pane);
std::unique_ptr<ControlFace> MakeFace(CheckBox& box, FaceHost& host, const Pane& pane);
std::unique_ptr<ControlFace> MakeFace(Label& label, FaceHost& host, const Pane& pane);
std::unique_ptr<ContainerFace> MakeFace(Frame& frame, FaceHost& host, const Pane& pane);
std::unique_ptr<ContainerFace> MakeFace(TabStrip& strip, FaceHost& host, const Pane& pane);
std::unique_ptr<ControlFace> MakeFace(TextBox& box, FaceHost& host, const Pane& pane);
std::unique_ptr<ControlFace> MakeFace(ComboBox& box, FaceHost& host, const Pane& pane);
std::unique_ptr<ControlFace> MakeFace(ListBox& list, FaceHost& host, const Pane& pane);
std::unique_ptr<ControlFace> MakeFace(ListView& list, FaceHost& host, const Pane& pane);
std::unique_ptr<ControlFace> MakeFace(TreeView& tree, FaceHost& host, const Pane& pane);

}  // namespace nimbrel::toolkit::win32

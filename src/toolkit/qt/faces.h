#pragma once

#include <memory>

#include "toolkit/buttons.h"
#include "toolkit/frame.h"
#include "toolkit/list_box.h"
#include "toolkit/list_view.h"
#include "toolkit/qt/control_face.h"
#include "toolkit/tab_strip.h"
#include "toolkit/tree_view.h"

namespace nimbrel::toolkit::qt {

/// The face of a control that others stand in.
class ContainerFace : public ControlFace {
 public:
  /// Where the controls of a frame stand, or those of a page of a tab strip, from 0.
  virtual QWidget& Pane(std::int32_t page) const = 0;
  /// Something in it makes use of more height than its place has.
  void SetStretches() { stretches_ = true; }

  bool Stretches() const override { return stretches_; }
  bool FillsHeight() const override { return true; }

 protected:
  using ControlFace::ControlFace;

 private:
  bool stretches_ = false;
};

/// Each makes the face of a control, with its widget in `parent`.
std::unique_ptr<ControlFace> MakeFace(CommandButton& button, FaceHost& host, QWidget& parent);
std::unique_ptr<ControlFace> MakeFace(CheckBox& box, FaceHost& host, QWidget& parent);
std::unique_ptr<ControlFace> MakeFace(Label& label, FaceHost& host, QWidget& parent);
std::unique_ptr<ContainerFace> MakeFace(Frame& frame, FaceHost& host, QWidget& parent);
std::unique_ptr<ContainerFace> MakeFace(TabStrip& strip, FaceHost& host, QWidget& parent);
std::unique_ptr<ControlFace> MakeFace(TextBox& box, FaceHost& host, QWidget& parent);
std::unique_ptr<ControlFace> MakeFace(ComboBox& box, FaceHost& host, QWidget& parent);
std::unique_ptr<ControlFace> MakeFace(ListBox& list, FaceHost& host, QWidget& parent);
std::unique_ptr<ControlFace> MakeFace(ListView& list, FaceHost& host, QWidget& parent);
std::unique_ptr<ControlFace> MakeFace(TreeView& tree, FaceHost& host, QWidget& parent);

}  // namespace nimbrel::toolkit::qt

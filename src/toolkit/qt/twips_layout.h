#pragma once

#include <QLayout>
#include <memory>
#include <vector>

#include "toolkit/qt/control_face.h"
#include "toolkit/twips_bands.h"

namespace nimbrel::toolkit::qt {

/// Arranges the widgets of controls as TwipsBands says.
class TwipsLayout final : public QLayout {
 public:
  TwipsLayout(QWidget& pane, TwipsBands::Area area);
  ~TwipsLayout() override;

  /// The face must outlive its use by the layout, which ends with its widget.
  void Add(ControlFace& face);

  // Of Qt.
  void addItem(QLayoutItem* item) override;
  int count() const override;
  QLayoutItem* itemAt(int index) const override;
  QLayoutItem* takeAt(int index) override;
  QSize sizeHint() const override;
  QSize minimumSize() const override;
  void setGeometry(const QRect& rect) override;

 private:
  struct Item {
    std::unique_ptr<QLayoutItem> item;
    ControlFace* face;
  };

  /// The arrangement of the widgets that there still are.
  TwipsBands Bands() const;
  /// The height of a line of text.
  double Line() const;

  TwipsBands::Area area_;
  std::vector<Item> items_;
};

}  // namespace nimbrel::toolkit::qt

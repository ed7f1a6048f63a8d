#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/control.h"

namespace nimbrel::toolkit {

class TabStrip;

/// One page of a tab strip. What stands on it is on show while its tab is the current one, and
/// usable while the strip is enabled.
class TabPage final : public Container {
 public:
  TabPage(TabStrip& strip, std::int32_t index, std::string caption)
      : strip_(strip), index_(index), caption_(std::move(caption)) {}

  const std::string& Caption() const { return caption_; }

  Form& OwnerForm() override;
  bool ShowsContents() const override;
  bool EnablesContents() const override;

 private:
  TabStrip& strip_;
  std::int32_t index_;
  std::string caption_;
};

/// Pages of which one is on show. The strip itself takes the focus.
class TabStrip final : public Control {
 public:
  /// One page for each caption; there must be at least one.
  TabStrip(Container& parent, std::string name, const std::vector<std::string>& captions,
           Place place = {});

  ControlKind Kind() const override { return ControlKind::kTabStrip; }

  std::int32_t Tabs() const { return static_cast<std::int32_t>(pages_.size()); }
  /// The page at `index`, from 0. Raises error 380 if there is none.
  TabPage& Page(std::int32_t index) const;

  /// The index of the page on show, from 0.
  std::int32_t Tab() const { return tab_; }
  /// Raises Click with the index before, for a new one. Raises error 380 if there is no such page.
  void SetTab(std::int32_t index);

  /// Also "Tab" and "Caption", that of the page on show.
  std::optional<std::string> PropertyText(std::string_view property) const override;

  std::function<void(std::int32_t previous)> Click;

  /// Why a hand can't click on a tab, from 0, at present; empty if it can.
  std::string WhyNoTab(std::int32_t index) const;
  /// A click on a tab, from 0.
  GestureResult UserPickTab(std::int32_t index);

 protected:
  bool OnKey(Key key) override;

 private:
  std::vector<std::unique_ptr<TabPage>> pages_;
  std::int32_t tab_ = 0;
};

}  // namespace nimbrel::toolkit

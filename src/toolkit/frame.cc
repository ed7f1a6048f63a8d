#include "toolkit/frame.h"

#include <utility>

namespace nimbrel::toolkit {

Label::Label(Container& parent, std::string name, std::string caption, Place place)
    : Control(parent, std::move(name), place), caption_(std::move(caption)) {}

void Label::SetCaption(std::string caption) {
  caption_ = std::move(caption);
  Changed(Property::kCaption);
}

std::optional<std::string> Label::PropertyText(std::string_view property) const {
  return property == "Caption" ? caption_ : Control::PropertyText(property);
}

Frame::Frame(Container& parent, std::string name, std::string caption, Place place)
    : Control(parent, std::move(name), place), caption_(std::move(caption)) {}

void Frame::SetCaption(std::string caption) {
  caption_ = std::move(caption);
  Changed(Property::kCaption);
}

std::optional<std::string> Frame::PropertyText(std::string_view property) const {
  return property == "Caption" ? caption_ : Control::PropertyText(property);
}

}  // namespace nimbrel::toolkit

#include "toolkit/accessible_name.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "toolkit/frame.h"

namespace nimbrel::toolkit {
namespace {

/// The distance from a label to a control that it stands above or to the left of, in twips; nothing
/// for a label that stands elsewhere.
std::optional<int> DistanceFrom(const Place& label, const Place& place) {
  const bool above = label.top < place.top && label.left < place.left + place.width &&
                     place.left < label.left + label.width;
  const bool beside = label.left < place.left && label.top < place.top + place.height &&
                      place.top < label.top + label.height;
  if (above) {
    return std::max(place.top - label.top - label.height, 0);
  }
  return beside ? std::optional(std::max(place.left - label.left - label.width, 0)) : std::nullopt;
}

bool HasOwnCaption(const Control& control) {
  switch (control.Kind()) {
    case ControlKind::kCommandButton:
    case ControlKind::kCheckBox:
    case ControlKind::kLabel:
    case ControlKind::kFrame:
      return true;
    default:
      return false;
  }
}

}  // namespace

std::string AccessibleNameOf(const Control& control) {
  if (!control.AccessibleName().empty() || HasOwnCaption(control)) {
    return control.AccessibleName();
  }
  const Label* nearest = nullptr;
  int distance = std::numeric_limits<int>::max();
  for (const Control* const other : control.Parent().Controls()) {
    const auto* const label = dynamic_cast<const Label*>(other);
    if (label == nullptr) {
      continue;
    }
    const std::optional<int> apart = DistanceFrom(label->GetPlace(), control.GetPlace());
    if (apart && *apart < distance) {
      nearest = label;
      distance = *apart;
    }
  }
  if (nearest != nullptr) {
    return nearest->Caption();
  }
  const auto* const frame = dynamic_cast<const Frame*>(&control.Parent());
  return frame == nullptr ? std::string() : frame->Caption();
}

}  // namespace nimbrel::toolkit

#pragma once

#include <cstdint>

namespace nimbrel::toolkit {

/// Numbers of the run-time errors that controls raise, besides 5 (invalid call) and 91 (Nothing).
enum ErrorNumber : std::int32_t {
  kInternalError = 51,           ///< a failure that is no run-time error, as default handling shows
  kInvalidPropertyValue = 380,   ///< a value that the property cannot take
  kFormAlreadyShown = 400,       ///< a visible form is shown again
  kInvalidPropertyIndex = 381,   ///< no such entry of a list box or combo box
  kIndexOutOfBounds = 35600,     ///< "Index out of bounds": no such row, column, cell, image
  kElementNotFound = 35601,      ///< "Element not found": no such key, or no part of this control
  kKeyNotUnique = 35602,         ///< "Key is not unique in collection"
  kWouldIntroduceCycle = 35614,  ///< a node put below itself
};

}  // namespace nimbrel::toolkit

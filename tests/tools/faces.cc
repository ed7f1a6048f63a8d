#include "tests/tools/faces.h"

namespace nimbrel::gestures {

const std::vector<Face>& Faces() {
  static const std::vector<Face> kFaces = {
      {"plain", [] { return std::make_unique<Hands>(); }}, {"qt", nullptr}, {"win32", nullptr}};
  return kFaces;
}

}  // namespace nimbrel::gestures

#include "tests/tools/faces.h"

#ifdef NIMBREL_HAS_QT
#include "tests/support/gestures/qt/qt_hands.h"
#endif

namespace nimbrel::gestures {
namespace {

std::unique_ptr<Hands> MakePlainHands() {
  return std::make_unique<Hands>();
}

#ifdef NIMBREL_HAS_QT
std::unique_ptr<Hands> MakeQtHands() {
  return std::make_unique<QtHands>();
}
#else
constexpr std::unique_ptr<Hands> (*MakeQtHands)() = nullptr;
#endif

}  // namespace

const std::vector<Face>& Faces() {
  static const std::vector<Face> kFaces = {
      {"plain", MakePlainHands}, {"qt", MakeQtHands}, {"win32", nullptr}};
  return kFaces;
}

}  // namespace nimbrel::gestures

#include "tests/tools/faces.h"

#ifdef NIMBREL_HAS_QT
#include "tests/support/gestures/qt/qt_hands.h"
#endif
#ifdef NIMBREL_HAS_WIN32
#include "tests/support/gestures/win32/win32_hands.h"
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

#ifdef NIMBREL_HAS_WIN32
std::unique_ptr<Hands> MakeWin32Hands() {
  return std::make_unique<Win32Hands>();
}
#else
constexpr std::unique_ptr<Hands> (*MakeWin32Hands)() = nullptr;
#endif

}  // namespace

const std::vector<Face>& Faces() {
  static const std::vector<Face> kFaces = {
      {"plain", MakePlainHands}, {"qt", MakeQtHands}, {"win32", MakeWin32Hands}};
  return kFaces;
}

}  // namespace nimbrel::gestures

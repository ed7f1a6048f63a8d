#include "platform/runtime_error.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/platform/support.h"

namespace nimbrel::platform {
namespace {

TEST(RuntimeError, CarriesNumberAndText) {
  const RuntimeError error(kDuplicateKey, "The key A10 is there");
  EXPECT_EQ(error.number(), 457);
  EXPECT_EQ(error.text(), "The key A10 is there");
}

TEST(RuntimeError, UsingNothingIsError91) {
  EXPECT_EQ(ErrorOf([] { RaiseNothing(); }), 91);
}

TEST(IgnoreErrors, DropsTheFailingStatementAndTheNextOneRuns) {
  int done = 0;
  IgnoreErrors([&] { ++done; });
  IgnoreErrors([&] {
    RaiseNothing();
    ++done;
  });
  IgnoreErrors([&] { ++done; });
  EXPECT_EQ(done, 2);
}

TEST(IgnoreErrors, LetsOtherExceptionsGoOn) {
  EXPECT_THROW(IgnoreErrors([] { throw std::logic_error("a mistake in the program"); }),
               std::logic_error);
}

}  // namespace
}  // namespace nimbrel::platform

#include "platform/ref.h"

#include <gtest/gtest.h>

#include <utility>

#include "tests/platform/support.h"

namespace nimbrel::platform {
namespace {

/// Counts how many of its kind live.
class Counted : public Object {
 public:
  explicit Counted(int& living) : living_(living) { ++living_; }
  int number() const { return 7; }

 protected:
  ~Counted() override { --living_; }

 private:
  int& living_;
};

class Special : public Counted {
 public:
  using Counted::Counted;
};

/// Lives inside another object and only notes that it was let go.
class Embedded : public Object {
 public:
  ~Embedded() override = default;
  int times_let_go() const { return times_let_go_; }

 private:
  void OnLastRelease() const noexcept override { ++times_let_go_; }
  mutable int times_let_go_ = 0;
};

TEST(Ref, AnObjectLivesAsLongAsAReferenceToIt) {
  int living = 0;
  Ref<Counted> first = MakeRef<Counted>(living);
  Ref<Counted> second = first;
  first = nullptr;
  EXPECT_EQ(living, 1);
  EXPECT_EQ(second->number(), 7);
  second = nullptr;
  EXPECT_EQ(living, 0);
}

TEST(Ref, UsingNothingRaises) {
  const Ref<Counted> nothing;
  EXPECT_TRUE(nothing.IsNothing());
  EXPECT_FALSE(static_cast<bool>(nothing));
  EXPECT_EQ(nothing.get(), nullptr);
  EXPECT_EQ(ErrorOf([&] { nothing->number(); }), kObjectNotSet);
  EXPECT_EQ(ErrorOf([&] { static_cast<void>((*nothing).number()); }), kObjectNotSet);
}

TEST(Ref, MovingHandsTheShareOver) {
  int living = 0;
  Ref<Counted> from = MakeRef<Counted>(living);
  Ref<Counted> to = std::move(from);
  EXPECT_TRUE(from.IsNothing());  // NOLINT(bugprone-use-after-move,clang-analyzer-cplusplus.Move)
  EXPECT_EQ(living, 1);
  to = Ref<Counted>();
  EXPECT_EQ(living, 0);
}

TEST(Ref, AssigningToItselfKeepsTheObject) {
  int living = 0;
  Ref<Counted> only = MakeRef<Counted>(living);
  const Ref<Counted>& same = only;
  only = same;
  EXPECT_EQ(living, 1);
  EXPECT_FALSE(only.IsNothing());
}

TEST(Ref, AssigningLetsTheOldObjectGo) {
  int old_living = 0;
  int new_living = 0;
  Ref<Counted> ref = MakeRef<Counted>(old_living);
  ref = MakeRef<Counted>(new_living);
  EXPECT_EQ(old_living, 0);
  EXPECT_EQ(new_living, 1);
}

TEST(Ref, ConvertsToAReferenceToTheBaseAndSharesTheObject) {
  int living = 0;
  Ref<Special> special = MakeRef<Special>(living);
  Ref<Counted> base = special;
  EXPECT_EQ(base.get(), special.get());
  special = nullptr;
  EXPECT_EQ(living, 1);
}

TEST(Ref, IsEqualToAReferenceToTheSameObjectOnly) {
  int living = 0;
  const Ref<Counted> one = MakeRef<Counted>(living);
  const Ref<Counted> other = MakeRef<Counted>(living);
  EXPECT_EQ(one, Ref<Counted>(one.get()));
  EXPECT_FALSE(one == other);
  EXPECT_EQ(Ref<Counted>(), Ref<Counted>(nullptr));
}

TEST(Ref, AnObjectInsideAnotherOneDecidesWhatItsLastReferenceDoes) {
  Embedded embedded;
  {
    Ref<Embedded> one(&embedded);
    const Ref<Embedded> two = one;
    one = nullptr;
    EXPECT_EQ(embedded.times_let_go(), 0);
  }
  EXPECT_EQ(embedded.times_let_go(), 1);
}

}  // namespace
}  // namespace nimbrel::platform

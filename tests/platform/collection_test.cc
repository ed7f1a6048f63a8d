#include "platform/collection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/platform/support.h"

namespace nimbrel::platform {
namespace {

using testing::ElementsAre;

Collection<std::string> ThreeTasks() {
  Collection<std::string> tasks;
  tasks.Add("dig", "A10");
  tasks.Add("pour", "A20");
  tasks.Add("cure", "A30");
  return tasks;
}

TEST(Collection, CountsFrom1InTheOrderOfAdding) {
  const Collection<std::string> tasks = ThreeTasks();
  EXPECT_EQ(tasks.Count(), 3);
  EXPECT_EQ(tasks.Item(1), "dig");
  EXPECT_EQ(tasks.Item(3), "cure");
  EXPECT_THAT(tasks, ElementsAre("dig", "pour", "cure"));
}

TEST(Collection, ANumberOutsideRaises) {
  const Collection<std::string> tasks = ThreeTasks();
  EXPECT_EQ(ErrorOf([&] { tasks.Item(0); }), kSubscriptOutOfRange);
  EXPECT_EQ(ErrorOf([&] { tasks.Item(4); }), kSubscriptOutOfRange);
  EXPECT_EQ(ErrorOf([&] { tasks.Item(-1); }), kSubscriptOutOfRange);
  EXPECT_EQ(ErrorOf([] { Collection<int>().Item(1); }), kSubscriptOutOfRange);
}

TEST(Collection, KeysHaveNoCase) {
  Collection<int> months;
  months.Add(2, "Février");
  EXPECT_EQ(months.Item("fÉVRIER"), 2);
  EXPECT_TRUE(months.Contains("FÉVRIER"));
  EXPECT_FALSE(months.Contains("fevrier"));
}

TEST(Collection, AMissingKeyRaises) {
  const Collection<std::string> tasks = ThreeTasks();
  EXPECT_EQ(ErrorOf([&] { tasks.Item("A40"); }), kInvalidProcedureCall);
  EXPECT_FALSE(tasks.Contains("A40"));
}

TEST(Collection, AKeyThatIsThereRaisesAndChangesNothing) {
  Collection<std::string> tasks = ThreeTasks();
  EXPECT_EQ(ErrorOf([&] { tasks.Add("again", "a20"); }), kDuplicateKey);
  EXPECT_THAT(tasks, ElementsAre("dig", "pour", "cure"));
  EXPECT_EQ(tasks.Item("A20"), "pour");
}

TEST(Collection, TheErrorNamesTheKey) {
  const Collection<std::string> tasks = ThreeTasks();
  try {
    tasks.Item("B99");
    FAIL() << "nothing was raised";
  } catch (const RuntimeError& error) {
    EXPECT_THAT(error.text(), testing::HasSubstr("B99"));
  }
}

TEST(Collection, ItemsWithoutAKeyAreFoundByNumberAlone) {
  Collection<std::string> mixed;
  mixed.Add("no key");
  mixed.Add("no key either");
  mixed.Add("empty key", "");
  EXPECT_EQ(mixed.Item(2), "no key either");
  EXPECT_EQ(mixed.Item(""), "empty key");
  mixed.Remove(1);
  EXPECT_EQ(mixed.Item(""), "empty key");
  EXPECT_THAT(mixed, ElementsAre("no key either", "empty key"));
}

TEST(Collection, RemovingMovesTheItemsBehindUp) {
  Collection<std::string> tasks = ThreeTasks();
  tasks.Remove("a10");
  EXPECT_THAT(tasks, ElementsAre("pour", "cure"));
  EXPECT_EQ(tasks.Item("A30"), "cure");
  EXPECT_EQ(ErrorOf([&] { tasks.Item("A10"); }), kInvalidProcedureCall);
  tasks.Remove(2);
  EXPECT_THAT(tasks, ElementsAre("pour"));
  EXPECT_FALSE(tasks.Contains("A30"));
}

TEST(Collection, RemovingWhatIsNotThereRaises) {
  Collection<std::string> tasks = ThreeTasks();
  EXPECT_EQ(ErrorOf([&] { tasks.Remove("A40"); }), kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([&] { tasks.Remove(4); }), kSubscriptOutOfRange);
  EXPECT_EQ(tasks.Count(), 3);
}

TEST(Collection, ARemovedKeyCanBeAddedAgainAndStandsLast) {
  Collection<std::string> tasks = ThreeTasks();
  tasks.Remove("A10");
  tasks.Add("dig again", "A10");
  EXPECT_THAT(tasks, ElementsAre("pour", "cure", "dig again"));
}

TEST(Collection, ClearLeavesNothing) {
  Collection<std::string> tasks = ThreeTasks();
  tasks.Clear();
  EXPECT_EQ(tasks.Count(), 0);
  EXPECT_FALSE(tasks.Contains("A10"));
  tasks.Add("dig", "A10");
  EXPECT_EQ(tasks.Item("A10"), "dig");
}

TEST(Collection, AnItemCanBeChangedInPlace) {
  Collection<std::string> tasks = ThreeTasks();
  tasks.Item("A20") = "pour twice";
  tasks.Item(3) = "wait";
  EXPECT_THAT(tasks, ElementsAre("dig", "pour twice", "wait"));
}

TEST(Collection, ACopyStandsForItself) {
  const Collection<std::string> tasks = ThreeTasks();
  Collection<std::string> copy = tasks;
  copy.Remove("A10");
  copy.Item("A20") = "changed";
  EXPECT_THAT(tasks, ElementsAre("dig", "pour", "cure"));
  EXPECT_EQ(tasks.Item("A10"), "dig");
}

/// The rules of a collection, with a search from front to back for every question.
struct NaiveCollection {
  std::vector<std::pair<std::string, int>> items;

  std::optional<std::size_t> Find(const std::string& key) const {
    for (std::size_t i = 0; i < items.size(); ++i) {
      if (FoldCase(items[i].first) == FoldCase(key)) {
        return i;
      }
    }
    return std::nullopt;
  }
};

RC_GTEST_PROP(CollectionProperty, AgreesWithANaiveOneUnderAnyOperations, ()) {
  Collection<int> tested;
  NaiveCollection naive;
  const auto keys = rc::gen::element<std::string>("a", "A", "b", "B", "ä", "Ä", "");
  const int steps = *rc::gen::inRange(0, 40);
  for (int step = 0; step < steps; ++step) {
    const std::string key = *keys;
    const auto there = naive.Find(key);
    const int number = *rc::gen::inRange(0, 6);
    switch (*rc::gen::inRange(0, 3)) {
      case 0:
        RC_ASSERT(ErrorOf([&] { tested.Add(step, key); }).has_value() == there.has_value());
        if (!there) {
          naive.items.emplace_back(key, step);
        }
        break;
      case 1:
        RC_ASSERT(ErrorOf([&] { tested.Remove(key); }).has_value() != there.has_value());
        if (there) {
          naive.items.erase(naive.items.begin() + static_cast<std::ptrdiff_t>(*there));
        }
        break;
      default: {
        const bool inside = number >= 1 && number <= static_cast<int>(naive.items.size());
        RC_ASSERT(ErrorOf([&] { tested.Remove(number); }).has_value() != inside);
        if (inside) {
          naive.items.erase(naive.items.begin() + number - 1);
        }
      }
    }
    RC_ASSERT(tested.Count() == static_cast<std::int32_t>(naive.items.size()));
    for (std::size_t i = 0; i < naive.items.size(); ++i) {
      RC_ASSERT(tested.Item(static_cast<std::int32_t>(i + 1)) == naive.items[i].second);
      RC_ASSERT(tested.Item(naive.items[i].first) == naive.items[i].second);
    }
  }
}

}  // namespace
}  // namespace nimbrel::platform

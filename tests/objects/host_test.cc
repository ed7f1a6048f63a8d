// The application: events, the open plan, and how long objects live.

#include "tests/objects/support.h"

namespace nimbrel::engine {

using ::testing::ElementsAre;

namespace {

class Receiver : public Corvane8::ApplicationEvents {
 public:
  Receiver(std::string name, std::vector<std::string>& log) : name_(std::move(name)), log_(log) {}

  std::function<void()> also;

  void PlanBeforeRiskAnalysis(const Ref<Corvane8::Plan>& plan) override {
    Note("before analysis", plan);
  }
  void PlanBeforeRiskIteration(const Ref<Corvane8::Plan>& plan, Long iteration) override {
    Note("before " + std::to_string(iteration), plan);
  }
  void PlanAfterRiskIteration(const Ref<Corvane8::Plan>& plan, Long iteration) override {
    Note("after " + std::to_string(iteration), plan);
  }
  void PlanAfterRiskAnalysis(const Ref<Corvane8::Plan>& plan) override {
    Note("after analysis", plan);
  }

 private:
  void Note(const std::string& event, const Ref<Corvane8::Plan>& plan) {
    log_.push_back(name_ + ": " + event + " of " + plan->get_Name());
    if (also) {
      also();
    }
  }

  std::string name_;
  std::vector<std::string>& log_;
};

class HostTest : public ObjectsTest {
 protected:
  void SetUp() override { Open({{"A", 1}}); }

  std::vector<std::string> log_;
  Receiver first_{"first", log_};
  Receiver second_{"second", log_};
};

TEST_F(HostTest, RaisesEachOfTheFourEventsWithThePlanAndTheIteration) {
  host_->Subscribe(&first_);
  host_->RaisePlanBeforeRiskAnalysis();
  host_->RaisePlanBeforeRiskIteration(7);
  host_->RaisePlanAfterRiskIteration(7);
  host_->RaisePlanAfterRiskAnalysis();
  EXPECT_THAT(log_, ElementsAre("first: before analysis of Pier", "first: before 7 of Pier",
                                "first: after 7 of Pier", "first: after analysis of Pier"));
}

TEST_F(HostTest, RaisesEventsInTheOrderOfSubscription) {
  host_->Subscribe(&second_);
  host_->Subscribe(&first_);
  host_->RaisePlanBeforeRiskIteration(1);
  EXPECT_THAT(log_, ElementsAre("second: before 1 of Pier", "first: before 1 of Pier"));
}

TEST_F(HostTest, ASecondSubscriptionReceivesEveryEventTwice) {
  host_->Subscribe(&first_);
  host_->Subscribe(&first_);
  host_->RaisePlanBeforeRiskIteration(1);
  EXPECT_EQ(log_.size(), 2U);
  host_->Unsubscribe(&first_);
  host_->RaisePlanBeforeRiskIteration(2);
  EXPECT_EQ(log_.size(), 3U);
}

TEST_F(HostTest, UnsubscribingWhoIsNotSubscribedDoesNothing) {
  host_->Subscribe(&first_);
  host_->Unsubscribe(&second_);
  host_->Unsubscribe(nullptr);
  host_->RaisePlanBeforeRiskIteration(1);
  EXPECT_EQ(log_.size(), 1U);
}

TEST_F(HostTest, AReceiverMayEndSubscriptionsInsideAnEvent) {
  host_->Subscribe(&first_);
  host_->Subscribe(&second_);
  first_.also = [this] {
    host_->Unsubscribe(&first_);
    host_->Unsubscribe(&second_);
  };
  host_->RaisePlanBeforeRiskIteration(1);
  host_->RaisePlanBeforeRiskIteration(2);
  EXPECT_THAT(log_, ElementsAre("first: before 1 of Pier"));
}

TEST_F(HostTest, WhoSubscribesInsideAnEventReceivesTheNextOne) {
  host_->Subscribe(&first_);
  first_.also = [this] {
    first_.also = nullptr;
    host_->Subscribe(&second_);
  };
  host_->RaisePlanBeforeRiskIteration(1);
  EXPECT_EQ(log_.size(), 1U);
  host_->RaisePlanBeforeRiskIteration(2);
  EXPECT_EQ(log_.size(), 3U);
}

TEST_F(HostTest, AnErrorOfAReceiverGoesToTheCallerAndEndsTheEvent) {
  host_->Subscribe(&first_);
  host_->Subscribe(&second_);
  first_.also = [] { throw platform::RuntimeError(13, "no date"); };
  EXPECT_EQ(ErrorOf([&] { host_->RaisePlanBeforeRiskIteration(1); }), 13);
  EXPECT_EQ(log_.size(), 1U);
  first_.also = nullptr;
  host_->RaisePlanBeforeRiskIteration(2);
  EXPECT_EQ(log_.size(), 3U);
}

TEST_F(HostTest, WithoutAnOpenPlanNothingIsActive) {
  host_->Close();
  EXPECT_TRUE(host_->get_ActivePlan().IsNothing());
  EXPECT_EQ(ErrorOf([&] { host_->document(); }), platform::kObjectNotSet);
  EXPECT_EQ(ErrorOf([&] { host_->RaisePlanBeforeRiskAnalysis(); }), platform::kObjectNotSet);
}

TEST_F(HostTest, TellsItsFolderAndHasNoWindow) {
  EXPECT_EQ(host_->get_Path(), "/opt/nimbrel");
  EXPECT_EQ(host_->get_hWnd(), 0);
}

TEST_F(HostTest, TheSameThingIsAlwaysTheSameObject) {
  EXPECT_EQ(plan(), plan());
  EXPECT_EQ(TaskOf("A"), TaskOf("a"));
  EXPECT_EQ(TaskOf("A")->get_Calendar(), calendars()->Item("STANDARD"));
  EXPECT_EQ(TaskOf("A")->get_Dates(), TaskOf("A")->get_Dates());
  EXPECT_EQ(tasks()->Elements()[0], TaskOf("A"));
}

TEST_F(HostTest, ObjectsOutliveTheHost) {
  auto task = TaskOf("A");
  auto dates = task->get_Dates();
  host_ = nullptr;
  EXPECT_EQ(task->get_ID(), "A");
  task = nullptr;
  EXPECT_EQ(dates->get_Start(), January(4) + 8.0 / 24.0);
}

TEST_F(HostTest, ObjectsStayWithTheirPlanWhenAnotherIsOpened) {
  const auto former = TaskOf("A");
  Plan other = MakePlan();
  AddTask(other, "B", 1);
  host_->Open(std::move(other));
  former->put_Description("of the former plan");
  EXPECT_EQ(former->get_Description(), "of the former plan");
  EXPECT_EQ(ErrorOf([&] { TaskOf("A"); }), platform::kInvalidProcedureCall);
  EXPECT_EQ(TaskOf("B")->get_ID(), "B");
}

TEST_F(HostTest, ObjectsOfAnotherPlanAreRefused) {
  const auto stranger = MakeTestHost(MakePlan())->get_ActivePlan();
  const auto calendar = stranger->get_Calendars()->Item("STANDARD");
  const auto task = stranger->get_Tasks()->Add();
  EXPECT_EQ(ErrorOf([&] { TaskOf("A")->put_Calendar(calendar); }), platform::kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([&] { TaskOf("A")->MoveUnder(0, task); }), platform::kInvalidProcedureCall);
}

TEST_F(HostTest, TheHostsOwnRandomStreamIsAFixedSequence) {
  const auto read = [this] {
    const auto analysis = plan()->get_RiskAnalysis();
    host_->SetRandomStream(nullptr);
    std::vector<double> numbers;
    for (int i = 0; i < 1000; ++i) {
      numbers.push_back(analysis->get_Rnd());
      EXPECT_GE(numbers.back(), 0.0);
      EXPECT_LT(numbers.back(), 1.0);
    }
    return numbers;
  };
  const std::vector<double> numbers = read();
  EXPECT_EQ(read(), numbers);
  // A uniform mean has the standard deviation sqrt(1 / 12 / 1000) = 0.0091: five of them.
  double sum = 0;
  for (const double number : numbers) {
    sum += number;
  }
  EXPECT_NEAR(sum / 1000, 0.5, 0.046);
}

TEST_F(HostTest, RndReadsTheStreamOfTheRun) {
  struct Counting : RandomStream {
    double next = 0.0;
    double Next() override { return next += 0.125; }
  } stream;
  host_->SetRandomStream(&stream);
  const auto analysis = plan()->get_RiskAnalysis();
  EXPECT_EQ(analysis->get_Rnd(), 0.125);
  EXPECT_EQ(analysis->get_Rnd(), 0.25);
}

TEST_F(HostTest, WhoOutlivesTheHostReadsTheHostsOwnStream) {
  const auto analysis = plan()->get_RiskAnalysis();
  host_->SetRandomStream(nullptr);
  const double first = analysis->get_Rnd();
  {
    struct Constant : RandomStream {
      double Next() override { return 0.75; }
    } stream;
    host_->SetRandomStream(&stream);
    EXPECT_EQ(analysis->get_Rnd(), 0.75);
    host_ = nullptr;
  }
  EXPECT_EQ(analysis->get_Rnd(), first);
}

}  // namespace
}  // namespace nimbrel::engine

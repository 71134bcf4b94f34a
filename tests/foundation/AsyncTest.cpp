// Tasks, their waits, their owners and the queues they run on.

#include "foundation/Lifetime.h"
#include "foundation/Published.h"
#include "foundation/RepeatingTimer.h"
#include "foundation/RunLoop.h"
#include "foundation/SerialQueue.h"
#include "foundation/TaskGroup.h"
#include "foundation/TaskMutex.h"
#include "foundation/ThreadPool.h"
#include "foundation/Waiting.h"
#include "foundation/WakeUp.h"
#include "support/ManualTime.h"

#include <algorithm>
#include <cerrno>
#include <future>
#include <limits>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>
#include <unistd.h>

namespace querlin {
namespace {

using Steps = std::vector<std::string>;

/// Tells when it is destroyed, to prove that a frame has gone with all that it holds.
struct Witness {
    Steps& steps;
    std::string name;
    ~Witness() { steps.push_back(name + " goes"); }
};

Task<int> answerLater(ManualTime& time, Steps& steps) {
    const Witness witness{steps, "child"};
    steps.emplace_back("child begins");
    co_await sleepFor(time, seconds(1));
    steps.emplace_back("child ends");
    co_return 42;
}

Task<> parent(ManualTime& time, Steps& steps) {
    const Witness witness{steps, "parent"};
    const int answer = co_await answerLater(time, steps);
    steps.push_back("parent has " + std::to_string(answer));
}

TEST(Task, RunsToItsFirstWaitAndResumesItsParent) {
    ManualTime time;
    Steps steps;
    TaskGroup group;
    group.start(parent(time, steps));
    EXPECT_EQ(steps, (Steps{"child begins"})) << "must suspend in the child";
    time.advance(seconds(1));
    EXPECT_EQ(steps, (Steps{"child begins", "child ends", "child goes", "parent has 42", "parent goes"}));
    EXPECT_TRUE(group.isEmpty());
}

TEST(Task, AbandoningTakesTheFramesAndWithdrawsTheTimer) {
    ManualTime time;
    Steps steps;
    {
        TaskGroup group;
        group.start(parent(time, steps));
        EXPECT_EQ(time.pendingTimers(), 1U);
    }
    EXPECT_EQ(time.pendingTimers(), 0U);
    EXPECT_EQ(steps, (Steps{"child begins", "child goes", "parent goes"}));
}

Task<int> fails() {
    throw std::runtime_error("weg");
    co_return 0;
}

Task<> endsWithoutWaiting(int& failures) {
    for (int i = 0; i < 200'000; ++i) {
        try {
            co_await fails();
        } catch (const std::runtime_error&) {
            ++failures;
        }
    }
}

TEST(Task, PassesExceptionsUpAndDoesNotGrowTheStack) {
    int failures = 0;
    TaskGroup group;
    group.start(endsWithoutWaiting(failures));
    EXPECT_EQ(failures, 200'000) << "must not suspend";
}

Task<> take(const OneShot<std::string>& shot, Steps& steps) { steps.push_back(co_await shot); }

TEST(OneShot, FirstValueCountsWhoeverComesFirst) {
    ManualTime time;
    Steps steps;
    TaskGroup group;
    const OneShot<std::string> early(time);
    early.sender().send("früh");
    early.sender().send("zu spät");
    group.start(take(early, steps));
    EXPECT_EQ(steps, (Steps{"früh"})) << "a value that is there is taken without a wait";

    const OneShot<std::string> late(time);
    group.start(take(late, steps));
    late.sender().send("spät");
    EXPECT_EQ(steps.size(), 1U) << "resumed from the queue, not inside send";
    time.settle();
    EXPECT_EQ(steps.back(), "spät");

    const OneShot<std::string> unwanted(time);
    group.start(take(unwanted, steps));
    unwanted.sender().send("niemand da");
    group.abandonAll(); // between the sending and the resumption
    time.settle();
    EXPECT_EQ(steps.size(), 2U);
}

Task<> backgroundSum(Runtime runtime, std::vector<int>& results, bool breaks) {
    auto work = [breaks] { return breaks ? throw std::runtime_error("kaputt") : 5; };
    try {
        results.push_back(co_await background(runtime, std::move(work)));
    } catch (const std::runtime_error&) {
        results.push_back(-1);
    }
}

TEST(Background, BringsResultsAndExceptionsBackToTheMainThread) {
    RunLoop loop;
    SystemClock clock;
    ThreadPool pool(2);
    std::vector<int> results;
    TaskGroup group;
    for (int i = 0; i < 200; ++i) group.start(backgroundSum({loop, clock, pool}, results, i % 2 == 1));
    RepeatingTimer check(loop, std::chrono::milliseconds(1), [&] {
        if (group.isEmpty()) loop.quit();
    });
    loop.run();
    EXPECT_EQ(std::ranges::count(results, 5), 100);
    EXPECT_EQ(std::ranges::count(results, -1), 100);
}

TEST(WakeUp, EndsAWaitOnceAndLeavesErrnoToTheInterruptedThread) {
    const WakeUp wakeUp;
    const std::uint64_t full = std::numeric_limits<std::uint64_t>::max() - 1;
    ASSERT_EQ(::write(wakeUp.descriptor(), &full, sizeof full), 8);
    errno = EINTR;
    wakeUp.ring(); // The system refuses it: EAGAIN.
    EXPECT_EQ(errno, EINTR);

    wakeUp.wait(); // Does not hang.
    pollfd socket{wakeUp.descriptor(), POLLIN, 0};
    EXPECT_EQ(pollUntil({&socket, 1}, std::chrono::steady_clock::now()), 0) << "a ring was taken";
}

TEST(SerialQueue, KeepsOrderAndDoesNotHangAtItsEnd) {
    std::vector<int> order;
    {
        SerialQueue queue;
        for (int i = 0; i < 1000; ++i) queue.run([&order, i] { order.push_back(i); });
        EXPECT_TRUE(queue.drain(std::chrono::seconds(20)));
    }
    EXPECT_TRUE(std::ranges::is_sorted(order));
    EXPECT_EQ(order.size(), 1000U);

    const auto release = std::make_shared<std::promise<void>>();
    {
        SerialQueue stuck;
        stuck.run([wait = release->get_future().share(), release] { wait.wait(); });
        EXPECT_FALSE(stuck.drain(std::chrono::milliseconds(10)));
        release->set_value();
    }
}

TEST(RepeatingTimer, MayDestroyItself) {
    ManualTime time;
    std::optional<RepeatingTimer> timer;
    timer.emplace(time, seconds(0.5), [&] { timer.reset(); });
    time.advance(seconds(10));
    EXPECT_FALSE(timer);
}

TEST(Lifetime, CallsNothingOnceItsOwnerIsGone) {
    ManualTime time;
    Steps steps;
    auto lifetime = std::make_unique<Lifetime>();
    const auto posted = lifetime->onMain(time, [&](std::string text) { steps.push_back(text); });
    posted("eins");
    EXPECT_TRUE(steps.empty());
    time.settle();
    posted("zwei"); // on its way when the owner goes
    lifetime.reset();
    posted("drei");
    time.settle();
    EXPECT_EQ(steps, (Steps{"eins"}));
}

Task<> takeTurn(TaskMutex& mutex, ManualTime& time, Steps& steps, std::string name) {
    const auto turn = co_await mutex.lock();
    steps.push_back(name + " in");
    co_await sleepFor(time, seconds(1));
    steps.push_back(name + " out");
}

TEST(TaskMutex, LetsOneThroughAtATimeEvenIfAWaiterGivesUp) {
    ManualTime time;
    Steps steps;
    TaskMutex mutex(time);
    TaskGroup group;
    TaskGroup givesUp;
    group.start(takeTurn(mutex, time, steps, "a"));
    givesUp.start(takeTurn(mutex, time, steps, "b"));
    group.start(takeTurn(mutex, time, steps, "c"));
    time.advance(seconds(0.5));
    givesUp.abandonAll();
    time.advance(seconds(5));
    EXPECT_EQ(steps, (Steps{"a in", "a out", "c in", "c out"}));
}

TEST(Published, TellsTheNewestValueLastWhateverSubscribersDo) {
    Published<int> value(1);
    std::vector<int> heard;
    const auto clamps = value.subscribe([&](int now) {
        if (now > 10) value.set(10);
    });
    const auto listens = value.subscribe([&](int now) { heard.push_back(now); }, FirstValue::Skip);
    value.set(50);
    EXPECT_EQ(heard, std::vector{10}) << "nobody after the clamp gets the overtaken 50";
}

TEST(Published, SubscriptionsMayOutliveItAndEndInsideTheCall) {
    Registration outliving;
    int calls = 0;
    {
        Published<int> value;
        const auto once = [&](int) {
            ++calls;
            outliving.reset();
        };
        outliving = value.subscribe(once, FirstValue::Skip);
        value.set(1);
        value.set(2);
        EXPECT_EQ(calls, 1);
        outliving = value.subscribe([](int) {});
    }
}

} // namespace
} // namespace querlin

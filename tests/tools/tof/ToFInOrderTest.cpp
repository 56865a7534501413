#include "tools/tof/ToFInOrder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>

namespace {

TEST(ToFInOrderTest, NoMoreIsBegunThanHasRoom) {
    std::atomic<int> open{0};
    std::atomic<int> most{0};
    std::vector<qint64> order;
    const auto run = [&](quint64 room, quint64 cost) {
        open = most = 0;
        order.clear();
        inOrder(
            40, room, [cost](qint64) { return cost; },
            [&](qint64 i) {
                const int now = ++open;
                for (int seen = most; now > seen && !most.compare_exchange_weak(seen, now);) {
                }
                return i;
            },
            [&](qint64 i, qint64 result) {
                EXPECT_EQ(i, result);
                // Gives the workers time to run ahead.
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
                --open;
                order.push_back(result);
                return true;
            });
        EXPECT_EQ(order.size(), 40U);
        return most.load();
    };
    EXPECT_LE(run(25, 10), 2);
    EXPECT_EQ(run(25, 26), 1); // above the budget: one at a time
    EXPECT_LE(run(0, 0), 2 * int(std::max(1U, std::thread::hardware_concurrency())));
}

TEST(ToFInOrderTest, EndsWhereFinishWantsNoMore) {
    std::vector<qint64> finished;
    std::atomic<int> begun{0};
    inOrder(
        1000,
        [&](qint64 i) {
            ++begun;
            return i;
        },
        [&](qint64 i, qint64 result) {
            EXPECT_EQ(i, result);
            finished.push_back(i);
            return i < 4;
        });
    EXPECT_EQ(finished, (std::vector<qint64>{0, 1, 2, 3, 4}));
    // Only the items in flight when the fifth was refused.
    EXPECT_LE(begun.load(), 4 + 2 * int(std::max(1U, std::thread::hardware_concurrency())));
}

TEST(ToFInOrderTest, NothingToDoIsDone) {
    inOrder(
        0, [](qint64 i) { return i; },
        [](qint64, qint64) {
            ADD_FAILURE();
            return true;
        });
}

} // namespace

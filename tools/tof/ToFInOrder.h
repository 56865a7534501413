#pragma once

#include <QtGlobal>

#include <algorithm>
#include <condition_variable>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

/// Runs work(i) for every i from 0 to count - 1 on all cores, and finish(i, result) in the order of i on the
/// calling thread. Only a few items are in flight at a time, and the sum of their cost(i) stays within the
/// budget, except that one item may always run. Ends early when finish returns false.
template <typename Cost, typename Work, typename Finish>
void inOrder(qint64 count, quint64 budget, const Cost& cost, const Work& work, const Finish& finish) {
    using Result = decltype(work(qint64(0)));
    const qint64 cores = std::max<qint64>(1, std::thread::hardware_concurrency());
    const qint64 ahead = 2 * cores;
    std::mutex mutex;
    std::condition_variable changed;
    std::map<qint64, Result> done;
    qint64 next = 0;
    qint64 finished = 0;
    quint64 spent = 0;
    bool stop = false;

    const auto mayBegin = [&] {
        return next < finished + ahead && (next == finished || spent + cost(next) <= budget);
    };
    const auto worker = [&] {
        std::unique_lock lock(mutex);
        for (;;) {
            changed.wait(lock, [&] { return stop || next >= count || mayBegin(); });
            if (stop || next >= count) {
                return;
            }
            const qint64 mine = next++;
            spent += cost(mine);
            lock.unlock();
            Result result = work(mine);
            lock.lock();
            done.emplace(mine, std::move(result));
            changed.notify_all();
        }
    };
    std::vector<std::thread> threads;
    for (qint64 i = 0; i < std::min(cores, count); ++i) {
        threads.emplace_back(worker);
    }
    std::unique_lock lock(mutex);
    while (finished < count && !stop) {
        changed.wait(lock, [&] { return done.count(finished) != 0; });
        Result result = std::move(done.extract(finished).mapped());
        lock.unlock();
        const bool proceed = finish(finished, std::move(result));
        lock.lock();
        spent -= cost(finished);
        ++finished;
        stop = !proceed;
        changed.notify_all();
    }
    lock.unlock();
    for (std::thread& thread : threads) {
        thread.join();
    }
}

/// Without a budget: for items that take little memory.
template <typename Work, typename Finish>
void inOrder(qint64 count, const Work& work, const Finish& finish) {
    inOrder(
        count, 0, [](qint64) { return quint64(0); }, work, finish);
}

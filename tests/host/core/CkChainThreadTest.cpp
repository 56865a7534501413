#include "tests/host/core/chainFixture.h"

#include <thread>

namespace {

using CkChainThreadTest = ChainFixture;

/// Pushes frames as fast as it can until it is destroyed.
class Pusher {
public:
    explicit Pusher(TestSource* source)
        : m_thread([this, source] {
              for (quint8 value = 0; !m_bEnd; ++value) {
                  source->push(value);
                  std::this_thread::yield();
              }
          }) {}
    ~Pusher() {
        m_bEnd = true;
        m_thread.join();
    }
    Pusher(const Pusher&) = delete;
    Pusher& operator=(const Pusher&) = delete;

private:
    std::atomic<bool> m_bEnd = false;
    std::thread m_thread;
};

/// Counts its instances.
class CountedFrame : public CkImageData {
public:
    explicit CountedFrame(std::atomic<int>& count) : m_count(count) { ++m_count; }
    ~CountedFrame() override { --m_count; }

private:
    std::atomic<int>& m_count;
};

} // namespace

TEST_F(CkChainThreadTest, StopReturnsOnlyWhenNoBlockIsInsideProcessData) {
    auto* const block = branch(new AddBlock(1), source);
    block->gate.close();
    ASSERT_TRUE(chain->start());
    ASSERT_TRUE(source->push(1));
    ASSERT_TRUE(waitUntil([&] { return block->gate.waiting() == 1; }));
    std::atomic<bool> stopped = false;
    std::thread stopper([&] {
        chain->stop();
        EXPECT_FALSE(block->inside);
        stopped = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(stopped) << "the block is still inside";
    block->gate.open();
    stopper.join();
    EXPECT_TRUE(stopped);
    EXPECT_EQ(block->stops, 1);
}

TEST_F(CkChainThreadTest, RestartsFromManyThreadsAtFullFrameRate) {
    auto* const block = branch(new AddBlock(1), source);
    auto* const downstream = branch(new AddBlock(1), block);
    KeepingSink sink(2, 2);
    chain->addSink(downstream, &sink);
    ASSERT_TRUE(chain->start());
    {
        const Pusher pusher(source);
        std::vector<std::thread> restarters;
        for (int i = 0; i < 3; ++i) {
            restarters.emplace_back([&] {
                for (int n = 0; n < 60; ++n) {
                    const CkChain::CkControlLock lock(chain);
                    const bool wasRunning = !chain->stopped();
                    chain->stop();
                    EXPECT_TRUE(wasRunning) << "no other thread stops between stop and start";
                    EXPECT_FALSE(block->inside || downstream->inside);
                    block->number = n;
                    EXPECT_TRUE(chain->start());
                }
            });
        }
        restarters.emplace_back([&] {
            SkPicBufInfo info;
            for (int n = 0; n < 200; ++n) {
                EXPECT_TRUE(downstream->outputImageInfo(info, nullptr));
                chain->blockStatistics(block);
                chain->requestRenegotiation();
            }
        });
        for (std::thread& thread : restarters) {
            thread.join();
        }
        const size_t before = sink.count();
        EXPECT_TRUE(waitUntil([&] { return sink.count() > before + 5; })) << "frames still flow";
    }
    chain->stop();
    EXPECT_FALSE(block->calledWhileStopped);
    EXPECT_EQ(block->starts, block->stops);
    chain->removeSink(&sink);
}

TEST_F(CkChainThreadTest, StartAndStopOfSeveralThreadsAreServedOneAfterTheOther) {
    auto* const block = branch(new AddBlock(1), source);
    {
        const Pusher pusher(source);
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([&, i] {
                for (int n = 0; n < 100; ++n) {
                    if ((n + i) % 2 == 0) {
                        chain->start();
                    } else {
                        chain->stop();
                    }
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    }
    chain->stop();
    EXPECT_TRUE(chain->stopped());
    EXPECT_EQ(block->starts, block->stops);
    EXPECT_FALSE(block->calledWhileStopped);
}

TEST_F(CkChainThreadTest, SinksComeAndGoWhileFramesFlow) {
    auto* const block = branch(new AddBlock(1), source);
    ASSERT_TRUE(chain->start());
    {
        const Pusher pusher(source);
        std::vector<std::thread> threads;
        for (int i = 0; i < 3; ++i) {
            threads.emplace_back([&, i] {
                for (int n = 0; n < 200; ++n) {
                    KeepingSink sink(2, 2);
                    EXPECT_TRUE(chain->addSink(i == 0 ? static_cast<CkChainable*>(source) : block, &sink));
                    if (n % 4 == 0) {
                        waitUntil([&] { return sink.count() > 0; });
                    }
                    chain->removeSink(&sink);
                    EXPECT_FALSE(sink.inside);
                }
            });
        }
        threads.emplace_back([&] {
            for (int n = 0; n < 30; ++n) {
                const CkChain::CkControlLock lock(chain);
                chain->stop();
                EXPECT_TRUE(chain->start());
            }
        });
        for (std::thread& thread : threads) {
            thread.join();
        }
    }
    chain->stop();
}

TEST_F(CkChainThreadTest, RemovingASinkWaitsUntilItIsLeft) {
    KeepingSink sink;
    sink.gate.close();
    chain->addSink(source, &sink);
    ASSERT_TRUE(chain->start());
    ASSERT_TRUE(source->push(1));
    ASSERT_TRUE(waitUntil([&] { return sink.gate.waiting() == 1; }));
    std::atomic<bool> removed = false;
    std::thread remover([&] {
        chain->removeSink(&sink);
        EXPECT_FALSE(sink.inside);
        removed = true;
    });
    ASSERT_TRUE(waitUntil([&] { return chain->sinkBlock(&sink) == nullptr; }));
    EXPECT_FALSE(removed) << "the sink still takes a frame";
    sink.gate.open();
    remover.join();
}

namespace {

/// Makes calls from the chain's own thread that are not allowed there, or removes itself.
class RecklessSink : public IkFrameSink {
public:
    explicit RecklessSink(CkChain* pChain) : m_pChain(pChain) {}
    int takeFrame(CkImageData* pData) override {
        delete pData;
        const CkChain::CkControlLock lock(m_pChain);
        m_pChain->stop();
        started = m_pChain->start();
        m_pChain->removeSink(this);
        ++count;
        return 0;
    }
    std::atomic<bool> started = true;
    std::atomic<int> count = 0;

private:
    CkChain* const m_pChain;
};

} // namespace

TEST_F(CkChainThreadTest, ControlFromTheChainsOwnThreadDoesNothing) {
    RecklessSink sink(chain);
    KeepingSink other;
    chain->addSink(source, &sink);
    chain->addSink(source, &other);
    ASSERT_TRUE(chain->start());
    pushSurely(1);
    pushSurely(2);
    ASSERT_TRUE(waitUntil([&] { return other.count() == 2; }));
    EXPECT_EQ(sink.count, 1);
    EXPECT_FALSE(sink.started);
    EXPECT_TRUE(chain->started());
    chain->stop();
    chain->removeSink(&other);
}

TEST_F(CkChainThreadTest, AStopWithinAStartEndsTheStart) {
    auto* const block = branch(new AddBlock(1), source);
    block->setErrorMessage(QStringLiteral("old"));
    QObject::connect(block, &CkChainable::errorMessageChanged, block, [&] { chain->stop(); });
    EXPECT_FALSE(chain->start());
    EXPECT_TRUE(chain->stopped());
    EXPECT_EQ(block->starts, block->stops);
    EXPECT_TRUE(chain->start());
}

TEST_F(CkChainThreadTest, FramesThatAreNotTakenAreFreed) {
    std::atomic<int> frames = 0;
    EXPECT_FALSE(source->pushFrame(std::make_unique<CountedFrame>(frames)));
    EXPECT_EQ(frames, 0) << "the chain is stopped";
    auto* const block = branch(new AddBlock(1), source);
    block->gate.close();
    ASSERT_TRUE(chain->start());
    ASSERT_TRUE(waitUntil([&] { return !source->pushFrame(std::make_unique<CountedFrame>(frames)); }));
    const int waiting = frames;
    EXPECT_FALSE(source->pushFrame(std::make_unique<CountedFrame>(frames)));
    EXPECT_EQ(frames, waiting);
    block->gate.open();
    chain->stop();
    EXPECT_EQ(frames, 0);
}

TEST_F(CkChainThreadTest, TheQueueIsAsLongAfterEveryStop) {
    auto* const block = branch(new AddBlock(1), source);
    int first = 0;
    for (int round = 0; round < 10; ++round) {
        block->gate.close();
        ASSERT_TRUE(chain->start());
        ASSERT_TRUE(source->push(0));
        ASSERT_TRUE(waitUntil([&] { return block->gate.waiting() == 1; }));
        int waiting = 0;
        while (source->push(1)) {
            ++waiting;
        }
        first = round == 0 ? waiting : first;
        EXPECT_EQ(waiting, first) << "after stop " << round;
        std::thread stopper([this] { chain->stop(); });
        block->gate.open();
        stopper.join();
    }
    EXPECT_GT(first, 0);
}

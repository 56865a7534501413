#pragma once

#include "host/recording/CkVideoSource.h"
#include "tests/host/recording/recordingFixture.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainManager.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

using Numbers = std::vector<qint64>;

/// Keeps the numbers of the frames that arrive.
class NumberSink : public IkFrameSink {
public:
    int takeFrame(CkImageData* pData) override {
        const std::unique_ptr<CkImageData> data(pData);
        const std::lock_guard lock(m_mutex);
        m_numbers.push_back(qint64(data->metadata().frameNumber));
        m_widths.push_back(data->picBuf().width);
        m_arrived.notify_all();
        return 0;
    }
    /// Waits for that many frames; returns fewer after a minute.
    Numbers waitFor(size_t count) {
        std::unique_lock lock(m_mutex);
        m_arrived.wait_for(lock, std::chrono::seconds(60), [&] { return m_numbers.size() >= count; });
        return m_numbers;
    }
    std::vector<quint32> widths() {
        const std::lock_guard lock(m_mutex);
        return m_widths;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_arrived;
    Numbers m_numbers;
    std::vector<quint32> m_widths;
};

/// A chain of a player alone, and a sink that keeps the numbers of its frames.
class CkVideoSourceTest : public RecordingFixture {
protected:
    void SetUp() override {
        m_chain = CkChainManager::instance()->createChain();
        m_source = new CkVideoSource;
        ASSERT_TRUE(CkChainManager::instance()->insertAfter(m_chain, m_source, nullptr));
        ASSERT_TRUE(m_chain->addSink(m_source, &m_sink));
    }
    void TearDown() override {
        m_chain->stop();
        m_chain->removeSink(&m_sink);
        CkChainManager::instance()->closeChain(m_chain);
    }
    void openFrames(qint64 frames) {
        record(path("a.tif"), frames);
        QString error;
        ASSERT_TRUE(m_source->openFile(path("a.tif"), &error)) << qPrintable(error);
    }
    static Numbers counted(qint64 first, qint64 end) {
        Numbers numbers;
        for (qint64 i = first; i < end; ++i) {
            numbers.push_back(i);
        }
        return numbers;
    }
    /// Waits until the player has delivered the frame.
    void waitForPosition(qint64 position) const {
        for (int i = 0; i < 60000 && m_source->position() != position; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        ASSERT_EQ(m_source->position(), position);
    }

    CkChain* m_chain = nullptr;
    CkVideoSource* m_source = nullptr;
    NumberSink m_sink;
};

/// Counts its setups.
class CountingBlock : public CkImageProvider {
public:
    void setupStart() override { ++starts; }
    std::atomic<int> starts = 0;
};

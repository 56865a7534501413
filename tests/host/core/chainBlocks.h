#pragma once

#include "tests/support/TestFrames.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkImageSource.h"

#include <QStringList>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

/// Polls a condition that other threads make true, for at most 30 seconds.
bool waitUntil(const std::function<bool()>& condition);

/// Blocks the threads that pass it while it is closed.
class Gate {
public:
    void close();
    void open();
    void pass();
    int waiting() const;

private:
    mutable std::mutex m_mutex;
    std::condition_variable m_opened;
    bool m_bClosed = false;
    int m_iWaiting = 0;
};

/// Source whose frames are pushed by the test.
class TestSource : public CkImageSource {
    Q_OBJECT
    Q_CLASSINFO("CustomName", "Test Source")
    Q_CLASSINFO("UniqueID", "test.TestSource")

public:
    Q_INVOKABLE TestSource();

    bool sourceImageInfo(SkPicBufInfo& info, CkImageMetadata* pMetadata) const override;

    void announce(const SkPicBufInfo& info, const CkImageMetadata& metadata = {});
    void announceNothing();

    /// Pushes a frame in the announced format with this value in every byte.
    bool push(quint8 uiValue);
    bool pushFormat(const SkPicBufInfo& info, const CkImageMetadata& metadata, quint8 uiValue);
    bool pushFrame(std::unique_ptr<CkImageData> frame) { return deliver(frame.release()); }
    /// The frame events of the source in order: E for Entered, x for Dropped, D for Done.
    std::string frameEvents() const;

protected:
    void frameEvent(EkFrameEvent event) override;

private:
    mutable std::mutex m_mutex;
    std::string m_frameEvents;
    SkPicBufInfo m_info;
    CkImageMetadata m_metadata;
    bool m_bKnown = true;
    std::atomic<quint64> m_uiNumber = 0;
};

/// Passes its input through.
class PassBlock : public CkImageProvider {
    Q_OBJECT
    Q_CLASSINFO("CustomName", "Pass")
    Q_CLASSINFO("UniqueID", "test.PassBlock")

public:
    Q_INVOKABLE PassBlock() = default;

    bool acceptsDataFrom(CkChainable* pUpstream) override;
};

/// Adds a number to every byte, into a picture of its pool. Refuses inputs on demand.
class AddBlock : public CkImageProvider {
    Q_OBJECT
    Q_CLASSINFO("CustomName", "Add")
    Q_CLASSINFO("UniqueID", "test.AddBlock")

public:
    Q_INVOKABLE AddBlock() = default;
    explicit AddBlock(int iNumber) : number(iNumber) {}
    ~AddBlock() override;

    int buffersCountInMemoryPool() const override { return 1; }
    bool queryOutputImageInfo(const SkPicBufInfo& in, SkPicBufInfo& out, const CkImageMetadata* pInMeta,
                              CkImageMetadata* pOutMeta) override;
    void setupStart() override;
    void setupStop() override;
    IkChainData* processData(IkChainData* pData) override;
    bool saveSettings(QDomDocument& doc, QDomElement& element) const override;
    bool loadSettings(const QDomElement& element) override;

    std::atomic<int> number = 0;
    std::atomic<bool> refuses = false;     ///< negotiation fails
    std::atomic<bool> dividesRows = false; ///< output height = input height / phasesCount
    std::atomic<bool> throws = false;      ///< processData throws
    std::atomic<int> starts = 0;
    std::atomic<int> stops = 0;
    std::atomic<int> frames = 0;
    std::atomic<bool> inside = false; ///< processData is running
    std::atomic<bool> calledWhileStopped = false;
    std::atomic<bool> inputKnownAtStart = false;
    SkPicBufInfo inputAtStart;
    Gate gate;
    bool* pDeleted = nullptr;

private:
    std::atomic<bool> m_bSetUp = false;
};

/// Keeps the newest frames.
class KeepingSink : public IkFrameSink {
public:
    explicit KeepingSink(size_t uiKeep = 3, int iHeld = 3) : m_uiKeep(uiKeep), m_iHeld(iHeld) {}

    int takeFrame(CkImageData* pData) override;
    int heldFrames() const override { return m_iHeld; }

    std::vector<int> values() const; ///< first byte of every frame received
    size_t count() const { return values().size(); }
    std::vector<const quint8*> pixels() const;
    SkPicBufInfo lastInfo() const;

    Gate gate;
    std::atomic<bool> inside = false;

private:
    const size_t m_uiKeep;
    const int m_iHeld;
    mutable std::mutex m_mutex;
    std::vector<int> m_values;
    std::vector<std::unique_ptr<CkImageData>> m_frames;
    std::vector<const quint8*> m_pixels;
    SkPicBufInfo m_lastInfo;
};

// Counts the heap allocations of the block per frame, and makes them fail.

#include "tests/plugins/zplToF/chain/ToFChainRig.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <new>

namespace {

thread_local bool counting = false;
thread_local size_t allocations = 0;
thread_local size_t largest = 0;
thread_local size_t refusedFrom = SIZE_MAX; ///< allocations of at least this many bytes fail

bool note(size_t bytes) {
    if (counting) {
        ++allocations;
        largest = std::max(largest, bytes);
    }
    return bytes < refusedFrom;
}

} // namespace

// Pixel memory comes from the C allocator, containers use operator new; both end here. Sanitizers have an
// allocator of their own: with them only operator new is counted.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
extern "C" {
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);

void* malloc(size_t bytes) {
    return note(bytes) ? __libc_malloc(bytes) : nullptr;
}
void* calloc(size_t count, size_t bytes) {
    return note(count * bytes) ? __libc_calloc(count, bytes) : nullptr;
}
void* realloc(void* block, size_t bytes) {
    return note(bytes) ? __libc_realloc(block, bytes) : nullptr;
}
}
#else
void* operator new(size_t bytes) {
    void* const block = note(bytes) ? std::malloc(bytes) : nullptr;
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, size_t) noexcept {
    std::free(block);
}
#endif

namespace {

struct Count {
    size_t allocations;
    size_t largest;
};

template <typename Action>
Count countOf(const Action& action) {
    allocations = 0;
    largest = 0;
    counting = true;
    action();
    counting = false;
    return {allocations, largest};
}

/// Allocations of the frame object itself, which every output needs.
Count costOfOneFrameObject() {
    const CkImageMetadata metadata;
    std::unique_ptr<CkImageData> data;
    return countOf([&] {
        data = std::make_unique<CkImageData>();
        data->setMetadata(metadata);
    });
}

/// Processes frames up to the steady state, then counts for each frame.
void expectNoAllocation(ToFChainRig& rig, const std::function<std::unique_ptr<CkImageData>(int)>& makeFrame,
                        int period, bool expectOutput) {
    const Count frameObject = costOfOneFrameObject();
    ASSERT_GT(frameObject.allocations, 0U) << "the counters do not count";
    int outputs = 0;
    for (int i = 0; i < 6 * period; ++i) {
        std::unique_ptr<CkImageData> frame = makeFrame(i % period);
        IkChainData* const input = frame.get();
        IkChainData* answer = nullptr;
        Count count{};
        rig.onChainThread([&] { count = countOf([&] { answer = rig.block->processData(input); }); });
        const bool made = answer != nullptr && answer != input;
        if (answer != nullptr) {
            static_cast<void>(frame.release());
        }
        const std::unique_ptr<IkChainData> owner(answer);
        outputs += answer != nullptr;
        if (i < 2 * period) {
            continue; // not yet at steady state
        }
        EXPECT_EQ(count.allocations, made ? frameObject.allocations : 0U) << "frame " << i;
        EXPECT_LE(count.largest, made ? frameObject.largest : 0U) << "frame " << i;
    }
    EXPECT_EQ(outputs > 0, expectOutput);
}

TEST(AllocationPerFrame, CountersSeePixelMemoryAndContainers) {
    SkPicBufInfo info;
    info.width = 1000;
    info.height = 1000;
    info.channels = 1;
    info.lineSize = 1000;
    info.dataType = EkImageDataType::UInt8;
    SkPicBuf picBuf;
    std::vector<int> container;
    const Count ofContainer = countOf([&] { container.resize(5000); });
    EXPECT_EQ(ofContainer.allocations, 1U);
    EXPECT_EQ(ofContainer.largest, 20000U);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    const Count ofPixels = countOf([&] { CkPicBufAPI::AllocPicBufFromHeap(picBuf, info); });
    EXPECT_EQ(ofPixels.allocations, 1U);
    EXPECT_GE(ofPixels.largest, 1000000U);
    CkPicBufAPI::FreePicBuf(picBuf);
#endif
}

TEST(AllocationPerFrame, NoneForStackedAandB) {
    for (int transform = 0; transform < 7; ++transform) {
        SCOPED_TRACE(transform);
        ToFChainRig rig;
        rig.useAandB(640, 32, 4);
        rig.start(transform);
        const bool output = transform != CkToFProcessCnbl::SetHybrid;
        if (output) { // an error has a text to make
            expectNoAllocation(
                rig, [&](int) { return rig.frame(100); }, 1, true);
        }
    }
}

TEST(AllocationPerFrame, NoneForStackedAminusB) {
    for (int transform : {CkToFProcessCnbl::SetABPhase, CkToFProcessCnbl::Amplitude, CkToFProcessCnbl::Depth,
                          CkToFProcessCnbl::ConcatPhases}) {
        SCOPED_TRACE(transform);
        ToFChainRig rig;
        rig.useAminusB(640, 32, 4);
        rig.start(transform);
        expectNoAllocation(
            rig, [&](int) { return rig.frame(100); }, 1, true);
    }
}

TEST(AllocationPerFrame, NoneForSeparatePhases) {
    const qint32 angles[] = {0, 90, 180, 270};
    for (int transform :
         {CkToFProcessCnbl::SetABPhase, CkToFProcessCnbl::Intensity, CkToFProcessCnbl::Amplitude,
          CkToFProcessCnbl::Depth, CkToFProcessCnbl::ConcatPhases, CkToFProcessCnbl::AandBtoAminB}) {
        SCOPED_TRACE(transform);
        ToFChainRig rig;
        rig.useAandB(64, 16, 1);
        rig.useSequence(4);
        rig.start(transform);
        expectNoAllocation(
            rig, [&](int i) { return rig.phase(i, angles[i], 200, 100); }, 4, true);
    }
}

TEST(AllocationPerFrame, NoneForHybridSections) {
    for (int transform : {CkToFProcessCnbl::Intensity, CkToFProcessCnbl::Amplitude, CkToFProcessCnbl::Depth,
                          CkToFProcessCnbl::ConcatPhases, CkToFProcessCnbl::SetHybrid}) {
        SCOPED_TRACE(transform);
        ToFChainRig rig;
        rig.useHybrid(64, 24, 3);
        rig.source->metadata.sectionMode = 3;
        rig.start(transform);
        const auto samples = [](quint32, quint32 y, quint32 c) { return int(100 * (c + 1) + y); };
        expectNoAllocation(
            rig, [&](int i) { return rig.section(quint32(i), samples); }, 2, true);
    }
}

TEST(AllocationPerFrame, NoneForSeparateSectionsBehindTheirReference) {
    for (int transform : {CkToFProcessCnbl::Intensity, CkToFProcessCnbl::Amplitude, CkToFProcessCnbl::Depth,
                          CkToFProcessCnbl::ConcatPhases, CkToFProcessCnbl::SetHybrid}) {
        SCOPED_TRACE(transform);
        ToFChainRig rig;
        rig.useHybrid(64, 24, 2);
        rig.source->metadata.sectionMode = 3;
        rig.source->metadata.sectionCount = 3;
        rig.start(transform);
        const auto samples = [](quint32, quint32 y, quint32 c) { return int(100 * (c + 1) + y); };
        expectNoAllocation(
            rig, [&](int i) { return rig.section(quint32(i), samples); }, 3, true);
    }
}

TEST(AllocationPerFrame, NoneForPlainPicturesThatAreRelabelled) {
    for (int transform : {CkToFProcessCnbl::SetABPhase, CkToFProcessCnbl::SetHybrid}) {
        SCOPED_TRACE(transform);
        ToFChainRig rig;
        rig.source->setFormat(832, 1800, 1, EkImageDataType::UInt16, 16);
        rig.start(transform);
        expectNoAllocation(
            rig, [&](int) { return rig.frame(100); }, 1, true);
    }
}

TEST(AllocationPerFrame, NoneForFramesThatAreDropped) {
    ToFChainRig rig;
    rig.useAandB(64, 16, 4);
    rig.start(CkToFProcessCnbl::Depth);
    rig.useAandB(128, 16, 4); // does not fit the pool
    const std::unique_ptr<CkImageData> first = rig.frame(5);
    const std::unique_ptr<CkImageData> second = rig.frame(5);
    IkChainData* answer = nullptr;
    Count count{};
    // Both at once: the chain renegotiates when it reaches the first one.
    rig.onChainThread([&] {
        EXPECT_EQ(rig.block->processData(first.get()), nullptr);
        count = countOf([&] { answer = rig.block->processData(second.get()); });
    });
    EXPECT_EQ(answer, nullptr);
    EXPECT_LT(count.largest, 1024U) << "no pixel memory";
}

/// Starts the chain while allocations of a megabyte fail.
void startInSmallMemory(ToFChainRig& rig, int transform) {
    refusedFrom = 1U << 20U;
    rig.start(transform);
    refusedFrom = SIZE_MAX;
}

TEST(MemoryThatCannotBeHad, ForASetIsSaidWithAWordOfItsOwn) {
    ToFChainRig rig;
    rig.useAandB(64, 64, 1); // 16 KiB, of which 256 make a set
    rig.useSequence(256);
    startInSmallMemory(rig, CkToFProcessCnbl::Intensity);
    EXPECT_EQ(rig.block->errorMessage(), ToFTexts::noMemory);
    for (qint32 index : {0, 1, 255}) {
        EXPECT_TRUE(rig.process(rig.phase(index, 0, 200, 100)).empty());
        EXPECT_EQ(rig.block->errorMessage(), ToFTexts::noMemory);
    }
    rig.stop();
    rig.start(CkToFProcessCnbl::Intensity);
    EXPECT_EQ(rig.block->errorMessage(), QString());
    EXPECT_TRUE(rig.process(rig.phase(0, 0, 200, 100)).empty());
    EXPECT_EQ(rig.block->errorMessage(), QString());
}

TEST(MemoryThatCannotBeHad, ForAReferenceSectionIsSaid) {
    ToFChainRig rig;
    rig.useHybrid(512, 512, 1); // 1.5 MiB, its amplitude half of one
    rig.source->metadata.sectionMode = 3;
    startInSmallMemory(rig, CkToFProcessCnbl::Amplitude);
    EXPECT_EQ(rig.block->errorMessage(), ToFTexts::noMemory);
    for (quint32 index : {0U, 1U}) {
        EXPECT_TRUE(rig.process(rig.section(index, [](quint32, quint32, quint32) { return 5; })).empty());
        EXPECT_EQ(rig.block->errorMessage(), ToFTexts::noMemory);
    }
}

TEST(MemoryThatCannotBeHad, ForMergedSectionsIsSaid) {
    ToFChainRig rig;
    rig.useHybrid(512, 768, 3); // 512 x 256 come out; merged in 1.5 MiB
    startInSmallMemory(rig, CkToFProcessCnbl::Amplitude);
    EXPECT_EQ(rig.block->errorMessage(), ToFTexts::noMemory);
    EXPECT_TRUE(rig.process(rig.frame(5)).empty());
    EXPECT_EQ(rig.block->errorMessage(), ToFTexts::noMemory);
}

} // namespace

#include "tests/plugins/zplToF/chain/ToFChainRig.h"

#include "tests/support/TestPicture.h"
#include "zuCore/CkChainManager.h"

#include <gtest/gtest.h>

ToFChainRig::ToFChainRig(std::unique_ptr<PushSource> pushSource) {
    chain = CkChainManager::instance()->createChain();
    source = pushSource.release();
    block = new CkToFProcessCnbl;
    EXPECT_TRUE(CkChainManager::instance()->insertAfter(chain, source, nullptr));
    EXPECT_TRUE(CkChainManager::instance()->insertAfter(chain, block, source));
    EXPECT_TRUE(chain->addSink(block, &m_view));
    m_pBellSource = new CkBellSource;
    EXPECT_TRUE(CkChainManager::instance()->insertAfter(chain, m_pBellSource, nullptr));
    EXPECT_TRUE(chain->addSink(m_pBellSource, &m_bell));
}

ToFChainRig::~ToFChainRig() {
    chain->removeSink(&m_view);
    chain->removeSink(&m_bell);
    CkChainManager::instance()->closeChain(chain);
}

int ToFChainRig::View::takeFrame(CkImageData* data) {
    delete data;
    return 0;
}

void ToFChainRig::useAandB(quint32 width, quint32 height, qint32 phases) {
    source->setFormat(width, height, 2, EkImageDataType::UInt16, 12);
    source->metadata = CkImageMetadata();
    source->metadata.tofFormatCode = ToFFormatCode::kRawX2Bits12;
    source->metadata.phasesCount = phases;
    source->metadata.channelNames = QStringList{"A", "B"};
}

void ToFChainRig::useAminusB(quint32 width, quint32 height, qint32 phases) {
    source->setFormat(width, height, 1, EkImageDataType::Int16, 12);
    source->metadata = CkImageMetadata();
    source->metadata.tofFormatCode = ToFFormatCode::kAminusBBits12;
    source->metadata.phasesCount = phases;
}

void ToFChainRig::useHybrid(quint32 width, quint32 height, qint32 phases) {
    source->setFormat(width, height, 3, EkImageDataType::UInt16, 12);
    source->info.colorFilterArray = EkColorFilterArray::RawX3Hybrid;
    source->metadata = CkImageMetadata();
    source->metadata.colorFilterArray = 13;
    source->metadata.phasesCount = phases;
    source->metadata.channelNames = QStringList{"X1", "X2", "X3"};
}

void ToFChainRig::useSequence(qint32 length) {
    source->metadata.phaseSequenceLength = length;
}

void ToFChainRig::start(int transform) {
    block->setTransform(CkToFProcessCnbl::EkTransformType(transform), false);
    ASSERT_TRUE(chain->start());
}

void ToFChainRig::stop() {
    chain->stop();
}

std::unique_ptr<CkImageData> ToFChainRig::frame(const Samples& samples) const {
    auto data = source->makeFrame(0);
    SkPicBuf& picture = data->picBuf();
    for (quint32 y = 0; y < picture.height; ++y) {
        for (quint32 x = 0; x < picture.width; ++x) {
            for (quint32 c = 0; c < picture.channels; ++c) {
                const int value = samples(x, y, c);
                if (sampleBytes(picture.dataType) == 1) {
                    setSample<quint8>(picture, x, y, c, quint8(value));
                } else {
                    setSample<quint16>(picture, x, y, c, quint16(value));
                }
            }
        }
    }
    return data;
}

std::unique_ptr<CkImageData> ToFChainRig::frame(int value) const {
    return frame([value](quint32, quint32, quint32) { return value; });
}

std::unique_ptr<CkImageData> ToFChainRig::phase(qint32 index, qint32 angle, int a, int b) const {
    auto data = frame([=](quint32, quint32, quint32 c) { return c == 0 ? a : b; });
    CkImageMetadata metadata = source->metadata;
    metadata.phaseSequenceIndex = index;
    metadata.phaseAngle = angle;
    data->setMetadata(metadata);
    return data;
}

std::unique_ptr<CkImageData> ToFChainRig::section(quint32 index, const Samples& samples) const {
    auto data = frame(samples);
    CkImageMetadata metadata = source->metadata;
    metadata.sectionIndex = index;
    data->setMetadata(metadata);
    return data;
}

ToFResult ToFChainRig::process(std::unique_ptr<CkImageData> frame) {
    ToFResult result;
    IkChainData* answer = nullptr;
    onChainThread([&] { answer = block->processData(frame.get()); });
    // A renegotiation that the frame requested runs before the next frame of any source.
    onChainThread([] {});
    result.passedThrough = answer == frame.get();
    if (answer != nullptr) {
        // The block has deleted its input or returns it.
        static_cast<void>(frame.release());
        result.output.reset(dynamic_cast<CkImageData*>(answer));
    }
    return result;
}

void ToFChainRig::onChainThread(const std::function<void()>& action) {
    ASSERT_TRUE(chain->started());
    m_bell.action = &action;
    ASSERT_TRUE(m_pBellSource->push(0));
    m_bell.done.acquire();
}

int ToFChainRig::Bell::takeFrame(CkImageData* data) {
    delete data;
    (*action)();
    done.release();
    return 0;
}

int valueAt(const SkPicBuf& picture, quint32 x, quint32 y, quint32 c) {
    return visitSamples(picture.dataType,
                        [&](auto zero) { return int(sampleAt<decltype(zero)>(picture, x, y, c)); });
}

std::vector<int> rowValues(const SkPicBuf& picture) {
    std::vector<int> values;
    for (quint32 y = 0; y < picture.height; ++y) {
        const int first = valueAt(picture, 0, y);
        bool same = true;
        for (quint32 x = 0; x < picture.width; ++x) {
            for (quint32 c = 0; c < picture.channels; ++c) {
                same = same && valueAt(picture, x, y, c) == first;
            }
        }
        values.push_back(same ? first : -1);
    }
    return values;
}

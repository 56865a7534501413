#include "host/viewer/panels/quality/CkSaturationMonitor.h"

#include "host/viewer/picture/Saturation.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkPicBufAPI.h"
#include "zuCore/SampleVisitor.h"
#include "zuCore/SkToFSetPosition.h"

#include <algorithm>
#include <type_traits>

namespace {

// A computed picture reaches the screen some frames after the source's picture.
constexpr size_t kKeptSets = 8;

bool isHybrid(const SkPicBufInfo& info) {
    return info.colorFilterArray == EkColorFilterArray::RawX3Hybrid;
}

/// Position of a picture in the set of pictures that one measurement consists of; 0 for a single picture.
qint64 positionInSet(const SkPicBufInfo& info, const CkImageMetadata& metadata) {
    const bool hybrid = isHybrid(info);
    return hybrid || SkToFSetPosition::isSeparatePhase(metadata)
               ? std::max<qint64>(0, SkToFSetPosition::of(metadata, hybrid).index)
               : 0;
}

CkSaturationMonitor::EkAnswer answerOf(const SkPicBuf& picture, const CkImageMetadata& metadata) {
    if (Saturation::evidence(picture, metadata, nullptr) == Saturation::EkEvidence::Difference) {
        return CkSaturationMonitor::EkAnswer::Difference;
    }
    const bool readable =
        visitSamples(picture.dataType, [](auto type) { return std::is_unsigned_v<decltype(type)>; });
    return readable ? CkSaturationMonitor::EkAnswer::Known : CkSaturationMonitor::EkAnswer::Undetermined;
}

template <class T>
void markPixels(const SkPicBuf& picture, std::vector<quint8>& pixels) {
    const T full = T(Saturation::fullScale(picture));
    quint8* pixel = pixels.data();
    for (quint32 y = 0; y < picture.height; ++y) {
        const T* sample = reinterpret_cast<const T*>(picture.row(y));
        for (quint32 x = 0; x < picture.width; ++x, ++pixel) {
            quint8 saturated = 0;
            for (quint32 channel = 0; channel < picture.channels; ++channel, ++sample) {
                saturated |= quint8(*sample >= full);
            }
            *pixel |= saturated;
        }
    }
}

} // namespace

CkSaturationMonitor::~CkSaturationMonitor() {
    watch(nullptr);
}

void CkSaturationMonitor::watch(CkChainable* pSource) {
    CkChain* const chain = pSource != nullptr ? pSource->chain() : nullptr;
    // When a block is inserted after the source, the source's sinks move to that block.
    if (chain != nullptr && pSource == m_source && chain->sinkBlock(this) == pSource) {
        return;
    }
    if (m_chain) {
        m_chain->removeSink(this);
    }
    if (pSource != m_source) {
        const std::lock_guard lock(m_mutex);
        m_sets.clear();
    }
    m_chain = chain;
    m_source = pSource;
    if (chain != nullptr) {
        chain->addSink(pSource, this);
    }
}

int CkSaturationMonitor::takeFrame(CkImageData* pData) {
    const std::unique_ptr<CkImageData> frame(pData);
    if (frame && frame->picBuf().data != nullptr && CkPicBufAPI::isValid(frame->picBuf())) {
        add(*frame);
    }
    return 0;
}

void CkSaturationMonitor::add(const CkImageData& frame) {
    const SkPicBuf& picture = frame.picBuf();
    SkSet set;
    set.frameNumber = picture.additionalData.frameNumber;
    set.size = QSize(int(picture.width), int(picture.height));
    set.onlyTopCounts = isHybrid(picture);
    set.answer = answerOf(picture, frame.metadata());
    const qint64 position = positionInSet(picture, frame.metadata());
    if (position > 0) {
        const std::lock_guard lock(m_mutex);
        if (m_sets.empty() || m_sets.back().size != set.size || m_sets.back().answer != set.answer) {
            return; // the start of the set was missed
        }
        set.pixels = m_sets.back().pixels;
    }
    if (set.answer == EkAnswer::Known && !(position > 0 && set.onlyTopCounts)) {
        set.pixels.resize(size_t(picture.width) * picture.height);
        visitSamples(picture.dataType, [&](auto type) {
            using T = decltype(type);
            if constexpr (std::is_unsigned_v<T>) {
                markPixels<T>(picture, set.pixels);
            }
            return true;
        });
    }
    const std::lock_guard lock(m_mutex);
    m_sets.push_back(std::move(set));
    if (m_sets.size() > kKeptSets) {
        m_sets.pop_front();
    }
}

CkSaturationMonitor::EkAnswer CkSaturationMonitor::saturated(quint64 uiFrameNumber, const QSize& size,
                                                             const QRect& region,
                                                             std::vector<bool>& saturated) const {
    const std::lock_guard lock(m_mutex);
    const auto set = std::find_if(m_sets.rbegin(), m_sets.rend(), [uiFrameNumber](const SkSet& entry) {
        return entry.frameNumber == uiFrameNumber;
    });
    if (set == m_sets.rend()) {
        return EkAnswer::Missed;
    }
    if (set->answer != EkAnswer::Known) {
        return set->answer;
    }
    if (size.isEmpty() || set->size.width() != size.width() || set->size.height() % size.height() != 0 ||
        !QRect(QPoint(0, 0), size).contains(region)) {
        return EkAnswer::Unrelated;
    }
    const int parts = set->onlyTopCounts ? 1 : set->size.height() / size.height();
    saturated.assign(size_t(region.width()) * size_t(region.height()), false);
    for (int part = 0; part < parts; ++part) {
        size_t index = 0;
        for (int y = region.top(); y <= region.bottom(); ++y) {
            const quint8* const row =
                set->pixels.data() + size_t(part * size.height() + y) * size_t(size.width());
            for (int x = region.left(); x <= region.right(); ++x, ++index) {
                saturated[index] = saturated[index] || row[x] != 0;
            }
        }
    }
    return EkAnswer::Known;
}

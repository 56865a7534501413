// Writes the points of a cloud for one instruction set; included once per target.

#if defined(TOF_CLOUD_POINT_WRITER_TOGGLE) == defined(HWY_TARGET_TOGGLE)
#ifdef TOF_CLOUD_POINT_WRITER_TOGGLE
#undef TOF_CLOUD_POINT_WRITER_TOGGLE
#else
#define TOF_CLOUD_POINT_WRITER_TOGGLE
#endif

#include "plugins/zplToF/cloud/ToFCloudLoops.h"

#include <hwy/cache_control.h>
#include <hwy/highway.h>

#include <algorithm>
#include <cstdint>

HWY_BEFORE_NAMESPACE();
namespace tofSimd {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

using Quad = hn::CappedTag<float, 4>;

/// Four points, one in each vector; the fourth lanes are unspecified.
struct SkToFFourPoints {
    HWY_INLINE SkToFFourPoints(const float* pX, const float* pY, const float* pZ) {
        const Quad dq;
        const auto x = hn::Load(dq, pX);
        const auto y = hn::Load(dq, pY);
        const auto z = hn::Load(dq, pZ);
        const auto xyLow = hn::InterleaveLower(dq, x, y);
        const auto xyHigh = hn::InterleaveUpper(dq, x, y);
        const auto zLow = hn::InterleaveLower(dq, z, z);
        const auto zHigh = hn::InterleaveUpper(dq, z, z);
        first = hn::ConcatLowerLower(dq, zLow, xyLow);
        second = hn::ConcatUpperUpper(dq, zLow, xyLow);
        third = hn::ConcatLowerLower(dq, zHigh, xyHigh);
        fourth = hn::ConcatUpperUpper(dq, zHigh, xyHigh);
    }
    hn::Vec<Quad> first, second, third, fourth;
};

/// The four corners of a quad with the same colour, 24 consecutive floats. Neutral offsets are -0.0: adding
/// 0.0 would turn a coordinate of -0.0 into 0.0.
#if HWY_MAX_BYTES >= 32

class CkToFCorners {
public:
    HWY_INLINE explicit CkToFCorners(float fEdge) {
        // x, y, z at 0 to 2, red, green, blue at 4 to 6.
        HWY_ALIGN static const qint32 order[24] = {0, 1, 2, 4, 5, 6, 0, 1, 2, 4, 5, 6,
                                                   0, 1, 2, 4, 5, 6, 0, 1, 2, 4, 5, 6};
        HWY_ALIGN float offsets[24];
        std::fill_n(offsets, 24, -0.0F);
        offsets[1] = offsets[7] = -fEdge;
        offsets[6] = offsets[12] = fEdge;
        for (int i = 0; i < 3; i++) {
            m_order[i] = hn::SetTableIndices(Eight(), order + 8 * i);
            m_offsets[i] = hn::Load(Eight(), offsets + 8 * i);
        }
    }

    /// Quads exceed the caches, so aligned ones are written with streaming stores.
    static bool canStream(const float* pOut) {
        return reinterpret_cast<uintptr_t>(pOut) % (4 * sizeof(float)) == 0;
    }

    template <bool Streamed>
    HWY_INLINE void write(hn::Vec<Quad> place, hn::Vec<Quad> rgb, float* out) const {
        const Eight d8;
        const auto both = hn::Combine(d8, rgb, place);
        for (int i = 0; i < 3; i++) {
            const auto part = hn::Add(hn::TableLookupLanes(both, m_order[i]), m_offsets[i]);
            if constexpr (Streamed) {
                hn::Stream(hn::LowerHalf(part), Quad(), out + 8 * i);
                hn::Stream(hn::UpperHalf(Quad(), part), Quad(), out + 8 * i + 4);
            } else {
                hn::StoreU(part, d8, out + 8 * i);
            }
        }
    }

private:
    using Eight = hn::CappedTag<float, 8>;
    using Order = decltype(hn::SetTableIndices(Eight(), static_cast<const qint32*>(nullptr)));
    Order m_order[3];
    hn::Vec<Eight> m_offsets[3];
};

#else

class CkToFCorners {
public:
    HWY_INLINE explicit CkToFCorners(float fEdge) {
        const Quad dq;
        HWY_ALIGN const float corners[3][4] = {
            {-0.0F, -fEdge, -0.0F, 0.0F}, {fEdge, -fEdge, -0.0F, 0.0F}, {fEdge, -0.0F, -0.0F, 0.0F}};
        for (int i = 0; i < 3; i++) {
            m_offsets[i] = hn::Load(dq, corners[i]);
        }
    }

    static bool canStream(const float*) { return false; }

    template <bool Streamed>
    HWY_INLINE void write(hn::Vec<Quad> place, hn::Vec<Quad> rgb, float* out) const {
        const Quad dq;
        for (int i = 0; i < 3; i++) {
            store(out + 6 * i, hn::Add(place, m_offsets[i]), rgb);
        }
        store(out + 18, place, rgb);
    }

private:
    HWY_INLINE static void store(float* out, hn::Vec<Quad> place, hn::Vec<Quad> rgb) {
        const Quad dq;
        hn::StoreU(place, dq, out);
        hn::StoreU(rgb, dq, out + 3);
    }

    hn::Vec<Quad> m_offsets[3];
};

#endif

/// Writes vertices and export points without a branch: a dropped pixel is written too and overwritten by the
/// next one. Every store is a full vector, whose surplus lanes are overwritten likewise.
template <bool Quads, bool Streamed>
class CkToFPointWriter {
public:
    HWY_INLINE CkToFPointWriter(float* pVertices, float* pExport, float fEdge, const SkToFColours& colours)
        : m_vertices(pVertices), m_export(pExport), m_colours(colours), m_corners(fEdge) {}

    HWY_INLINE void write(hn::Vec<Quad> scene, hn::Vec<Quad> exported, qint32 iColour, quint32 uiKept) {
        const Quad dq;
        const auto rgb = hn::Load(dq, m_colours[size_t(iColour)].data());
        if constexpr (Quads) {
            m_corners.template write<Streamed>(scene, rgb, m_vertices);
        } else {
            hn::StoreU(scene, dq, m_vertices);
            hn::StoreU(rgb, dq, m_vertices + 3);
        }
        hn::StoreU(exported, dq, m_export);
        m_vertices += uiKept * (Quads ? 24U : 6U);
        m_export += uiKept * 3U;
    }

    HWY_INLINE float* exportEnd() const { return m_export; }

private:
    float* m_vertices;
    float* m_export;
    const SkToFColours& m_colours;
    const CkToFCorners m_corners;
};

#endif

} // namespace HWY_NAMESPACE
} // namespace tofSimd
HWY_AFTER_NAMESPACE();

#endif

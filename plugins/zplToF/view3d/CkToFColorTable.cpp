#include "plugins/zplToF/view3d/CkToFColorTable.h"

#include "zuCore/CkLut.h"

namespace {

constexpr quint32 kEntries = 256;

SkPicBufInfo rowOf(quint32 channels) {
    return SkPicBufInfo::of(kEntries, 1, channels, EkImageDataType::UInt8, 8);
}

} // namespace

CkToFColorTable::CkToFColorTable() {
    if (!m_gradientSourcePic.allocate(rowOf(1)) || !m_gradientLutPic.allocate(rowOf(4))) {
        m_gradientLutPic.reset();
        return;
    }
    for (quint32 value = 0; value < kEntries; ++value) {
        m_gradientSourcePic.picBuf().data[value] = quint8(value);
    }
}

bool CkToFColorTable::update(int iPseudoColorIndex) {
    if (m_gradientLutPic.isEmpty()) {
        return false;
    }
    const SkPicBuf& source = m_gradientSourcePic.picBuf();
    CkLut lut(source.bitsPerChannel, source.channels, false, source.dataType);
    lut.setPseudoColorIndex(iPseudoColorIndex);
    return lut.allocRgbTable(size_t(8) * source.width * sampleBytes(source.dataType)) &&
           lut.applyToPic(source, m_gradientLutPic.picBuf());
}

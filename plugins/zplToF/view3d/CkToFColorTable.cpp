#include "plugins/zplToF/view3d/CkToFColorTable.h"

#include "zuCore/CkLut.h"
#include "zuCore/CkPicBufAPI.h"

namespace {

constexpr quint32 Entries = 256;

bool allocRow(SkPicBuf& picture, quint32 channels) {
    return CkPicBufAPI::AllocPicBufFromHeap(picture, Entries, 1, channels, EkImageDataType::UInt8, 0, 0, 8,
                                            EkDataStorageFormat::Interleaved, EkColorFilterArray::None, false,
                                            false, 0);
}

} // namespace

CkToFColorTable::CkToFColorTable() {
    if (!allocRow(m_gradientSourcePic, 1) || !allocRow(m_gradientLutPic, 4)) {
        CkPicBufAPI::FreePicBuf(m_gradientLutPic);
        CkPicBufAPI::FreePicBuf(m_gradientSourcePic);
        return;
    }
    for (quint32 value = 0; value < Entries; ++value) {
        m_gradientSourcePic.data[value] = quint8(value);
    }
}

CkToFColorTable::~CkToFColorTable() {
    CkPicBufAPI::FreePicBuf(m_gradientLutPic);
    CkPicBufAPI::FreePicBuf(m_gradientSourcePic);
}

bool CkToFColorTable::update(int iPseudoColorIndex) {
    if (m_gradientLutPic.data == nullptr) {
        return false;
    }
    const SkPicBuf& source = m_gradientSourcePic;
    CkLut lut(source.bitsPerChannel, source.channels, false, source.dataType);
    lut.setPseudoColorIndex(iPseudoColorIndex);
    return lut.allocRgbTable(size_t(8) * source.width * sampleBytes(source.dataType)) &&
           lut.applyToPic(source, m_gradientLutPic);
}

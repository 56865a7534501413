#pragma once

#include "zuCore/CkPicture.h"

/// The 256 colours of a pseudo-colour map as one row of pixels. User-interface thread.
class CkToFColorTable {
public:
    CkToFColorTable();

    /// Fills the table with a pseudo-colour map of CkLut. False when memory ran out.
    bool update(int iPseudoColorIndex);

    /// 256 entries of 4 bytes: blue, green, red, 255; null when memory ran out.
    const quint8* colors() const { return m_gradientLutPic.picBuf().data; }

private:
    CkPicture m_gradientLutPic;    ///< 256 x 1, 4 channels
    CkPicture m_gradientSourcePic; ///< 256 x 1, the values 0 to 255
};

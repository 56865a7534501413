#pragma once

#include "zuCore/SkPicBuf.h"

#include <tiffio.h>

/// The strips or tiles of a page: which samples lie together in the file.
struct SkTiffParts {
    bool tiled = false;
    quint32 planes = 1;   ///< channels stored one behind the other
    quint32 channels = 1; ///< samples per pixel in a part
    quint32 width = 0;    ///< pixels of a row in a part
    quint32 height = 0;   ///< rows of a part; the last strip may have fewer
    quint64 count = 0;    ///< all planes together; 0 when width or height is missing

    static SkTiffParts of(TIFF* tif, const SkPicBufInfo& info);

    /// Of one part, unpacked. The largest number when the product does not fit.
    quint64 partBytes(const SkPicBufInfo& info) const;
    /// Of all parts, unpacked; tiles reach beyond the picture.
    quint64 unpackedBytes(const SkPicBufInfo& info) const;
    /// Bytes that the parts take in the file, each as far as the file goes. count has to be checked before.
    quint64 storedBytes(TIFF* tif, quint64 uiFileBytes) const;
    /// The most bytes of a part that are read in one go, in the form in which they are stored.
    quint64 largestStored(TIFF* tif, quint64 uiFileBytes) const;
};

#pragma once

#include "zuCore/SkPicBuf.h"

#include <tiffio.h>

/// How the samples of a page are cut into strips or tiles.
struct SkTiffParts {
    bool tiled = false;
    quint32 planes = 1;   ///< channels stored one after the other
    quint32 channels = 1; ///< samples per pixel in a part
    quint32 width = 0;    ///< pixels of a row in a part
    quint32 height = 0;   ///< rows of a part; the last strip may have fewer
    quint64 count = 0;    ///< all planes together; 0 when width or height is missing

    static SkTiffParts of(TIFF* tif, const SkPicBufInfo& info);

    /// Uncompressed bytes of one part; saturates.
    quint64 partBytes(const SkPicBufInfo& info) const;
    /// Uncompressed bytes of all parts; saturates. Includes the parts of tiles beyond the picture.
    quint64 unpackedBytes(const SkPicBufInfo& info) const;
    /// Bytes of all parts in the file, each clipped to the file. count must have been checked.
    quint64 storedBytes(TIFF* tif, quint64 uiFileBytes) const;
    /// Bytes of the largest part in the file, clipped to it.
    quint64 largestStored(TIFF* tif, quint64 uiFileBytes) const;
};

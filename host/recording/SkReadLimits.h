#pragma once

#include <QtGlobal>

/// What a file may ask of its reader. A picture that is stored plain is bounded by the file itself as well:
/// twice the file's bytes and smallPictureBytes, so that what is left of a file that was cut off can be
/// shown.
struct SkReadLimits {
    /// Pages behind this many are left out, and named as the file's damage.
    qint64 pages = 1'000'000;
    /// Bytes of a picture that is stored compressed, unpacked.
    quint64 unpackedBytes = 256ULL << 20U;
    /// How many times its compressed bytes a picture may have. Deflate packs 1032 bytes into one at best, LZW
    /// some 1400.
    quint32 expansion = 2048;

    /// Pictures up to this size need not be in the file.
    static constexpr quint64 smallPictureBytes = 16ULL << 20U;
    /// Strips or tiles of a page.
    static constexpr quint32 maximumParts = 1'000'000;
    /// What a directory may hold beside the samples: texts, strip tables, tags of others.
    static constexpr quint64 directoryBytes = 32ULL << 20U;
    /// The text of a recording's page; the first one holds the chain, too.
    static constexpr qint64 textBytes(qint64 iPage) { return iPage == 0 ? 4LL << 20U : 1LL << 20U; }
};

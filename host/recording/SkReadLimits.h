#pragma once

#include <QtGlobal>

/// Limits against hostile files. An uncompressed picture may also take at most twice the file's bytes plus
/// kSmallPictureBytes: enough to show the remains of a truncated file.
struct SkReadLimits {
    /// Further pages are ignored and reported as damage.
    qint64 pages = 1'000'000;
    /// Uncompressed bytes of a compressed picture.
    quint64 unpackedBytes = 256ULL << 20U;
    /// Highest plausible compression ratio. Deflate reaches 1032 at best, LZW about 1400.
    quint32 expansion = 2048;

    /// Pictures up to this size are read even when the file holds less of them.
    static constexpr quint64 kSmallPictureBytes = 16ULL << 20U;
    /// Strips or tiles of a page.
    static constexpr quint32 kMaximumParts = 1'000'000;
    /// Everything in a directory but the samples: texts, strip tables, unknown tags.
    static constexpr quint64 kDirectoryBytes = 32ULL << 20U;
    /// The text of a recording's page; that of the first page includes the chain.
    static constexpr qint64 textBytes(qint64 iPage) { return iPage == 0 ? 4LL << 20U : 1LL << 20U; }
};

#pragma once

#include "host/recording/SkReadLimits.h"

class CkToFArguments;

/// Limits for untrusted files: the options --memory, --max-pages and --max-expansion.
struct SkToFLimits {
    /// For the frames in flight. The program itself and the index come on top.
    quint64 memoryBytes = 768ULL << 20U;
    SkReadLimits reading;

    static void addOptions(CkToFArguments& options);
    /// False, with an error message, when an option is wrong.
    bool read(const CkToFArguments& options);
};

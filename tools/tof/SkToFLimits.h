#pragma once

#include "host/recording/SkReadLimits.h"

class CkToFArguments;

/// What a file may ask of a command: the options --memory, --max-pages and --max-expansion.
struct SkToFLimits {
    /// For the frames that are worked on at a time. The program itself and the index come on top.
    quint64 memoryBytes = 768ULL << 20U;
    SkReadLimits reading;

    static void addOptions(CkToFArguments& options);
    /// False, after saying why, when an option is wrong.
    bool read(const CkToFArguments& options);
};

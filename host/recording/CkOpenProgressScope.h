#pragma once

#include "host/recording/IkFrameFile.h"

/// During its lifetime, recordings that are opened from a chain file on this thread report to its function,
/// which may cancel. One at a time per thread.
class CkOpenProgressScope {
public:
    explicit CkOpenProgressScope(const IkFrameFile::ProgressFunction& progress);
    ~CkOpenProgressScope();
    CkOpenProgressScope(const CkOpenProgressScope&) = delete;
    CkOpenProgressScope& operator=(const CkOpenProgressScope&) = delete;

    /// The function of this thread; empty without one.
    static const IkFrameFile::ProgressFunction& current();
};

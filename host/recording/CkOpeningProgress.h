#pragma once

#include "host/recording/IkFrameFile.h"

/// During its lifetime, recordings that are opened from a chain file on this thread report to its function,
/// which may cancel the opening. One at a time per thread.
class CkOpeningProgress {
public:
    explicit CkOpeningProgress(const IkFrameFile::ProgressFunction& progress);
    ~CkOpeningProgress();
    CkOpeningProgress(const CkOpeningProgress&) = delete;
    CkOpeningProgress& operator=(const CkOpeningProgress&) = delete;

    /// The function of this thread; empty without one.
    static const IkFrameFile::ProgressFunction& current();
};

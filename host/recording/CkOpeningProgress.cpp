#include "host/recording/CkOpeningProgress.h"

namespace {

// loadSettings of a block has no parameter for it: the chain that loads its blocks knows no recordings.
thread_local IkFrameFile::ProgressFunction s_progress;

} // namespace

CkOpeningProgress::CkOpeningProgress(const IkFrameFile::ProgressFunction& progress) {
    s_progress = progress;
}

CkOpeningProgress::~CkOpeningProgress() {
    s_progress = nullptr;
}

const IkFrameFile::ProgressFunction& CkOpeningProgress::current() {
    return s_progress;
}

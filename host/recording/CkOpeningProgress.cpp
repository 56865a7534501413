#include "host/recording/CkOpeningProgress.h"

namespace {

// Thread-local, because loadSettings has no parameter for it: the chain that loads its blocks does not know
// about recordings.
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

#include "host/recording/CkOpenProgressScope.h"

namespace {

// Thread-local, because loadSettings has no parameter for it: a chain that loads its blocks knows nothing
// about recordings.
thread_local IkFrameFile::ProgressFunction s_progress;

} // namespace

CkOpenProgressScope::CkOpenProgressScope(const IkFrameFile::ProgressFunction& progress) {
    s_progress = progress;
}

CkOpenProgressScope::~CkOpenProgressScope() {
    s_progress = nullptr;
}

const IkFrameFile::ProgressFunction& CkOpenProgressScope::current() {
    return s_progress;
}

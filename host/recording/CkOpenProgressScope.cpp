#include "host/recording/CkOpenProgressScope.h"

namespace {

// Thread-local, because loadSettings has no parameter for it: the chain that loads its blocks does not know
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

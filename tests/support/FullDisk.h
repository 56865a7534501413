#pragma once

#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>

/// During its lifetime, files of this process cannot grow beyond a size: further writes fail, as on a full
/// disk.
class FullDisk {
public:
    explicit FullDisk(rlim_t uiBytes) : m_handlerBefore(std::signal(SIGXFSZ, SIG_IGN)) {
        EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &m_before), 0);
        rlimit narrow = m_before;
        narrow.rlim_cur = uiBytes;
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &narrow), 0);
    }
    ~FullDisk() {
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &m_before), 0);
        std::signal(SIGXFSZ, m_handlerBefore);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    void (*const m_handlerBefore)(int);
    rlimit m_before = {};
};

#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>
#include <sys/mman.h>
#include <unistd.h>

/// A file in memory that can be opened by name: fast, and nothing remains on disk.
class FuzzFile {
public:
    FuzzFile() : descriptor(memfd_create("fuzz", MFD_CLOEXEC)) {}
    ~FuzzFile() { ::close(descriptor); }
    FuzzFile(const FuzzFile&) = delete;
    FuzzFile& operator=(const FuzzFile&) = delete;

    bool write(const uint8_t* bytes, size_t size) {
        return ::ftruncate(descriptor, 0) == 0 && ::pwrite(descriptor, bytes, size, 0) == ssize_t(size);
    }
    QString name() const { return QStringLiteral("/proc/self/fd/%1").arg(descriptor); }

private:
    int descriptor;
};

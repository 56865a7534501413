#pragma once

#include "zuCore/CkPicBufAPI.h"

#include <utility>

/// Owns one reference to a picture. Movable, not copyable; one thread at a time.
class CkToFPicture {
public:
    CkToFPicture() = default;
    ~CkToFPicture() { free(); }
    CkToFPicture(CkToFPicture&& other) noexcept : m_picBuf(other.take()) {}
    CkToFPicture& operator=(CkToFPicture&& other) noexcept {
        if (this != &other) {
            free();
            m_picBuf = other.take();
        }
        return *this;
    }
    CkToFPicture(const CkToFPicture&) = delete;
    CkToFPicture& operator=(const CkToFPicture&) = delete;

    bool isEmpty() const { return m_picBuf.data == nullptr; }
    SkPicBuf& picBuf() { return m_picBuf; }
    const SkPicBuf& picBuf() const { return m_picBuf; }

    /// Hands the reference over to the caller.
    SkPicBuf take() { return std::exchange(m_picBuf, SkPicBuf()); }
    void free() { CkPicBufAPI::FreePicBuf(m_picBuf, true); }

private:
    SkPicBuf m_picBuf;
};

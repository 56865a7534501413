#pragma once

#include <QByteArray>

#include <array>

/// A byte array that is written anew for every frame, without allocating once sizes have settled.
///
/// Who was given the last array may still share it. Writing to it would then copy it first, so a few arrays
/// take turns and the one written is always one that nobody shares.
class CkToFReusedBytes {
public:
    /// Makes sure that begin succeeds. The current array stays as it is. Throws std::bad_alloc.
    void prepare(qsizetype iSize);

    /// The next array becomes the current one; its bytes are those of an earlier turn, or unset.
    char* begin();

    const QByteArray& current() const { return m_slots[m_current].bytes; }

    /// What the owner knows about the bytes of the current array; -1 for unset bytes.
    qsizetype tag() const { return m_slots[m_current].tag; }
    void setTag(qsizetype iTag) { m_slots[m_current].tag = iTag; }

private:
    struct SkSlot {
        QByteArray bytes;
        qsizetype tag = -1;
    };

    std::array<SkSlot, 3> m_slots;
    size_t m_current = 0;
    size_t m_next = 0;
    QByteArray m_fresh; ///< for the next slot, when it has to be replaced
    qsizetype m_size = 0;
};

#pragma once

#include <QByteArray>

#include <array>

/// A byte array that is rewritten for every frame, without allocation once its size is stable.
///
/// Writing to an array that a consumer still shares would copy it first. A few arrays are therefore used in
/// rotation, and only one that is not shared is written.
class CkToFReusedBytes {
public:
    /// After this begin cannot fail. The current array is unchanged. Throws std::bad_alloc.
    void prepare(qsizetype iSize);

    /// Makes the next array the current one. Its bytes are left over from an earlier use, or uninitialised.
    char* begin();

    const QByteArray& current() const { return m_slots[m_current].bytes; }

    /// A value that the owner attaches to the current array; -1 for uninitialised bytes.
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

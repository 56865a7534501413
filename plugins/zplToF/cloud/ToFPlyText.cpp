#include "plugins/zplToF/cloud/ToFPlyText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <memory>
#include <new>

namespace {

/// A coordinate takes at most 24 characters (sign, 17 digits, point, exponent of two digits) and one that
/// separates it from the next.
constexpr size_t kLongestNumber = 25;
constexpr size_t kLongestLine = 3 * kLongestNumber;

/// Integers beyond the precision of a double: to_chars would write digits without meaning where the shortest
/// form has zeros.
char* writeLargeNumber(char* out, double value) {
    const bool negative = value < 0.0;
    std::array<char, 32> text;
    const char* end =
        std::to_chars(text.data(), text.data() + text.size(), std::fabs(value), std::chars_format::scientific)
            .ptr;
    const char* exponentAt = std::find<const char*>(text.data(), end, 'e');
    size_t exponent = 0;
    std::from_chars(exponentAt + 2, end, exponent);
    if (negative) {
        *out++ = '-';
    }
    if (exponent + 1 > size_t(end - text.data())) {
        return std::copy<const char*>(text.data(), end, out);
    }
    char* const first = out;
    out = std::remove_copy<const char*>(text.data(), exponentAt, out, '.');
    return std::fill_n(out, exponent + 1 - size_t(out - first), '0');
}

char* writeNumber(char* out, float fValue, char cSeparator) {
    constexpr double kFirstLarge = 9007199254740992.0;
    const double value = double(fValue);
    if (std::fabs(value) >= kFirstLarge && std::isfinite(value)) {
        out = writeLargeNumber(out, value);
    } else if (value == 0.0 || std::isnan(value)) {
        // The sign has no meaning here, but to_chars would write it.
        out = std::to_chars(out, out + kLongestNumber, std::fabs(value)).ptr;
    } else {
        out = std::to_chars(out, out + kLongestNumber, value).ptr;
    }
    *out = cSeparator;
    return out + 1;
}

char* writeLine(char* out, const SkToFPoint& point) {
    out = writeNumber(out, point.x, ' ');
    out = writeNumber(out, point.y, ' ');
    return writeNumber(out, point.z, '\n');
}

/// Text of unknown length, in blocks: a growing string would hold its old and new storage at once.
class CkToFTextBlocks {
public:
    void append(const SkToFPoint& point) {
        if (m_used + kLongestLine > m_open.size()) {
            flush();
        }
        m_used = size_t(writeLine(m_open.data() + m_used, point) - m_open.data());
    }

    size_t size() const { return m_flushed + m_used; }

    char* copyTo(char* out) const {
        for (const Block* block = m_first.get(); block; block = block->next.get()) {
            std::memcpy(out, block->text.get(), block->size);
            out += block->size;
        }
        std::memcpy(out, m_open.data(), m_used);
        return out + m_used;
    }

    // Block by block: the default destructor would recurse once for each block.
    ~CkToFTextBlocks() {
        while (m_first) {
            m_first = std::move(m_first->next);
        }
    }

private:
    struct Block {
        std::unique_ptr<Block> next;
        std::unique_ptr<char[]> text;
        size_t size = 0;
    };

    void flush() {
        auto block = std::make_unique<Block>();
        block->text = std::make_unique_for_overwrite<char[]>(m_used);
        block->size = m_used;
        std::memcpy(block->text.get(), m_open.data(), m_used);
        Block* last = block.get();
        (m_last ? m_last->next : m_first) = std::move(block);
        m_last = last;
        m_flushed += m_used;
        m_used = 0;
    }

    std::unique_ptr<Block> m_first;
    Block* m_last = nullptr;
    size_t m_flushed = 0;
    size_t m_used = 0;
    std::array<char, 16 * 1024> m_open; ///< on the stack: short texts need no block at all
};

QByteArray writePly(std::span<const SkToFPoint> points) {
    const QByteArray header = "ply\nformat ascii 1.0\nelement vertex " +
                              QByteArray::number(qulonglong(points.size())) +
                              "\nproperty float x\nproperty float y\nproperty float z\nend_header\n";
    // The last sixteenth of the lines is formatted twice, the first time only to measure it. Without these
    // lines, the blocks with their overhead stay smaller than the text.
    const auto stored = points.first(points.size() - points.size() / 16);
    const auto counted = points.subspan(stored.size());
    CkToFTextBlocks blocks;
    for (const SkToFPoint& point : stored) {
        blocks.append(point);
    }
    std::array<char, kLongestLine> line;
    size_t countedSize = 0;
    for (const SkToFPoint& point : counted) {
        countedSize += size_t(writeLine(line.data(), point) - line.data());
    }

    QByteArray text(header.size() + qsizetype(blocks.size() + countedSize), Qt::Uninitialized);
    char* out = text.data();
    std::memcpy(out, header.constData(), size_t(header.size()));
    out = blocks.copyTo(out + header.size());
    for (const SkToFPoint& point : counted) {
        out = writeLine(out, point);
    }
    return text;
}

} // namespace

QByteArray buildPlyText(std::span<const SkToFPoint> points) {
    try {
        return writePly(points);
    } catch (const std::bad_alloc&) {
        return {};
    }
}

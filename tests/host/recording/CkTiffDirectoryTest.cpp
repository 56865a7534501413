#include "host/recording/CkTiffDirectory.h"

#include <QtEndian>

#include <gtest/gtest.h>
#include <tiff.h>

namespace {

template <typename Value>
Value valueAt(const QByteArray& bytes, quint64 offset) {
    return qFromLittleEndian<Value>(bytes.constData() + offset);
}

/// 20 bytes in this order.
struct Entry {
    quint16 tag;
    quint16 type;
    quint64 count;
    quint64 field;
};

void expectEntry(const QByteArray& bytes, quint64 offset, const Entry& entry) {
    EXPECT_EQ(valueAt<quint16>(bytes, offset), entry.tag);
    EXPECT_EQ(valueAt<quint16>(bytes, offset + 2), entry.type) << entry.tag;
    EXPECT_EQ(valueAt<quint64>(bytes, offset + 4), entry.count) << entry.tag;
    EXPECT_EQ(valueAt<quint64>(bytes, offset + 12), entry.field) << entry.tag;
}

} // namespace

TEST(CkTiffDirectory, HoldsEntriesAndTheValuesOutsideThem) {
    CkTiffDirectory directory(1000);
    directory.addLong(TIFFTAG_IMAGEWIDTH, 640);
    directory.addShort(TIFFTAG_BITSPERSAMPLE, 16, 3);
    directory.addText(TIFFTAG_IMAGEDESCRIPTION, "12345678");
    directory.addLong8(TIFFTAG_STRIPOFFSETS, 0x123456789abcdefU);
    directory.addText(TIFFTAG_SOFTWARE, "1234567");
    directory.addText(TIFFTAG_ARTIST, "abcdefgh");

    const CkTiffDirectory::SkBytes page = directory.toBytes();
    // Two texts of 9 bytes with their terminators, then padding to the next multiple of 8: 1024.
    EXPECT_EQ(page.bytes.first(18), QByteArray("12345678\0abcdefgh\0", 18));
    ASSERT_EQ(page.directory, 24U);
    EXPECT_EQ(valueAt<quint64>(page.bytes, 24), 6U) << "entries";
    expectEntry(page.bytes, 32, {TIFFTAG_IMAGEWIDTH, TIFF_LONG, 1, 640});
    expectEntry(page.bytes, 52, {TIFFTAG_BITSPERSAMPLE, TIFF_SHORT, 3, 0x001000100010U});
    expectEntry(page.bytes, 72, {TIFFTAG_IMAGEDESCRIPTION, TIFF_ASCII, 9, 1000});
    expectEntry(page.bytes, 92, {TIFFTAG_STRIPOFFSETS, TIFF_LONG8, 1, 0x123456789abcdefU});
    expectEntry(page.bytes, 112, {TIFFTAG_SOFTWARE, TIFF_ASCII, 8, 0x0037363534333231U}); // "1234567" itself
    expectEntry(page.bytes, 132, {TIFFTAG_ARTIST, TIFF_ASCII, 9, 1009});
    EXPECT_EQ(page.link, 152U);
    EXPECT_EQ(valueAt<quint64>(page.bytes, page.link), 0U) << "no next page yet";
    EXPECT_EQ(page.bytes.size(), 160);
}

TEST(CkTiffDirectory, ItsLinkIsAlignedInTheFileForAnyOffsetAndNumberOfEntries) {
    for (quint64 offset = 16; offset < 32; ++offset) {
        CkTiffDirectory directory(offset);
        for (quint16 tag = 256; tag < 260; ++tag) {
            directory.addShort(tag, 1);
            const CkTiffDirectory::SkBytes page = directory.toBytes();
            EXPECT_EQ((offset + page.link) % 8, 0U) << offset << ", up to tag " << tag;
            EXPECT_EQ(page.link, page.directory + 8 + 20U * (tag - 255U));
        }
    }
}

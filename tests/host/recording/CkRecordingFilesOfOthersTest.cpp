#include "tests/host/recording/recordingFixture.h"
#include "tests/support/ForeignTiff.h"

namespace {

/// Files written with libtiff, as by other programs.
class CkRecordingFilesOfOthersTest : public RecordingFixture {
protected:
    static constexpr quint32 Width = 21;
    static constexpr quint32 Height = 17;

    static bool make(const QString& file, const ForeignTiffForm& form) {
        return writeForeignTiff(file, Width, Height, form, &sample);
    }

    void expectFrames(const QString& file, const ForeignTiffForm& form) const {
        CkRecordingReader reader;
        QString error;
        ASSERT_TRUE(reader.open(file, &error)) << qPrintable(error);
        EXPECT_TRUE(reader.damage().isEmpty());
        ASSERT_EQ(reader.frameCount(), form.pages);
        for (int page = form.pages; page-- > 0;) {
            const auto frame = reader.read(page, &error);
            ASSERT_NE(frame, nullptr) << qPrintable(error);
            EXPECT_EQ(frame->picBuf().width, Width);
            EXPECT_EQ(frame->picBuf().channels, form.channels);
            EXPECT_EQ(frame->picBuf().bitsPerChannel, 16U);
            EXPECT_TRUE(isFrame(*frame, page));
        }
    }
};

} // namespace

TEST_F(CkRecordingFilesOfOthersTest, FilesOfEveryMakeOpen) {
    const ForeignTiffForm forms[] = {
        {},
        {.mode = "wb"},
        {.mode = "w8", .pages = 3},
        {.channels = 2, .pages = 4},
        {.channels = 4, .compression = COMPRESSION_LZW},
        {.mode = "wb", .channels = 2, .compression = COMPRESSION_ADOBE_DEFLATE, .pages = 2},
        {.channels = 3, .planar = PLANARCONFIG_SEPARATE},
        {.mode = "wb8", .channels = 2, .tiled = true},
        {.channels = 3, .planar = PLANARCONFIG_SEPARATE, .compression = COMPRESSION_LZW, .tiled = true},
        {.rowsPerStrip = 1000},
        {.compression = COMPRESSION_PACKBITS, .rowsPerStrip = 1},
    };
    for (const ForeignTiffForm& form : forms) {
        SCOPED_TRACE(&form - forms);
        ASSERT_TRUE(make(path("other.tif"), form));
        expectFrames(path("other.tif"), form);
    }
}

TEST_F(CkRecordingFilesOfOthersTest, ColoursComeInTheOrderOfTheHouse) {
    ASSERT_TRUE(make(path("rgb.tif"), {.channels = 3, .photometric = PHOTOMETRIC_RGB}));
    CkRecordingReader reader;
    ASSERT_TRUE(reader.open(path("rgb.tif"), nullptr));
    const auto frame = reader.read(0, nullptr);
    ASSERT_NE(frame, nullptr);
    for (quint32 c = 0; c < 3; ++c) {
        EXPECT_EQ(sampleAt<quint16>(frame->picBuf(), 20, 16, c), sample(0, 20, 16, 2 - c));
    }
}

TEST_F(CkRecordingFilesOfOthersTest, WhatIsLeftOfAPictureIsShown) {
    ASSERT_TRUE(make(path("a.tif"), {}));
    // libtiff writes the directory after the samples, other programs write it before: rearrange the file.
    CkRecordingReader whole;
    ASSERT_TRUE(whole.open(path("a.tif"), nullptr));
    QByteArray bytes("II\x2a\0\x08\0\0\0", 8);
    const auto entry = [&bytes](quint16 tag, quint16 type, quint32 value) {
        const quint32 count = 1;
        bytes.append(reinterpret_cast<const char*>(&tag), 2).append(reinterpret_cast<const char*>(&type), 2);
        bytes.append(reinterpret_cast<const char*>(&count), 4)
            .append(reinterpret_cast<const char*>(&value), 4);
    };
    bytes.append("\x08\0", 2);
    entry(TIFFTAG_IMAGEWIDTH, TIFF_LONG, Width);
    entry(TIFFTAG_IMAGELENGTH, TIFF_LONG, Height);
    entry(TIFFTAG_BITSPERSAMPLE, TIFF_SHORT, 16);
    entry(TIFFTAG_COMPRESSION, TIFF_SHORT, COMPRESSION_NONE);
    entry(TIFFTAG_PHOTOMETRIC, TIFF_SHORT, PHOTOMETRIC_MINISBLACK);
    entry(TIFFTAG_STRIPOFFSETS, TIFF_LONG, 8 + 2 + 8 * 12 + 4);
    entry(TIFFTAG_ROWSPERSTRIP, TIFF_LONG, Height);
    entry(TIFFTAG_STRIPBYTECOUNTS, TIFF_LONG, Width * Height * 2);
    bytes.append(4, '\0');
    for (quint32 y = 0; y < 10; ++y) { // the file ends after 10 of 17 rows
        for (quint32 x = 0; x < Width; ++x) {
            const quint16 value = sample(0, x, y, 0);
            bytes.append(reinterpret_cast<const char*>(&value), 2);
        }
    }
    setContents(path("cut.tif"), bytes);
    CkRecordingReader reader;
    ASSERT_TRUE(reader.open(path("cut.tif"), nullptr));
    QString error;
    const auto frame = reader.read(0, &error);
    ASSERT_NE(frame, nullptr);
    EXPECT_THAT(error.toStdString(), ::testing::HasSubstr("cut.tif\", page 1: "));
    EXPECT_EQ(sampleAt<quint16>(frame->picBuf(), 20, 9), sample(0, 20, 9, 0));
    EXPECT_EQ(sampleAt<quint16>(frame->picBuf(), 0, 10), 0);
}

TEST_F(CkRecordingFilesOfOthersTest, FormsThatAreNotSupportedAreNamed) {
    TIFF* const tif = TIFFOpen(qPrintable(path("bits.tif")), "w");
    ASSERT_NE(tif, nullptr);
    TIFFSetField(tif, TIFFTAG_IMAGEWIDTH, 16);
    TIFFSetField(tif, TIFFTAG_IMAGELENGTH, 1);
    TIFFSetField(tif, TIFFTAG_BITSPERSAMPLE, 1);
    TIFFSetField(tif, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    quint8 row[2] = {0xaa, 0x55};
    TIFFWriteScanline(tif, row, 0);
    TIFFClose(tif);
    CkRecordingReader reader;
    ASSERT_TRUE(reader.open(path("bits.tif"), nullptr));
    QString error;
    EXPECT_EQ(reader.read(0, &error), nullptr);
    EXPECT_THAT(error.toStdString(), ::testing::HasSubstr("1 bits"));
}

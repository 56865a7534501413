#include "tests/host/recording/recordingFixture.h"
#include "tests/support/HostileFiles.h"

#include <QtEndian>

namespace {

constexpr quint32 kSmallBytes =
    16U << 20U; // a picture of this size is read even when the file does not hold it

/// Files that claim more than they hold.
class CkHostileRecordingTest : public RecordingFixture {
protected:
    QString file() const { return path("hostile.tif"); }

    /// The error of describing a page; empty when it succeeds.
    std::string refusal(const SkReadLimits& limits = {}, qint64 page = 0) const {
        CkRecordingReader reader(limits);
        QString error;
        SkFrameDescription description;
        if (!reader.open(file(), &error)) {
            return error.toStdString();
        }
        return reader.describe(page, description, &error) ? std::string() : error.toStdString();
    }

    quint32 paddingOf(quint32 width, quint32 height, quint32 padding) const {
        EXPECT_TRUE(HostileFiles::describedPages(file(), width, height, 1, 1, [&](int) {
            return HostileFiles::tofText([&](SkFrameDescription& text) { text.info.linePadding = padding; });
        }));
        CkRecordingReader reader;
        SkFrameDescription description;
        EXPECT_TRUE(reader.open(file(), nullptr));
        EXPECT_TRUE(reader.describe(0, description, nullptr));
        EXPECT_EQ(description.info.lineSize, width * 2);
        return description.info.linePadding;
    }
};

using ::testing::HasSubstr;

} // namespace

TEST_F(CkHostileRecordingTest, APlainPictureIsAtMostTwiceItsFileAndALittle) {
    ASSERT_TRUE(HostileFiles::claimedPages(file(), 1, 1, 1, 1000));
    const auto most = kSmallBytes + 2 * quint32(contents(file()).size());
    ASSERT_EQ(most % 2, 0U); // two bytes per sample
    ASSERT_TRUE(HostileFiles::claimedPages(file(), most / 2, 1, 1, 1000));
    EXPECT_EQ(refusal(), "");
    ASSERT_TRUE(HostileFiles::claimedPages(file(), most / 2 + 1, 1, 1, 1000));
    EXPECT_THAT(refusal(), HasSubstr("more than fit into this file"));
    EXPECT_THAT(refusal(), HasSubstr("hostile.tif\", page 1: "));
}

TEST_F(CkHostileRecordingTest, WhatIsMissingOfAPlainPictureIsZero) {
    ASSERT_TRUE(HostileFiles::claimedPages(file(), 2000, 2000, 1, 1000));
    CkRecordingReader reader;
    ASSERT_TRUE(reader.open(file(), nullptr));
    QString error;
    const auto frame = reader.read(0, &error);
    ASSERT_NE(frame, nullptr);
    EXPECT_FALSE(error.isEmpty());
    EXPECT_EQ(sampleAt<quint16>(frame->picBuf(), 499, 0, 0), 0x0101);
    EXPECT_EQ(sampleAt<quint16>(frame->picBuf(), 1999, 1999, 0), 0);
}

TEST_F(CkHostileRecordingTest, ACompressedPictureIsBoundedBySizeAndByItsBytes) {
    ASSERT_TRUE(HostileFiles::deflatedPages(file(), 5000, 5000, 8, 1)); // 25,000,000 bytes
    const auto stored = quint32(HostileTiff::deflatedZeros(25'000'000).size());
    SkReadLimits limits;
    limits.unpackedBytes = 25'000'000;
    EXPECT_EQ(refusal(limits), "");
    limits.unpackedBytes = 24'999'999;
    EXPECT_THAT(refusal(limits),
                HasSubstr("5000 x 5000 pixels in " + std::to_string(stored) + " compressed"));
    // The bytes beyond the first 16 MiB, at the smallest sufficient whole ratio.
    limits.unpackedBytes = SkReadLimits().unpackedBytes;
    limits.expansion = (25'000'000 - kSmallBytes + stored - 1) / stored;
    EXPECT_EQ(refusal(limits), "");
    --limits.expansion;
    EXPECT_THAT(refusal(limits), HasSubstr(std::to_string(limits.expansion) + " times"));
}

TEST_F(CkHostileRecordingTest, ACoveredLensIsNoAttack) {
    // Deflate packs zeros a thousand to one.
    ASSERT_TRUE(HostileFiles::deflatedPages(file(), 5000, 4000, 16, 2));
    CkRecordingReader reader;
    ASSERT_TRUE(reader.open(file(), nullptr));
    QString error;
    const auto frame = reader.read(1, &error);
    ASSERT_NE(frame, nullptr) << qPrintable(error);
    EXPECT_TRUE(error.isEmpty());
    EXPECT_EQ(sampleAt<quint16>(frame->picBuf(), 4999, 3999, 0), 0);
}

TEST_F(CkHostileRecordingTest, TilesCountWithWhatLiesBeyondThePicture) {
    ASSERT_TRUE(HostileFiles::hugeTile(file(), 4096)); // exactly 16 MiB for 16 x 16 pixels
    EXPECT_EQ(refusal({.expansion = 0}), "");
    ASSERT_TRUE(HostileFiles::hugeTile(file(), 4112));
    EXPECT_THAT(refusal({.expansion = 0}), HasSubstr("16 x 16 pixels"));
}

TEST_F(CkHostileRecordingTest, StripsDoNotHoldMoreThanSamples) {
    const auto make = [this](quint32 bytes) {
        HostileTiff tiff(file());
        const quint32 strip = tiff.appendHole(bytes);
        tiff.addPage(HostileTiff::page(100, 100, 8, COMPRESSION_ADOBE_DEFLATE, strip, bytes));
        return tiff.close();
    };
    ASSERT_TRUE(make(kSmallBytes + 2 * 10'000));
    EXPECT_EQ(refusal(), "");
    ASSERT_TRUE(make(kSmallBytes + 2 * 10'000 + 1));
    EXPECT_THAT(refusal(), HasSubstr("more compressed bytes than samples"));
}

TEST_F(CkHostileRecordingTest, APageHasAMillionStripsAtMost) {
    const auto make = [this](quint32 rows) {
        HostileTiff tiff(file());
        const quint32 table = tiff.appendHole(rows * 4);
        auto page = HostileTiff::page(1, rows, 8, COMPRESSION_ADOBE_DEFLATE, table, table);
        for (HostileTiff::SkEntry& entry : page) {
            if (entry.tag == TIFFTAG_ROWSPERSTRIP) {
                entry.value = 1;
            } else if (entry.tag == TIFFTAG_STRIPOFFSETS || entry.tag == TIFFTAG_STRIPBYTECOUNTS) {
                entry.count = rows;
            }
        }
        tiff.addPage(page);
        return tiff.close();
    };
    ASSERT_TRUE(make(1'000'000));
    EXPECT_EQ(refusal(), "");
    ASSERT_TRUE(make(1'000'001));
    EXPECT_THAT(refusal(), HasSubstr("1000001 strips or tiles"));
}

TEST_F(CkHostileRecordingTest, DirectoriesHold32MiBBesideTheSamples) {
    // The page's own entries: five numbers of four bytes and three of two.
    constexpr quint32 own = 26;
    ASSERT_TRUE(HostileFiles::wideEntries(file(), 2, (32U << 20U) / 2 - own / 2));
    EXPECT_EQ(refusal(), "");
    ASSERT_TRUE(HostileFiles::wideEntries(file(), 2, (32U << 20U) / 2 - own / 2 + 1));
    EXPECT_THAT(refusal(), HasSubstr("more than 32 MiB beside the samples"));
}

TEST_F(CkHostileRecordingTest, TextsHaveALength) {
    const QByteArray beginning = "{\"schema\":\"zutof.frame\",\"x\":\"";
    const auto make = [&](qsizetype length) {
        const QByteArray rest = QByteArray(length - beginning.size() - 2, 'x') + "\"}";
        return HostileFiles::hugeText(file(), beginning + rest, {}, 0, 2);
    };
    ASSERT_TRUE(make(4 << 20));
    EXPECT_EQ(refusal(), "");
    EXPECT_THAT(refusal({}, 1), HasSubstr("longer than 1 MiB"));
    ASSERT_TRUE(make((4 << 20) + 1));
    EXPECT_THAT(refusal(), HasSubstr("longer than 4 MiB"));
    ASSERT_TRUE(make(1 << 20));
    EXPECT_EQ(refusal({}, 1), "");
    // Other programs may write any text there.
    ASSERT_TRUE(HostileFiles::hugeText(file(), "<OME>", "<a/>", 2 << 20, 2));
    EXPECT_EQ(refusal(), "");
    EXPECT_EQ(refusal({}, 1), "");
}

TEST_F(CkHostileRecordingTest, TheWriterKeepsToTheLengthOfTexts) {
    PaddedPicture made = picture(0);
    const auto written = [&](const SkRecordingInfo& recording, int frames) {
        CkRecordingWriter writer;
        bool all = writer.open(file(), recording);
        for (int frame = 0; frame < frames; ++frame) {
            all = all && writer.write(*made, metadata(0), {{QStringLiteral("note"), recording.software}});
        }
        EXPECT_EQ(writer.errorMessage().contains(QLatin1String("longer than")), !all);
        return all;
    };
    const QString chain(3 << 20, QLatin1Char('x'));
    EXPECT_TRUE(written({chain, {}, {}}, 1));
    EXPECT_EQ(refusal(), "");
    EXPECT_FALSE(written({chain + chain, {}, {}}, 1));
    const QString note(1 << 20, QLatin1Char('x'));
    EXPECT_TRUE(written({{}, {}, note}, 1));
    EXPECT_FALSE(written({{}, {}, note}, 2));
}

TEST_F(CkHostileRecordingTest, LargePaddingOfRowsIsLeftOut) {
    EXPECT_EQ(paddingOf(20, 48, 64), 64U);
    EXPECT_EQ(paddingOf(20, 48, 4096), 4096U);
    EXPECT_EQ(paddingOf(20, 48, 4097), 0U);
    EXPECT_EQ(paddingOf(20, 48, 1U << 31U), 0U);
    // A thousand times the picture.
    EXPECT_EQ(paddingOf(1, 10'000, 4096), 0U);
}

TEST_F(CkHostileRecordingTest, BitsAreThoseOfASampleAtMost) {
    const auto bitsOf = [this](quint32 bits) {
        EXPECT_TRUE(HostileFiles::describedPages(file(), 20, 48, 1, 1, [bits](int) {
            return HostileFiles::tofText(
                [bits](SkFrameDescription& text) { text.info.bitsPerChannel = bits; });
        }));
        CkRecordingReader reader;
        SkFrameDescription description;
        EXPECT_TRUE(reader.open(file(), nullptr));
        EXPECT_TRUE(reader.describe(0, description, nullptr));
        return description.info.bitsPerChannel;
    };
    EXPECT_EQ(bitsOf(1), 1U);
    EXPECT_EQ(bitsOf(12), 12U);
    EXPECT_EQ(bitsOf(16), 16U);
    for (const quint32 bits : {0U, 17U, 1U << 31U, 0xffffffffU}) {
        EXPECT_EQ(bitsOf(bits), 16U);
    }
}

TEST_F(CkHostileRecordingTest, PagesBehindTheLimitAreLeftOutWithAMessage) {
    SkReadLimits limits;
    limits.pages = 100;
    for (const int pages : {99, 100, 101, 5000}) {
        ASSERT_TRUE(HostileFiles::tinyPages(file(), pages));
        CkRecordingReader reader(limits);
        ASSERT_TRUE(reader.open(file(), nullptr));
        EXPECT_EQ(reader.frameCount(), std::min(pages, 100));
        EXPECT_EQ(reader.damage().isEmpty(), pages <= 100);
        if (pages > 100) {
            EXPECT_THAT(reader.damage().toStdString(),
                        ::testing::AllOf(HasSubstr("page 101: "), HasSubstr("more than 100 pages")));
        }
    }
}

TEST_F(CkHostileRecordingTest, AMillionPagesAreTheUsualLimit) {
    EXPECT_EQ(SkReadLimits().pages, 1'000'000);
    ASSERT_TRUE(HostileFiles::emptyDirectories(file(), 1'000'001));
    CkRecordingReader reader;
    ASSERT_TRUE(reader.open(file(), nullptr));
    EXPECT_EQ(reader.frameCount(), 1'000'000);
    EXPECT_THAT(reader.damage().toStdString(), HasSubstr("more than 1000000 pages"));
    // The search can be cancelled long before.
    CkRecordingReader cancelled;
    QString error;
    qint64 seen = 0;
    EXPECT_FALSE(
        cancelled.open(file(), &error, [&seen](qint64 pages, double) { return (seen = pages) < 5000; }));
    EXPECT_LT(seen, 6000);
    EXPECT_THAT(error.toStdString(), HasSubstr("cancelled"));
}

TEST_F(CkHostileRecordingTest, CirclesOfEveryLengthAreFoundOnce) {
    constexpr int pages = 21;
    ASSERT_TRUE(HostileFiles::tinyPages(file(), pages));
    const QByteArray straight = contents(file());
    std::vector<quint32> offsets;
    quint32 link = 4;
    for (int page = 0; page < pages; ++page) {
        offsets.push_back(qFromLittleEndian<quint32>(straight.constData() + link));
        link = offsets.back() + 2 + 8 * 12;
    }
    for (const quint32 back : offsets) {
        QByteArray bytes = straight;
        qToLittleEndian(back, bytes.data() + link);
        setContents(file(), bytes);
        CkRecordingReader reader;
        ASSERT_TRUE(reader.open(file(), nullptr));
        EXPECT_EQ(reader.frameCount(), pages);
        EXPECT_THAT(reader.damage().toStdString(), HasSubstr("page 22: The file's pages point"));
    }
}

TEST_F(CkHostileRecordingTest, RecordingsOfManyGigabytesOpen) {
    // Larger than the memory of most machines, and nearly nothing on the disk.
    constexpr quint32 frameBytes = 640 * 480 * 4 * 2;
    constexpr int pages = 1700;
    HostileTiff tiff(file());
    for (int page = 0; page < pages; ++page) {
        const quint32 strip = tiff.appendHole(frameBytes);
        tiff.addPage(HostileTiff::page(640 * 4, 480, 16, COMPRESSION_NONE, strip, frameBytes));
    }
    ASSERT_TRUE(tiff.close());
    CkRecordingReader reader;
    ASSERT_TRUE(reader.open(file(), nullptr));
    EXPECT_EQ(reader.frameCount(), pages);
    EXPECT_TRUE(reader.damage().isEmpty());
    EXPECT_GT(reader.byteCount(), 4'000'000'000U);
    QString error;
    EXPECT_NE(reader.read(pages - 1, &error), nullptr) << qPrintable(error);
}

TEST_F(CkHostileRecordingTest, AHundredThousandFramesAreAnOrdinaryRecording) {
    ASSERT_TRUE(HostileFiles::tinyPages(file(), 100'000));
    CkRecordingReader reader;
    ASSERT_TRUE(reader.open(file(), nullptr));
    EXPECT_EQ(reader.frameCount(), 100'000);
    EXPECT_TRUE(reader.damage().isEmpty());
    EXPECT_NE(reader.read(99'999, nullptr), nullptr);
}

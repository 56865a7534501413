#include "tests/tools/tof/ToFFixture.h"

#include <QtEndian>
#include <cmath>

namespace {

struct SkPng {
    quint32 width = 0;
    quint32 height = 0;
    int bits = 0;
    int colour = -1;
    QByteArray rows; ///< each after its filter byte
};

class ToFImageTest : public ToFFixture {
protected:
    /// Parses a PNG with one data chunk.
    SkPng png(const char* name) const {
        const QByteArray bytes = contents(name);
        SkPng read;
        EXPECT_TRUE(bytes.startsWith(QByteArray::fromHex("89504e470d0a1a0a")));
        // The end chunk is empty, so that its checksum is always the same.
        EXPECT_TRUE(bytes.endsWith(QByteArray::fromHex("0000000049454e44ae426082")));
        qsizetype at = 8;
        while (at + 8 <= bytes.size()) {
            const auto length = qFromBigEndian<quint32>(bytes.constData() + at);
            const QByteArray kind = bytes.mid(at + 4, 4);
            const QByteArray content = bytes.mid(at + 8, length);
            EXPECT_EQ(qFromBigEndian<quint32>(bytes.constData() + at + 8 + length), slowCrc(kind + content));
            if (kind == "IHDR") {
                read.width = qFromBigEndian<quint32>(content.constData());
                read.height = qFromBigEndian<quint32>(content.constData() + 4);
                read.bits = quint8(content[8]);
                read.colour = quint8(content[9]);
            } else if (kind == "IDAT") {
                read.rows = qUncompress(QByteArray(4, '\0') + content);
            }
            at += 12 + qsizetype(length);
        }
        return read;
    }
    /// CRC-32 by polynomial division, bit by bit.
    static quint32 slowCrc(const QByteArray& bytes) {
        quint32 remainder = 0xffffffffU;
        for (const char byte : bytes) {
            for (int bit = 0; bit < 8; ++bit) {
                const quint32 in = (quint8(byte) >> bit) & 1U;
                const quint32 out = (remainder & 1U) ^ in;
                remainder = (remainder >> 1U) ^ (out != 0 ? 0xedb88320U : 0U);
            }
        }
        return ~remainder;
    }
    static quint16 grey16(const SkPng& read, int x, int y) {
        return qFromBigEndian<quint16>(read.rows.constData() + y * (1 + 2 * int(read.width)) + 1 + 2 * x);
    }
};

} // namespace

TEST_F(ToFImageTest, TheColourMapSpansTheValues) {
    recordFloats("a.tif", {{2, 4, 3}}, {});
    ASSERT_EQ(tof("image a.tif a.png").code, 0);
    SkPng read = png("a.png");
    EXPECT_EQ(read.width, 3U);
    EXPECT_EQ(read.height, 1U);
    EXPECT_EQ(read.bits, 8);
    EXPECT_EQ(read.colour, 2);
    ASSERT_EQ(read.rows.size(), 1 + 3 * 3);
    EXPECT_EQ(read.rows.mid(1, 6), QByteArray::fromHex("000000ffffff"));
    EXPECT_NEAR(quint8(read.rows[7]), 127, 1);

    ASSERT_EQ(tof("image --range 0,4 a.tif a.png").code, 0);
    read = png("a.png");
    EXPECT_NEAR(quint8(read.rows[1]), 127, 1);
    EXPECT_EQ(quint8(read.rows[4]), 255);
}

TEST_F(ToFImageTest, MapsColour) {
    recordFloats("a.tif", {{0, 1}}, {});
    ASSERT_EQ(tof("image --map jet a.tif a.png").code, 0);
    const SkPng read = png("a.png");
    // A rainbow ends in red: the last pixel has more red than blue.
    EXPECT_GT(quint8(read.rows[4]), quint8(read.rows[6]));
    EXPECT_FALSE(read.rows[4] == read.rows[5] && read.rows[5] == read.rows[6]);
}

TEST_F(ToFImageTest, SixteenBitsAreAsMeasured) {
    CkRecordingWriter writer;
    ASSERT_TRUE(writer.open(path("a.tif"), {}));
    PaddedPicture taps(2, 2, 2, EkImageDataType::UInt16, 12);
    taps.fill<quint16>(
        [](quint32 x, quint32 y, quint32 c) { return quint16(1000 * c + 100 * y + 3001 * x); });
    ASSERT_TRUE(writer.write(*taps, {}));
    PaddedPicture difference(2, 1, 1, EkImageDataType::Int16);
    difference.set<qint16>(0, 0, 0, -5);
    difference.set<qint16>(1, 0, 0, 7);
    ASSERT_TRUE(writer.write(*difference, {}));
    PaddedPicture depth(4, 1, 1, EkImageDataType::Float32);
    const float metres[] = {1.5F, -1.0F, 100.0F, NAN};
    std::memcpy(depth->row(0), metres, sizeof(metres));
    ASSERT_TRUE(writer.write(*depth, named({QStringLiteral("Depth")})));
    PaddedPicture phase(1, 1, 1, EkImageDataType::Float32);
    phase.set<float>(0, 0, 0, float(M_PI / 2)); // a quarter turn
    ASSERT_TRUE(writer.write(*phase, named({QStringLiteral("Phase shift")})));
    ASSERT_TRUE(writer.close());

    ASSERT_EQ(tof("image --format png16 --channel 1 a.tif a.png").code, 0);
    SkPng read = png("a.png");
    EXPECT_EQ(read.bits, 16);
    EXPECT_EQ(read.colour, 0);
    EXPECT_EQ(grey16(read, 0, 0), 1000);
    EXPECT_EQ(grey16(read, 1, 1), 1000 + 100 + 3001);

    ASSERT_EQ(tof("image --format png16 --frame 1 a.tif a.png").code, 0);
    read = png("a.png");
    EXPECT_EQ(grey16(read, 0, 0), 32763);
    EXPECT_EQ(grey16(read, 1, 0), 32775);

    ASSERT_EQ(tof("image --format png16 --frame 2 a.tif a.png").code, 0);
    read = png("a.png");
    EXPECT_EQ(grey16(read, 0, 0), 1500);
    EXPECT_EQ(grey16(read, 1, 0), 0);
    EXPECT_EQ(grey16(read, 2, 0), 65535);
    EXPECT_EQ(grey16(read, 3, 0), 0);

    ASSERT_EQ(tof("image --format png16 --frame 3 a.tif a.png").code, 0);
    EXPECT_EQ(grey16(png("a.png"), 0, 0), 16384);

    EXPECT_EQ(tof("image --channel 2 a.tif a.png").code, 6);
    EXPECT_EQ(tof("image --frame 4 a.tif a.png").code, 6);
}

TEST_F(ToFImageTest, FloatTiffKeepsEveryValue) {
    recordFloats("a.tif", {{0.1F, -2, 3e30F, 4}, {5, 6, 7, 8}}, named({QStringLiteral("Depth")}), 2);
    ASSERT_EQ(tof("image --format tiff --frame 1 a.tif b.tif").code, 0);
    ASSERT_EQ(tof("image --format tiff a.tif c.tif").code, 0);
    const auto frame = open("c.tif")->read(0, nullptr);
    ASSERT_NE(frame, nullptr);
    EXPECT_EQ(frame->picBuf().channels, 2U);
    EXPECT_EQ(sampleAt<float>(frame->picBuf(), 0, 0, 0), 0.1F);
    EXPECT_EQ(sampleAt<float>(frame->picBuf(), 1, 0, 0), 3e30F);
    EXPECT_EQ(frame->metadata().channelNames.value(0), QStringLiteral("Depth"));
    EXPECT_EQ(sampleAt<float>(open("b.tif")->read(0, nullptr)->picBuf(), 1, 0, 1), 8.0F);
}

TEST_F(ToFImageTest, TheEndingDecidesTheFormat) {
    recordFloats("a.tif", {{2, 4, 3}}, {});
    ASSERT_EQ(tof("image a.tif b.tiff").code, 0);
    EXPECT_EQ(open("b.tiff")->frameCount(), 1);
    ASSERT_EQ(tof("image a.tif b.PNG").code, 0);
    EXPECT_EQ(png("b.PNG").bits, 8);
    // Without a suffix any format fits, and a number is no suffix.
    ASSERT_EQ(tof("image --format png16 a.tif room-1.5").code, 0);
    EXPECT_EQ(png("room-1.5").bits, 16);
    ASSERT_EQ(tof("image a.tif plain").code, 0);
    EXPECT_EQ(png("plain").bits, 8);
}

TEST_F(ToFImageTest, AnEndingThatContradictsIsRefused) {
    recordFloats("a.tif", {{2, 4, 3}}, {});
    const SkRun unknown = tof("image a.tif b.jpg");
    EXPECT_EQ(unknown.code, 2);
    EXPECT_EQ(unknown.err,
              QStringLiteral("tof: \"b.jpg\": a picture is written as .png, .tif or .tiff, not as .jpg.\n"));
    EXPECT_FALSE(QFile::exists(path("b.jpg")));
    const SkRun other = tof("image --format png16 a.tif b.tif");
    EXPECT_EQ(other.code, 2);
    EXPECT_EQ(other.err,
              QStringLiteral("tof: \"b.tif\" does not match --format png16, whose files end in .png.\n"));
    EXPECT_FALSE(QFile::exists(path("b.tif")));
    EXPECT_EQ(tof("image --format tiff a.tif b.png").code, 2);
    EXPECT_FALSE(QFile::exists(path("b.png")));
}

TEST_F(ToFImageTest, RecordingsAreNotCalledPictures) {
    recordTaps("a.tif", 1);
    for (const char* line : {"process --transform depth a.tif b.png", "record --frames 1 b.png"}) {
        const SkRun run = tof(line);
        EXPECT_EQ(run.code, 2) << line;
        EXPECT_EQ(run.err,
                  QStringLiteral("tof: \"b.png\": a recording is written as .tif or .tiff, not as .png.\n"));
        EXPECT_FALSE(QFile::exists(path("b.png")));
    }
}

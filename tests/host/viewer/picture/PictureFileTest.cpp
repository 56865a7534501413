#include "host/viewer/picture/PictureFile.h"

#include "host/viewer/picture/CkImageView.h"
#include "tests/host/viewer/ViewerPictures.h"

#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <tiffio.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

namespace {

constexpr quint32 kWidth = 7;
constexpr quint32 kHeight = 5;

CkImageMetadata named(const QStringList& names) {
    CkImageMetadata metadata;
    metadata.channelNames = names;
    return metadata;
}

/// A TIFF page as libtiff, and thus every other program, reads it.
struct SkPage {
    quint32 width = 0;
    quint32 height = 0;
    quint16 channels = 0;
    quint16 bits = 0;
    quint16 format = 0;
    QByteArray text;
    QByteArray samples;
};

SkPage readPage(const QString& sFileName) {
    SkPage page;
    TIFF* tif = TIFFOpen(QFile::encodeName(sFileName).constData(), "r");
    if (tif == nullptr) {
        ADD_FAILURE() << qPrintable(sFileName);
        return page;
    }
    TIFFGetField(tif, TIFFTAG_IMAGEWIDTH, &page.width);
    TIFFGetField(tif, TIFFTAG_IMAGELENGTH, &page.height);
    TIFFGetField(tif, TIFFTAG_SAMPLESPERPIXEL, &page.channels);
    TIFFGetField(tif, TIFFTAG_BITSPERSAMPLE, &page.bits);
    TIFFGetField(tif, TIFFTAG_SAMPLEFORMAT, &page.format);
    char* text = nullptr;
    if (TIFFGetField(tif, TIFFTAG_IMAGEDESCRIPTION, &text) == 1) {
        page.text = text;
    }
    for (quint32 y = 0; y < page.height; ++y) {
        QByteArray row(qsizetype(TIFFScanlineSize(tif)), '\0');
        EXPECT_EQ(TIFFReadScanline(tif, row.data(), y, 0), 1);
        page.samples += row;
    }
    TIFFClose(tif);
    return page;
}

template <class T>
T at(const SkPage& page, quint32 x, quint32 y, quint32 channel) {
    T value;
    std::memcpy(&value,
                page.samples.constData() +
                    ((qsizetype(y) * page.width + x) * page.channels + channel) * qsizetype(sizeof(T)),
                sizeof(T));
    return value;
}

// Values without a short decimal form, so that any rounding on the way shows.
float phaseAt(quint32 x, quint32 y) {
    return std::nextafter(float(x) * 0.7F + float(y) / 3.0F, 10.0F);
}

std::unique_ptr<CkImageData> phaseFrame() {
    auto frame = makeFrame<float>(EkImageDataType::Float32, kWidth, kHeight, 2, 32,
                                  [](quint32 x, quint32 y, quint32 c) {
                                      return c == 1             ? 0.125F * float(x)
                                             : x == 3 && y == 2 ? std::numeric_limits<float>::quiet_NaN()
                                                                : phaseAt(x, y);
                                  });
    frame->setMetadata(named({"Phase shift", "Confidence"}));
    return frame;
}

TEST(PictureFile, FloatTiffHoldsEveryFloatExactly) {
    const QTemporaryDir folder;
    const auto frame = phaseFrame();
    QString error;
    const QString all = folder.filePath("all.tif");
    ASSERT_TRUE(PictureFile::saveFloatTiff(frame->picBuf(), frame->metadata(), -1, all, error))
        << qPrintable(error);
    const SkPage page = readPage(all);
    ASSERT_EQ(page.width, kWidth);
    ASSERT_EQ(page.height, kHeight);
    ASSERT_EQ(page.channels, 2);
    ASSERT_EQ(page.bits, 32);
    ASSERT_EQ(page.format, SAMPLEFORMAT_IEEEFP);
    for (quint32 y = 0; y < kHeight; ++y) {
        for (quint32 x = 0; x < kWidth; ++x) {
            if (x == 3 && y == 2) {
                EXPECT_TRUE(std::isnan(at<float>(page, x, y, 0)));
            } else {
                EXPECT_EQ(at<float>(page, x, y, 0), phaseAt(x, y)) << x << ' ' << y;
            }
            EXPECT_EQ(at<float>(page, x, y, 1), 0.125F * float(x)) << x << ' ' << y;
        }
    }
    EXPECT_TRUE(page.text.contains("Phase shift")) << page.text.constData();
}

TEST(PictureFile, OneChannelMakesAPageThatEveryReaderTakes) {
    const QTemporaryDir folder;
    const auto frame = phaseFrame();
    QString error;
    const QString one = folder.filePath("one.tif");
    ASSERT_TRUE(PictureFile::saveFloatTiff(frame->picBuf(), frame->metadata(), 1, one, error))
        << qPrintable(error);
    const SkPage page = readPage(one);
    ASSERT_EQ(page.channels, 1);
    EXPECT_EQ(at<float>(page, 6, 4, 0), 0.75F);
    EXPECT_TRUE(page.text.contains("Confidence"));
    EXPECT_FALSE(page.text.contains("Phase shift"));
}

TEST(PictureFile, IntegersBeyondFloatsBecomeDoubles) {
    const QTemporaryDir folder;
    const auto frame = makeFrame<quint32>(EkImageDataType::UInt32, 3, 1, 1, 32,
                                          [](quint32 x, quint32, quint32) { return 0xfffffffdU + x; });
    const auto counts =
        makeFrame<qint16>(EkImageDataType::Int16, 3, 1, 1, 16, [](quint32 x, quint32, quint32) {
            return qint16(x == 0 ? -32768 : x == 1 ? -1 : 32767);
        });
    QString error;
    const QString wide = folder.filePath("wide.tif");
    ASSERT_TRUE(PictureFile::saveFloatTiff(frame->picBuf(), {}, 0, wide, error)) << qPrintable(error);
    const SkPage widePage = readPage(wide);
    ASSERT_EQ(widePage.bits, 64);
    EXPECT_EQ(at<double>(widePage, 0, 0, 0), 4294967293.0);
    EXPECT_EQ(at<double>(widePage, 2, 0, 0), 4294967295.0);
    const QString narrow = folder.filePath("narrow.tif");
    ASSERT_TRUE(PictureFile::saveFloatTiff(counts->picBuf(), {}, 0, narrow, error)) << qPrintable(error);
    const SkPage narrowPage = readPage(narrow);
    ASSERT_EQ(narrowPage.bits, 32);
    EXPECT_EQ(at<float>(narrowPage, 0, 0, 0), -32768.0F);
    EXPECT_EQ(at<float>(narrowPage, 1, 0, 0), -1.0F);
    EXPECT_EQ(at<float>(narrowPage, 2, 0, 0), 32767.0F);
}

quint16 grey(const QImage& image, int x, int y) {
    return reinterpret_cast<const quint16*>(image.constScanLine(y))[x];
}

TEST(PictureFile, Png16HoldsMillimetresAndPartsOfATurn) {
    const QTemporaryDir folder;
    QString error;
    const float depths[] = {0.0F,
                            1.2344F,
                            1.2346F,
                            70.0F,
                            -1.0F,
                            std::numeric_limits<float>::quiet_NaN(),
                            std::numeric_limits<float>::infinity()};
    const auto depth = makeFrame<float>(EkImageDataType::Float32, 7, 1, 1, 32,
                                        [&](quint32 x, quint32, quint32) { return depths[x]; });
    const QString depthFile = folder.filePath("depth.png");
    ASSERT_TRUE(PictureFile::savePng16(depth->picBuf(), named({"Depth"}), 0, depthFile, error))
        << qPrintable(error);
    const QImage mm(depthFile);
    ASSERT_EQ(mm.format(), QImage::Format_Grayscale16);
    const quint16 expectedMm[] = {0, 1234, 1235, 65535, 0, 0, 0};
    for (int x = 0; x < 7; ++x) {
        EXPECT_EQ(grey(mm, x, 0), expectedMm[x]) << x;
    }
    EXPECT_TRUE(mm.text("Description").contains("Depth: round(value * 1000")) << qPrintable(mm.text());

    const auto phase =
        makeFrame<float>(EkImageDataType::Float32, 4, 1, 2, 32, [](quint32 x, quint32, quint32 c) {
            return c == 0 ? 99.0F : float(x) * std::numbers::pi_v<float> / 2.0F;
        });
    const QString phaseFile = folder.filePath("phase.png");
    ASSERT_TRUE(
        PictureFile::savePng16(phase->picBuf(), named({"Other", "Phase shift"}), 1, phaseFile, error));
    const QImage turns(phaseFile);
    for (int x = 0; x < 4; ++x) {
        EXPECT_EQ(grey(turns, x, 0), 16384 * x) << x;
    }
}

TEST(PictureFile, Png16KeepsWholeNumbers) {
    const QTemporaryDir folder;
    QString error;
    const auto plain =
        makeFrame<quint16>(EkImageDataType::UInt16, 3, 1, 1, 16, [](quint32 x, quint32, quint32) {
            return quint16(x == 0 ? 0 : x == 1 ? 4095 : 65535);
        });
    ASSERT_TRUE(PictureFile::savePng16(plain->picBuf(), {}, 0, folder.filePath("u.png"), error));
    const QImage whole(folder.filePath("u.png"));
    EXPECT_EQ(grey(whole, 1, 0), 4095);
    EXPECT_EQ(grey(whole, 2, 0), 65535);
    const auto difference =
        makeFrame<qint16>(EkImageDataType::Int16, 3, 1, 1, 16, [](quint32 x, quint32, quint32) {
            return qint16(x == 0 ? -32768 : x == 1 ? -5 : 100);
        });
    ASSERT_TRUE(PictureFile::savePng16(difference->picBuf(), {}, 0, folder.filePath("s.png"), error));
    const QImage shifted(folder.filePath("s.png"));
    EXPECT_EQ(grey(shifted, 0, 0), 0);
    EXPECT_EQ(grey(shifted, 1, 0), 32763);
    EXPECT_EQ(grey(shifted, 2, 0), 32868);
}

TEST(PictureFile, WhatCannotBeWrittenIsSaidAndLeavesTheOldFile) {
    const QTemporaryDir folder;
    const auto frame = phaseFrame();
    QString error;
    EXPECT_FALSE(PictureFile::saveFloatTiff(frame->picBuf(), {}, 0, folder.filePath("no/such/a.tif"), error));
    EXPECT_TRUE(error.contains("a.tif")) << qPrintable(error);
    EXPECT_FALSE(PictureFile::savePng16(frame->picBuf(), {}, 0, folder.filePath("no/such/b.png"), error));
    EXPECT_TRUE(error.contains("b.png")) << qPrintable(error);
    const QString kept = folder.filePath("kept.tif");
    QFile old(kept);
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write("old");
    old.close();
    EXPECT_FALSE(PictureFile::saveFloatTiff(frame->picBuf(), {}, 2, kept, error));
    EXPECT_FALSE(PictureFile::savePng16(SkPicBuf(), {}, 0, kept, error));
    EXPECT_FALSE(error.isEmpty());
    ASSERT_TRUE(old.open(QIODevice::ReadOnly));
    EXPECT_EQ(old.readAll(), "old");
}

} // namespace

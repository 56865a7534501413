#pragma once

#include "host/recording/CkRecordingReader.h"
#include "host/recording/CkRecordingWriter.h"
#include "tests/support/TestPicture.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkPicBufAPI.h"

#include <QFile>
#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <memory>

/// A temporary folder, and pictures whose samples identify frame, position and channel.
class RecordingFixture : public ::testing::Test {
protected:
    QTemporaryDir m_folder;

    QString path(const char* name) const { return m_folder.filePath(QString::fromLatin1(name)); }

    static quint16 sample(qint64 frame, quint32 x, quint32 y, quint32 c) {
        return quint16(frame * 1009 + qint64(y) * 131 + qint64(x) * 7 + qint64(c) * 3001);
    }

    static PaddedPicture picture(qint64 frame, quint32 width = 6, quint32 height = 4, quint32 channels = 2) {
        PaddedPicture made(width, height, channels, EkImageDataType::UInt16, 12);
        made.fill<quint16>([frame](quint32 x, quint32 y, quint32 c) { return sample(frame, x, y, c); });
        made->additionalData.frameNumber = quint64(frame);
        made->additionalData.timestampNs = frame * 40'000'000;
        return made;
    }

    static CkImageMetadata metadata(qint64 frame) {
        CkImageMetadata made;
        made.frameNumber = quint64(frame);
        made.channelNames = QStringList{QStringLiteral("A"), QStringLiteral("B")};
        return made;
    }

    static ::testing::AssertionResult isFrame(const CkImageData& data, qint64 frame) {
        const SkPicBuf& picBuf = data.picBuf();
        for (quint32 y = 0; y < picBuf.height; ++y) {
            for (quint32 x = 0; x < picBuf.width; ++x) {
                for (quint32 c = 0; c < picBuf.channels; ++c) {
                    if (sampleAt<quint16>(picBuf, x, y, c) != sample(frame, x, y, c)) {
                        return ::testing::AssertionFailure()
                               << "frame " << frame << " differs at " << x << ", " << y << ", " << c;
                    }
                }
            }
        }
        if (data.metadata().frameNumber != quint64(frame)) {
            return ::testing::AssertionFailure() << "metadata are those of " << data.metadata().frameNumber;
        }
        return ::testing::AssertionSuccess();
    }

    void record(const QString& file, qint64 frames,
                EkRecordingCompression compression = EkRecordingCompression::None) const {
        CkRecordingWriter writer;
        ASSERT_TRUE(writer.open(file, {}, compression)) << qPrintable(writer.errorMessage());
        for (qint64 frame = 0; frame < frames; ++frame) {
            PaddedPicture made = picture(frame);
            ASSERT_TRUE(writer.write(*made, metadata(frame))) << qPrintable(writer.errorMessage());
        }
        ASSERT_TRUE(writer.close());
    }

    static QByteArray contents(const QString& file) {
        QFile opened(file);
        return opened.open(QIODevice::ReadOnly) ? opened.readAll() : QByteArray();
    }
    static void setContents(const QString& file, const QByteArray& bytes) {
        QFile opened(file);
        ASSERT_TRUE(opened.open(QIODevice::WriteOnly));
        ASSERT_EQ(opened.write(bytes), bytes.size());
    }
};

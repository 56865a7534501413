#pragma once

#include "host/recording/CkRecordingReader.h"
#include "host/recording/CkRecordingWriter.h"
#include "tests/support/TestPicture.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkPicBufAPI.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <functional>
#include <gmock/gmock.h>

/// Runs the program in a folder of its own, without display and settings.
class ToFFixture : public ::testing::Test {
protected:
    struct SkRun {
        int code = -1;
        QString out;
        QString err;
    };

    static SkRun runIn(const QString& folder, const QStringList& arguments,
                       const std::function<void()>& prepare = {}) {
        QProcess process;
        process.setChildProcessModifier(prepare);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "XDG_CONFIG_HOME"}) {
            environment.remove(QString::fromLatin1(name));
        }
        environment.insert(QStringLiteral("HOME"), folder);
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(folder);
        process.start(QStringLiteral(TOF_PROGRAM), arguments);
        SkRun run;
        if (process.waitForFinished(240000) && process.exitStatus() == QProcess::NormalExit) {
            run.code = process.exitCode();
        }
        run.out = QString::fromUtf8(process.readAllStandardOutput());
        run.err = QString::fromUtf8(process.readAllStandardError());
        return run;
    }
    /// The arguments as one line, separated by spaces.
    SkRun tof(const char* line) const {
        return runIn(m_folder.path(), QString::fromLatin1(line).split(QLatin1Char(' '), Qt::SkipEmptyParts));
    }

    QString path(const char* name) const { return m_folder.filePath(QString::fromLatin1(name)); }
    QByteArray contents(const char* name) const {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void setContents(const char* name, const QByteArray& bytes) const {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }

    std::unique_ptr<CkRecordingReader> open(const char* name) const {
        auto reader = std::make_unique<CkRecordingReader>();
        QString error;
        EXPECT_TRUE(reader->open(path(name), &error)) << qPrintable(error);
        return reader;
    }

    /// A recording of float pictures of one row.
    void recordFloats(const char* name, const std::vector<std::vector<float>>& frames,
                      const CkImageMetadata& metadata, quint32 channels = 1) const {
        CkRecordingWriter writer;
        ASSERT_TRUE(writer.open(path(name), {}));
        for (const std::vector<float>& values : frames) {
            PaddedPicture made(quint32(values.size()) / channels, 1, channels, EkImageDataType::Float32);
            std::memcpy(made->row(0), values.data(), values.size() * sizeof(float));
            ASSERT_TRUE(writer.write(*made, metadata));
        }
    }
    static CkImageMetadata named(const QStringList& names) {
        CkImageMetadata metadata;
        metadata.channelNames = names;
        return metadata;
    }

    /// Raw pictures of two taps, one phase of 20 x 480; tap A of frame i is 100 + i + x, tap B 10.
    void recordTaps(
        const char* name, int frames,
        const std::function<void(CkImageMetadata&)>& change = [](CkImageMetadata&) {}) const {
        CkRecordingWriter writer;
        ASSERT_TRUE(writer.open(path(name), {QStringLiteral("<chain/>"), {}, {}}));
        for (int i = 0; i < frames; ++i) {
            PaddedPicture made(20, 480, 2, EkImageDataType::UInt16, 12);
            made.fill<quint16>(
                [i](quint32 x, quint32, quint32 c) { return quint16(c == 0 ? 100 + i + int(x) : 10); });
            CkImageMetadata metadata;
            metadata.tofFormatCode = ToFFormatCode::kRawX2Bits12;
            metadata.phasesCount = 1;
            metadata.frameNumber = quint64(i);
            change(metadata);
            ASSERT_TRUE(writer.write(*made, metadata, {{QStringLiteral("room"), i}}));
        }
    }

    QTemporaryDir m_folder;
};

#pragma once

#include "tests/host/viewer/ViewerFixture.h"
#include "tests/support/TestPicture.h"

#include "host/recording/CkRecordingReader.h"
#include "host/recording/CkVideoSource.h"
#include "host/viewer/base/CkFileOpener.h"
#include "host/viewer/playback/CkPlayback.h"
#include "host/viewer/playback/CkPlaybackBar.h"
#include "host/viewer/playback/CkRecordingController.h"
#include "host/viewer/playback/CkRecordingJob.h"
#include "host/viewer/playback/CkRecordingManager.h"
#include "host/viewer/playback/CkRecordingPanel.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkPicBufAPI.h"

#include <QAction>
#include <QSignalSpy>
#include <QTimer>

/// The viewer with recordings of a known content.
class RecordingViewFixture : public ViewerFixture {
protected:
    static constexpr int Patience = 30'000;

    QString path(const char* name) const { return m_folder.filePath(QString::fromLatin1(name)); }
    CkRecordingController* controller() const { return window()->recordings(); }
    CkRecordingManager* recordings() const { return controller()->manager(); }

    static quint16 sample(qint64 frame, quint32 x, quint32 y) {
        return quint16(frame * 100 + qint64(x) + qint64(y) * 10);
    }

    /// Frames of 32 x 24 samples, 40 ms apart.
    static void makeRecording(const QString& file, qint64 frames, const SkRecordingInfo& info = {}) {
        CkRecordingWriter writer;
        ASSERT_TRUE(writer.open(file, info)) << qPrintable(writer.errorMessage());
        for (qint64 frame = 0; frame < frames; ++frame) {
            TestPicture picture(32, 24, 1, EkImageDataType::UInt16);
            picture.fill<quint16>([frame](quint32 x, quint32 y, quint32) { return sample(frame, x, y); });
            picture->additionalData.frameNumber = quint64(frame);
            picture->additionalData.timestampNs = 1'000'000'000 + frame * 40'000'000;
            CkImageMetadata metadata;
            metadata.frameNumber = quint64(frame);
            ASSERT_TRUE(writer.write(*picture, metadata));
        }
        ASSERT_TRUE(writer.close());
    }

    bool openFile(const QString& file) const {
        QString error;
        const bool opened = window()->fileOpener()->open(file, error);
        EXPECT_TRUE(error.isEmpty()) << qPrintable(error);
        return opened;
    }

    CkVideoSource* player() const { return controller()->playback()->source(); }

    template <typename Condition>
    static bool waitFor(Condition condition) {
        return QTest::qWaitFor(condition, Patience);
    }
    bool waitForShown(qint64 frame) const {
        return waitFor([this, frame] {
            const CkMdiView* view = firstView();
            CkImageData* shown = view != nullptr ? const_cast<CkMdiView*>(view)->currentImage() : nullptr;
            return shown != nullptr && player() != nullptr && player()->position() == frame &&
                   shown->metadata().frameNumber == quint64(frame);
        });
    }

    QAction* action(const char* name) const { return controller()->findChild<QAction*>(QLatin1String(name)); }

    static bool waitUntilFinished(const CkRecordingJob* job) {
        return waitFor([job] { return job->state() == CkRecordingJob::EkState::Finished; });
    }
};

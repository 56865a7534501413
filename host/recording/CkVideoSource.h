#pragma once

#include "host/recording/IkFrameFile.h"
#include "host/recording/SkDepthScale.h"
#include "zuCore/CkImageSource.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

/// Plays a recording into a chain. Frames flow while the chain runs and playback is on; seeking and stepping
/// deliver one frame while it is paused.
///
/// Controls may be called from any thread. The signals come from the player's own thread.
class CkVideoSource : public CkImageSource {
    Q_OBJECT
    Q_CLASSINFO("CustomName", "Recording")
    Q_CLASSINFO("UniqueID", "com.orvane.Pictor.CkVideoSource")

public:
    enum EkPace : int {
        EveryFrame = 0, ///< as fast as the chain goes; it is given each frame once, in order
        RealTime = 1    ///< at the times at which the frames were taken, see speed(); late ones are skipped
    };
    static constexpr double SlowestSpeed = 0.1;
    static constexpr double FastestSpeed = 10.0;
    using ProgressFunction = IkFrameFile::ProgressFunction;

    Q_INVOKABLE CkVideoSource();
    ~CkVideoSource() override;

    /// Takes the place of the recording that was open, which stays when this fails. Playback starts at frame
    /// 0. False, with psError, when there is nothing to play or progress answered false. A damaged file opens
    /// with its readable frames, and its damage becomes the block's error message.
    bool openFile(const QString& sFileName, QString* psError, const ProgressFunction& progress = {});
    /// While it lives, recordings that loadSettings opens on this thread report to its function, which may
    /// call the opening off.
    class CkOpeningProgress {
    public:
        explicit CkOpeningProgress(const ProgressFunction& progress);
        ~CkOpeningProgress();
        CkOpeningProgress(const CkOpeningProgress&) = delete;
        CkOpeningProgress& operator=(const CkOpeningProgress&) = delete;
    };
    /// Plays the file that another source has open, from its beginning.
    void shareFile(const CkVideoSource& other);
    QString fileName() const;
    /// The recording, or null. Stays valid for whoever holds it.
    std::shared_ptr<const IkFrameFile> recording() const;

    /// Called on the player's thread behind each frame that it delivers when every frame counts, once the
    /// chain is done with it; may wait for whoever shows the frames, until interrupted answers true.
    void setAfterFrame(std::function<void(const std::function<bool()>& interrupted)> afterFrame);

    /// Plays one-channel pictures as depths in metres; other frames stay as they are. From the next frame on.
    void setDepthScale(const SkDepthScale& scale);
    SkDepthScale depthScale() const;

    qint64 frameCount() const; ///< 0 without a recording
    /// The frame delivered last; -1 before the first one.
    qint64 position() const;
    bool isPlaying() const;
    bool isLoop() const;
    int pace() const; ///< EkPace
    /// Of playback in real time: 1 as recorded, 2 twice as fast; between SlowestSpeed and FastestSpeed.
    double speed() const;
    /// Frames that real time left out since play.
    qint64 skippedFrames() const;

    /// Goes on behind the frame delivered last, after the last frame from the beginning.
    void play();
    void pause();
    /// Delivers the next frame and pauses. Behind the last frame: the first one with loop, otherwise nothing.
    void step();
    /// The next frame to be delivered; delivered at once while paused. False for a number that is none.
    bool seek(qint64 iFrame);
    void setLoop(bool bLoop);
    void setPace(int iPace);
    /// At once, also while a frame is waited for. Clamped; what is no number changes nothing.
    void setSpeed(double fSpeed);

    QString title() const override;
    bool sourceImageInfo(SkPicBufInfo& info, CkImageMetadata* pMetadata) const override;
    void setupStart() override;
    void setupStop() override;
    bool saveSettings(QDomDocument& doc, QDomElement& element) const override;
    /// A recording that cannot be opened becomes the block's error message.
    bool loadSettings(const QDomElement& element) override;
    CkChainable* clone() override;

signals:
    void positionChanged(qint64 iFrame);
    void playingChanged(bool bPlaying);
    /// After the last frame was delivered without loop.
    void finished();

private:
    struct SkShared;

    void useFile(const std::shared_ptr<const IkFrameFile>& file);
    void run();
    void playOne(std::unique_lock<std::mutex>& lock);
    bool waitUntilDue(std::unique_lock<std::mutex>& lock, qint64& iFrame);
    void showError(const QString& sText);
    void waitForChain(const std::function<bool()>& interrupted);
    bool deliverOne(std::unique_lock<std::mutex>& lock, CkImageData& frame);
    void advance(qint64 iFrame);

    std::unique_ptr<SkShared> m_d;
    std::thread m_thread;
};

#pragma once

#include "host/recording/CkFramePlayer.h"
#include "host/recording/IkFrameFile.h"
#include "zuCore/CkImageSource.h"

#include <memory>

/// Plays a recording into a chain. Frames flow while the chain runs and playback is on; seeking and stepping
/// deliver one frame while it is paused.
///
/// Controls may be called from any thread. playingChanged is emitted on the thread that calls play, pause
/// or step, all other playback signals on the player's own thread.
class CkVideoSource : public CkImageSource {
    Q_OBJECT
    Q_CLASSINFO("CustomName", "Recording")
    Q_CLASSINFO("UniqueID", "com.orvane.Pictor.CkVideoSource")

public:
    using ProgressFunction = IkFrameFile::ProgressFunction;

    Q_INVOKABLE CkVideoSource();
    ~CkVideoSource() override;

    /// Replaces the open recording, which remains open on failure. Playback starts at frame 0. False, with
    /// psError, when no frame can be read or progress returned false. For a damaged file, the readable
    /// frames are played, and the damage becomes the block's error message.
    bool openFile(const QString& sFileName, QString* psError, const ProgressFunction& progress = {});
    /// Plays the file that another source has open, from the beginning.
    void shareFile(const CkVideoSource& other);
    QString fileName() const;
    /// The recording, or null. Shared with the player; stays valid after another file is opened.
    std::shared_ptr<const IkFrameFile> recording() const;

    /// Called on the player's thread after each frame that it delivers at pace EveryFrame, once all blocks
    /// and sinks have handled it. May block until the frame is shown, but has to return when interrupted() is
    /// true.
    void setAfterFrame(CkFramePlayer::AfterFrame afterFrame);

    /// Plays one-channel pictures as depths in metres; other frames are unchanged. Takes effect with the next
    /// frame.
    void setDepthScale(const SkDepthScale& scale);
    SkDepthScale depthScale() const;

    qint64 frameCount() const; ///< 0 without a recording
    /// The frame delivered last; -1 before the first one.
    qint64 position() const;
    bool isPlaying() const;
    bool isLoop() const;
    int pace() const; ///< SkPlaybackSettings::EkPace
    /// Speed of playback in real time, see SkPlaybackSettings::speed.
    double speed() const;
    /// Frames skipped by playback in real time since play().
    qint64 skippedFrames() const;

    /// Continues after the frame delivered last, from the first frame when that was the last one.
    void play();
    void pause();
    /// Delivers the next frame and pauses. After the last frame: the first one with loop, otherwise nothing.
    void step();
    /// Sets the next frame to be delivered; it is delivered at once while paused. False for an invalid
    /// number.
    bool seek(qint64 iFrame);
    void setLoop(bool bLoop);
    void setPace(int iPace);
    /// Takes effect at once, also while waiting for a frame's time. Clamped; infinite and NaN speeds are
    /// ignored.
    void setSpeed(double fSpeed);

    QString title() const override;
    bool sourceImageInfo(SkPicBufInfo& info, CkImageMetadata* pMetadata) const override;
    void setupStart() override;
    void setupStop() override;
    bool saveSettings(QDomDocument& doc, QDomElement& element) const override;
    /// A recording that cannot be opened is no failure: the reason becomes the block's error message. Opening
    /// reports its progress to CkOpenProgressScope.
    bool loadSettings(const QDomElement& element) override;
    CkChainable* clone() override;

signals:
    void positionChanged(qint64 iFrame);
    void playingChanged(bool bPlaying);
    /// After the last frame was delivered without loop.
    void finished();

protected:
    void frameEvent(EkFrameEvent event) override;

private:
    void useFile(const std::shared_ptr<const IkFrameFile>& file);
    void changeSettings(const std::function<void(SkPlaybackSettings&)>& edit);

    QString m_missingFile; ///< named by a chain file but missing; kept for saveSettings
    std::unique_ptr<CkFramePlayer> m_player;
};

#pragma once

#include "chain/CkToFFrameProcessor.h"
#include "chain/CkToFPhaseCollector.h"
#include "chain/CkToFSectionReference.h"
#include "chain/EkTransformType.h"
#include "zuCore/CkImageProvider.h"

#include <atomic>
#include <optional>

class CkImageData;

/// Chain block that applies one ToF transform to every frame.
///
/// Threads as for every block: setupStart, processData and setupStop on the chain's thread, one at a time;
/// everything else on the user-interface thread. transform and setTransform may be called from any thread
/// but the chain's own.
class CkToFProcessCnbl : public CkImageProvider {
    Q_OBJECT
    Q_CLASSINFO("CustomName", "ToF Image Processing")
    Q_CLASSINFO("UniqueID", "com.orvane.Pictor.CkToFProcessCnbl")

public:
    using EkTransformType = ToFTransform::EkTransformType;
    using enum ToFTransform::EkTransformType;

    /// Transform "Amplitude".
    Q_INVOKABLE CkToFProcessCnbl();
    ~CkToFProcessCnbl() override;

    QString title() const override;
    bool acceptsDataFrom(CkChainable* pUpstream) override;
    int buffersCountInMemoryPool() const override;
    bool queryOutputImageInfo(const SkPicBufInfo& in, SkPicBufInfo& out, const CkImageMetadata* pInMeta,
                              CkImageMetadata* pOutMeta) override;

    void setupStart() override;
    void setupStop() override;
    IkChainData* processData(IkChainData* pData) override;

    bool saveSettings(QDomDocument& doc, QDomElement& element) const override;
    /// What is no number in the attribute "transform" counts as 0; numbers outside 0..6 are kept.
    bool loadSettings(const QDomElement& element) override;
    bool hasHelp() const override;
    void help(QString& sText) override;
    QWidget* configurationWidget() override;
    CkChainable* clone() override;

    EkTransformType transform() const { return m_transform.load(); }

    /// With bRestartChain a chain that is not stopped is stopped, and started again with the new transform
    /// before this returns, also when the transform is the same. Otherwise the value is only stored.
    void setTransform(EkTransformType transform, bool bRestartChain);

    /// Whether the angles seen so far make a set that "Amplitude" and "Depth" can work on. psMessage, which
    /// may be null, is set when they do not. Not while the chain runs.
    bool checkAllPhasesAngleValuesCompleteForProcessing(QString* psMessage);

    /// Whether the chain's first source is a camera or a video: only these deliver phases one by one.
    bool isInChainWithVideoSource();

private:
    bool negotiate(EkTransformType transform, const SkPicBufInfo& in, SkPicBufInfo& out,
                   const CkImageMetadata* pInMeta, CkImageMetadata* pOutMeta);
    bool checkAngles(EkTransformType transform, QString* psMessage) const;
    void prepareBuffers(const SkPicBufInfo& in, const CkImageMetadata& metadata);
    bool isFedByVideo();

    CkImageData* processFrame(EkTransformType transform, const CkImageData& data, const SkPicBufInfo& outInfo,
                              const CkImageMetadata& outMeta, bool& bPassThrough, QString& sMessage);
    const SkPicBuf* subtractReference(const SkPicBuf& picture, const CkImageMetadata& metadata);
    void gather(EkTransformType transform, const CkImageMetadata& metadata, SkToFFrame& frame,
                QString& sMessage);
    static QString tooLargeMessage(EkTransformType transform);
    bool takeOutputPicture(const SkPicBufInfo& info, bool bClear, SkPicBuf& picBuf);
    void renegotiateIfOutdated(const SkPicBufInfo& info);
    void publish(const QString& sMessage);

    std::atomic<EkTransformType> m_transform{Amplitude};
    QString m_sLastError;
    CkToFPhaseCollector m_collector;
    CkToFSectionReference m_reference;
    CkToFFrameProcessor m_processor;
    bool m_bSetTooLarge = false;
    std::optional<bool> m_fedByVideo; ///< the structure of a running chain does not change
    quint32 m_uiMismatches = 0;       ///< frames in a row that did not fit the pool
};

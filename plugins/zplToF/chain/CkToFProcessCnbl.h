#pragma once

#include "plugins/zplToF/transform/CkToFTransformer.h"
#include "plugins/zplToF/transform/EkTransformType.h"
#include "zuCore/CkImageProvider.h"

#include <atomic>

/// Chain block that applies one ToF transform to every frame.
///
/// Threads as for every block: setupStart, processData and setupStop on the chain's thread, one at a time;
/// everything else on the user-interface thread. transform and setTransform may be called from any thread
/// except the chain's own.
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
    /// An attribute "transform" that is not a number counts as 0; numbers outside 0..6 are stored as they
    /// are.
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
    bool takeFromPool(const SkPicBufInfo& info, bool bClear, CkPicture& picture);

    void publish(const QString& sMessage); ///< as the error message; empty for none
    void publishRefusal(const QString& sReason);
    /// Drops a frame that cannot be processed at all. A message of another origin is not replaced.
    void refuse(const QString& sReason);

    std::atomic<EkTransformType> m_transform{Amplitude};
    QString m_lastError;
    QString m_shownRefusal; ///< the refusal published last
    CkToFTransformer m_transformer;
};

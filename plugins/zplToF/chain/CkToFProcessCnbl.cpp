#include "plugins/zplToF/chain/CkToFProcessCnbl.h"

#include "plugins/zplToF/chain/CkToFProcessWidget.h"
#include "plugins/zplToF/transform/ToFNegotiation.h"
#include "plugins/zplToF/transform/ToFTransforms.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkMemoryPool.h"

#include <QDomElement>

namespace {

constexpr int kImageProcessingBlock = 41;

} // namespace

CkToFProcessCnbl::CkToFProcessCnbl() : CkImageProvider(kImageProcessingBlock) {}

CkToFProcessCnbl::~CkToFProcessCnbl() = default;

QString CkToFProcessCnbl::title() const {
    const SkToFTransform* const row = ToFTransforms::find(transform());
    return QStringLiteral("ToF ") + (row != nullptr ? QString(row->title) : QString());
}

bool CkToFProcessCnbl::acceptsDataFrom(CkChainable* pUpstream) {
    return qobject_cast<CkImageProvider*>(pUpstream) != nullptr;
}

int CkToFProcessCnbl::buffersCountInMemoryPool() const {
    return 1;
}

bool CkToFProcessCnbl::queryOutputImageInfo(const SkPicBufInfo& in, SkPicBufInfo& out,
                                            const CkImageMetadata* pInMeta, CkImageMetadata* pOutMeta) {
    return negotiate(transform(), in, out, pInMeta, pOutMeta);
}

bool CkToFProcessCnbl::negotiate(EkTransformType transform, const SkPicBufInfo& in, SkPicBufInfo& out,
                                 const CkImageMetadata* pInMeta, CkImageMetadata* pOutMeta) {
    const char* const error = ToFNegotiation::negotiate(transform, in, out, pInMeta, pOutMeta);
    m_lastError = error != nullptr ? tr(error) : QString();
    return error == nullptr;
}

void CkToFProcessCnbl::setTransform(EkTransformType transform, bool bRestartChain) {
    CkChain* const ownChain = bRestartChain ? chain() : nullptr;
    if (ownChain == nullptr) {
        m_transform = transform;
    } else {
        // No other thread may start the chain before the new value is stored.
        const CkChain::CkControlLock lock(ownChain);
        const bool running = !ownChain->stopped();
        if (running) {
            ownChain->stop();
        }
        m_transform = transform;
        if (running) {
            ownChain->start();
        }
    }
    emit configurationChanged();
}

bool CkToFProcessCnbl::checkAllPhasesAngleValuesCompleteForProcessing(QString* psMessage) {
    const char* const error = m_transformer.angleError(transform());
    if (error != nullptr && psMessage != nullptr) {
        *psMessage = tr(error);
    }
    return error == nullptr;
}

bool CkToFProcessCnbl::isInChainWithVideoSource() {
    const CkChain* const ownChain = chain();
    if (ownChain == nullptr) {
        return false;
    }
    const QList<CkChainable*> sources = ownChain->imageSources();
    if (sources.isEmpty()) {
        return false;
    }
    const QLatin1String name(sources.first()->metaObject()->className());
    return name == QLatin1String("CkCameraSource") || name == QLatin1String("CkVideoSource");
}

void CkToFProcessCnbl::setupStart() {
    CkImageProvider::setupStart();
    m_shownRefusal.clear();
    m_transformer.reset(isInChainWithVideoSource());
    // An error that will affect every frame is published before the first one arrives.
    const EkTransformType startTransform = transform();
    const SkToFTransform* const row = ToFTransforms::find(startTransform);
    EkFrameRefusal refusal = row != nullptr ? EkFrameRefusal::None : EkFrameRefusal::UnknownTransform;
    SkPicBufInfo in;
    CkImageMetadata metadata;
    if (inputImageInfo(in, &metadata)) {
        const EkFrameRefusal buffers = m_transformer.prepare(in, metadata);
        SkPicBufInfo out;
        if (!negotiate(startTransform, in, out, &metadata, nullptr)) {
            publishRefusal(m_lastError);
            return;
        }
        if (refusal == EkFrameRefusal::None && (out.width == 0 || out.height == 0)) {
            refusal = EkFrameRefusal::NoOutputPixels;
        } else if (refusal == EkFrameRefusal::None && row->input != SkToFTransform::EkInput::Frame) {
            refusal = buffers;
        }
    }
    if (refusal != EkFrameRefusal::None) {
        publishRefusal(tr(ToFFrames::refusalText(refusal)));
    }
}

void CkToFProcessCnbl::setupStop() {
    CkImageProvider::setupStop();
    m_shownRefusal.clear();
    m_transformer.clear();
}

IkChainData* CkToFProcessCnbl::processData(IkChainData* pData) {
    if (pData == nullptr || state() == Blocked) {
        return nullptr;
    }
    auto* const data = dynamic_cast<CkImageData*>(pData);
    if (data == nullptr) {
        refuse(tr(ToFFrames::refusalText(EkFrameRefusal::NoPicture)));
        return nullptr;
    }
    // Read once: another thread may store a new value while this frame is processed.
    const EkTransformType frameTransform = transform();
    SkToFFormat out;
    if (!negotiate(frameTransform, data->picBuf(), out.info, &data->metadata(), &out.metadata)) {
        refuse(m_lastError);
        return nullptr;
    }
    if (data->picBuf().data == nullptr) {
        refuse(tr(ToFFrames::refusalText(EkFrameRefusal::NoPixels)));
        return nullptr;
    }
    CkToFTransformer::SkResult result = m_transformer.process(
        frameTransform, *data, out, [this](const SkPicBufInfo& info, bool clear, CkPicture& picture) {
            return takeFromPool(info, clear, picture);
        });
    if (result.outcome == CkToFTransformer::EkOutcome::Refused) {
        publishRefusal(tr(ToFFrames::refusalText(result.refusal)));
        reportDropped();
    } else {
        publish(result.angleError != nullptr ? tr(result.angleError) : QString());
    }
    if (result.outcome == CkToFTransformer::EkOutcome::SameFrame) {
        return data;
    }
    if (result.frame != nullptr) {
        delete data;
    }
    return result.frame.release();
}

bool CkToFProcessCnbl::takeFromPool(const SkPicBufInfo& info, bool bClear, CkPicture& picture) {
    const size_t bytes = CkPicBufAPI::byteSize(info);
    CkMemoryPool* const pool = memoryPool();
    if (bytes == 0 || pool == nullptr) {
        return false;
    }
    if (CkPicBufAPI::AllocPicBufFromPool(pool, this, picture.picBuf(), info, bClear)) {
        return true;
    }
    // The chain counts the dropped frame and reports the reason. It also limits renegotiation, so that a
    // source that describes its frames wrongly does not stall it.
    if (chain() != nullptr && pool->bytesPerPicture(this) != bytes) {
        chain()->requestRenegotiation();
    }
    return false;
}

void CkToFProcessCnbl::publish(const QString& sMessage) {
    if (errorMessage() != sMessage) {
        setErrorMessage(sMessage);
    }
}

void CkToFProcessCnbl::publishRefusal(const QString& sReason) {
    m_shownRefusal = sReason;
    publish(sReason);
}

void CkToFProcessCnbl::refuse(const QString& sReason) {
    const QString shown = errorMessage();
    if (shown.isEmpty() || shown == m_shownRefusal) {
        publishRefusal(sReason);
    }
    reportDropped();
}

bool CkToFProcessCnbl::saveSettings(QDomDocument& doc, QDomElement& element) const {
    const bool saved = CkImageProvider::saveSettings(doc, element);
    element.setAttribute(QStringLiteral("transform"), int(transform()));
    return saved;
}

bool CkToFProcessCnbl::loadSettings(const QDomElement& element) {
    const bool loaded = CkImageProvider::loadSettings(element);
    const QString attribute = QStringLiteral("transform");
    if (element.hasAttribute(attribute)) {
        m_transform = EkTransformType(element.attribute(attribute).toInt());
        emit configurationChanged();
    }
    return loaded;
}

bool CkToFProcessCnbl::hasHelp() const {
    return true;
}

void CkToFProcessCnbl::help(QString& sText) {
    sText = tr(
        "Processes ToF images.<ul><li><b>Phase shift</b>: measured phase shift between sent and reflected "
        "light. [0; 2PI]</li><li><b>Amplitude</b>: strength of the reflected light</li><li><b>Intensity</b>: "
        "strength of the ambient light</li><li><b>Confidence</b>: standard deviation of phase shift "
        "measurement. (lower is better)</li></ul>Phase shift of 2PI is equivalent to the maximum measurable "
        "distance.");
}

QWidget* CkToFProcessCnbl::configurationWidget() {
    return new CkToFProcessWidget(this);
}

CkChainable* CkToFProcessCnbl::clone() {
    auto* const twin = new CkToFProcessCnbl;
    twin->m_transform = transform();
    return twin;
}

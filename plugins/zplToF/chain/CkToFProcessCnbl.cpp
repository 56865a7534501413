#include "plugins/zplToF/chain/CkToFProcessCnbl.h"

#include "plugins/zplToF/chain/CkToFProcessWidget.h"
#include "plugins/zplToF/transform/ToFAngles.h"
#include "plugins/zplToF/transform/ToFNegotiation.h"
#include "zuCore/CkChain.h"

#include <QDomElement>
#include <iterator>

namespace {

constexpr int imageProcessingBlock = 41;

QString titleWord(int transform) {
    static const char* const words[] = {"SetABPhase",    "Intensity",    "Amplitude", "Depth",
                                        "Concat phases", "AandBtoAminB", "SetHybrid"};
    const bool known = transform >= 0 && transform < int(std::size(words));
    return known ? QString::fromLatin1(words[transform]) : QString();
}

} // namespace

CkToFProcessCnbl::CkToFProcessCnbl() : CkImageProvider(imageProcessingBlock) {}

CkToFProcessCnbl::~CkToFProcessCnbl() = default;

QString CkToFProcessCnbl::title() const {
    return QStringLiteral("ToF ") + titleWord(transform());
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
    m_sLastError = error != nullptr ? tr(error) : QString();
    return error == nullptr;
}

void CkToFProcessCnbl::setTransform(EkTransformType transform, bool bRestartChain) {
    CkChain* const ownChain = bRestartChain ? chain() : nullptr;
    if (ownChain == nullptr) {
        m_transform = transform;
    } else {
        // Nobody may start the chain between the stop and the new value.
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
    return checkAngles(transform(), psMessage);
}

bool CkToFProcessCnbl::checkAngles(EkTransformType transform, QString* psMessage) const {
    const bool needsAngles = transform == Amplitude || transform == Depth;
    const char* const message = needsAngles ? ToFAngles::whyIncomplete(m_input.angles()) : nullptr;
    if (message != nullptr && psMessage != nullptr) {
        *psMessage = tr(message);
    }
    return message == nullptr;
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

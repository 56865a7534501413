#include "tests/plugins/zplToF/integration/ToFFixture.h"

#include "plugins/zplToF/chain/CkToFProcessCnbl.h"
#include "plugins/zplToF/view3d/3dMdiView.h"
#include "zuCore/CkCameraParameters.h"
#include "zuCore/CkChainManager.h"

namespace {

constexpr const char* kReadout = "tof_readout_mode";
constexpr const char* kFormat = "imgdataformat";

CkCameraParam::SkDescription integer(const char* name, int value) {
    CkCameraParam::SkDescription description;
    description.name = QLatin1String(name);
    description.kind = CkCameraParam::EkKind::Integer;
    description.value = CkValue(value);
    description.minimum = 0;
    description.maximum = 100;
    return description;
}

class ModelCamera : public IkCamera {
public:
    ModelCamera(const SkCameraInfo& info, const FakeCameraModel& model, std::shared_ptr<FakeCameraLog> log)
        : m_parameters(info, [model, log](const QList<CkCameraParam*>& params) {
              for (const CkCameraParam* param : params) {
                  log->committed << param->name() + QLatin1Char('=') + param->paramValue().toString();
              }
              return !model.refuseCommits;
          }) {
        if (model.readoutMode >= 0) {
            m_parameters.addParam(integer(kReadout, model.readoutMode));
        }
        if (model.dataFormat >= 0) {
            CkCameraParam::SkDescription format = integer(kFormat, model.dataFormat);
            format.readOnly = model.refuseFormats;
            m_parameters.addParam(format);
        }
    }
    CkCameraParameters* parameters() override { return &m_parameters; }
    bool frameInfo(SkPicBufInfo&, CkImageMetadata*) const override { return false; }
    bool start(FrameFunction, QString*) override { return m_running = true; }
    void stop() override { m_running = false; }
    bool isRunning() const override { return m_running; }
    void setPaused(bool) override {}
    void step() override {}

private:
    CkCameraParameters m_parameters;
    bool m_running = false;
};

/// The driver of all fake cameras; the next one opened has the parameters that the test set last.
class ModelDriver : public IkCameraDriver {
public:
    QString name() const override { return QStringLiteral("models"); }
    QList<SkCameraInfo> availableCameras() const override { return {nextInfo}; }
    std::unique_ptr<IkCamera> open(const QString& sId, QString*) override {
        return sId == nextInfo.id ? std::make_unique<ModelCamera>(nextInfo, nextModel, nextLog) : nullptr;
    }

    SkCameraInfo nextInfo;
    FakeCameraModel nextModel;
    std::shared_ptr<FakeCameraLog> nextLog;
};

ModelDriver& modelDriver() {
    static ModelDriver* const driver = [] {
        auto owned = std::make_unique<ModelDriver>();
        ModelDriver* raw = owned.get();
        CkCameraManager::instance()->addDriver(std::move(owned));
        return raw;
    }();
    return *driver;
}

} // namespace

int FakeSource::alive = 0;

FakeCamera::FakeCamera(const FakeCameraModel& model) {
    static int count = 0;
    ModelDriver& driver = modelDriver();
    driver.nextInfo = {};
    driver.nextInfo.id = QStringLiteral("model-%1").arg(++count);
    driver.nextInfo.name = driver.nextInfo.id;
    driver.nextInfo.sensorType = model.sensorType;
    driver.nextModel = model;
    driver.nextLog = m_log;
    m_handle = CkCameraManager::instance()->openCamera(driver.nextInfo.id);
    const CkCameraParameters* parameters = CkCameraManager::instance()->cameraParameters(m_handle);
    QObject::connect(parameters, &CkCameraParameters::committed, parameters,
                     [log = m_log](const QList<CkCameraParam*>&) { ++log->commits; });
}

FakeCamera::~FakeCamera() {
    close();
}

void FakeCamera::close() {
    CkCameraManager::instance()->closeCamera(m_handle);
}

CkCameraParameters* FakeCamera::parameters() const {
    return CkCameraManager::instance()->cameraParameters(m_handle);
}

int FakeCamera::value(const char* name) const {
    const CkCameraParam* param =
        parameters() != nullptr ? parameters()->findParam(QLatin1String(name)) : nullptr;
    return param != nullptr ? param->committedValue().toInt() : -1;
}

bool describe(FakeKind kind, bool separatePhases, SkPicBufInfo& info, CkImageMetadata& metadata) {
    info = {};
    metadata = {};
    info.width = 8;
    info.height = 8;
    info.channels = 1;
    info.bitsPerChannel = 12;
    info.dataType = EkImageDataType::UInt16;
    info.storageFormat = EkDataStorageFormat::Interleaved;
    switch (kind) {
    case FakeKind::Unknown:
        return false;
    case FakeKind::Grey:
        break;
    case FakeKind::AB:
        info.channels = 2;
        metadata.tofFormatCode = ToFFormatCode::kRawX2Bits12;
        metadata.channelNames = QStringList{QStringLiteral("A"), QStringLiteral("B")};
        break;
    case FakeKind::AminB:
        info.dataType = EkImageDataType::Int16;
        metadata.tofFormatCode = ToFFormatCode::kAminusBBits12;
        break;
    case FakeKind::PhaseShift:
    case FakeKind::Depth:
        info.channels = 2;
        info.bitsPerChannel = 32;
        info.dataType = EkImageDataType::Float32;
        metadata.channelNames =
            QStringList{kind == FakeKind::Depth ? QStringLiteral("Depth") : QStringLiteral("Phase shift"),
                        QStringLiteral("Confidence")};
        break;
    case FakeKind::Hybrid:
        info.channels = 3;
        info.colorFilterArray = EkColorFilterArray::RawX3Hybrid;
        metadata.colorFilterArray = 13;
        break;
    }
    if (kind == FakeKind::AB || kind == FakeKind::AminB) {
        metadata.phasesCount = separatePhases ? 1 : 4;
        metadata.phaseSequenceLength = separatePhases ? 4 : 0;
    }
    info.lineSize = info.width * info.channels * sampleBytes(info.dataType);
    return true;
}

bool FakeSource::sourceImageInfo(SkPicBufInfo& info, CkImageMetadata* pMetadata) const {
    CkImageMetadata metadata;
    FakeKind delivered = kind;
    if (follows != nullptr && follows->value(kReadout) == 4 && follows->value(kFormat) == 13) {
        delivered = FakeKind::AB;
    } else if (follows != nullptr && follows->value(kReadout) == -1 && follows->value(kFormat) == 18) {
        delivered = FakeKind::Hybrid;
    }
    const bool known = describe(delivered, separatePhases, info, metadata);
    if (known && pMetadata != nullptr) {
        *pMetadata = metadata;
    }
    return known;
}

bool FailingChainHost::insertAfter(CkChain* pChain, CkChainable* pNew, CkChainable* pAfter) {
    calls << QStringLiteral("insertAfter");
    return !failing.contains(QStringLiteral("insertAfter")) &&
           CkToFChainHost::insertAfter(pChain, pNew, pAfter);
}

bool FailingChainHost::branchAfter(CkChain* pChain, CkChainable* pNew, CkChainable* pAfter) {
    calls << QStringLiteral("branchAfter");
    return !failing.contains(QStringLiteral("branchAfter")) &&
           CkToFChainHost::branchAfter(pChain, pNew, pAfter);
}

bool FailingChainHost::remove(CkChain*& pChain, CkChainable* pBlock, bool bKeepBlock) {
    calls << QStringLiteral("remove");
    return !failing.contains(QStringLiteral("remove")) && CkToFChainHost::remove(pChain, pBlock, bKeepBlock);
}

CkChain* FailingChainHost::createChain() {
    calls << QStringLiteral("createChain");
    return failing.contains(QStringLiteral("createChain")) ? nullptr : CkToFChainHost::createChain();
}

void FailingChainHost::closeChain(CkChain* pChain) {
    calls << QStringLiteral("closeChain");
    CkToFChainHost::closeChain(pChain);
}

void FailingChainHost::deleteChainable(CkChainable* pBlock) {
    calls << QStringLiteral("deleteChainable");
    CkToFChainHost::deleteChainable(pBlock);
}

QString boxLine(const SkToFMessage& message) {
    return QStringLiteral("%1 | %2 | %3 | %4 | %5")
        .arg(int(message.icon))
        .arg(message.title, message.text)
        .arg(int(message.buttons))
        .arg(int(message.defaultButton));
}

ChainLog::ChainLog() {
    for (CkChain* chain : CkChainManager::instance()->chains()) {
        watch(chain);
    }
    QObject::connect(CkChainManager::instance(), &CkChainManager::chainCreated, &m_context,
                     [this](CkChain* chain) { watch(chain); });
}

ChainLog::~ChainLog() = default;

void ChainLog::watch(CkChain* chain) {
    QObject::connect(chain, &CkChain::runningChanged, &m_context, [this](bool on) { runs << on; });
}

ToFFixture::ToFFixture() {
    actions.setMessageFunction([this](const SkToFMessage& message) {
        boxes.push_back(message);
        ranAtBoxes << chainRuns();
        return answer;
    });
    actions.setCalibrationFunction([this](CkMdiView* shown, QWidget*) {
        calibrated << shown;
        ranAtCalibrations << chainRuns();
    });
}

ToFFixture::~ToFFixture() {
    const QList<CkChain*> chains = CkChainManager::instance()->chains();
    for (CkChain* chain : chains) {
        chain->stop();
    }
    for (const QPointer<CkToF3DMdiView>& opened : actions.views()) {
        delete opened.data();
    }
    if (app.mdiView(view != nullptr ? view->viewId() : -1) != nullptr) {
        app.closingSucceeds = true;
        app.closeView(view->viewId());
    }
    for (CkChain* chain : CkChainManager::instance()->chains()) {
        CkChainManager::instance()->closeChain(chain);
    }
}

void ToFFixture::open(FakeKind kind, bool separatePhases, const FakeCamera* camera) {
    m_chain = CkChainManager::instance()->createChain();
    source = new FakeSource(kind, separatePhases);
    if (camera != nullptr) {
        source->handles = {camera->handle()};
        source->follows = kind == FakeKind::Grey ? camera : nullptr;
    }
    CkChainManager::instance()->insertAfter(m_chain, source, nullptr);
    app.openImageView(source);
    const QString opened = app.calls.takeLast();
    view = app.mdiView(opened.section(QLatin1Char(' '), 1).toInt());
    app.activeView = view->viewId();
}

QList<int> ToFFixture::transforms(CkChain* chain) {
    QList<int> found;
    const QList<CkChainable*> blocks = chain->blocks();
    for (CkChainable* block : blocks) {
        if (const auto* tof = qobject_cast<CkToFProcessCnbl*>(block)) {
            found << int(tof->transform());
        }
    }
    return found;
}

QStringList ToFFixture::boxTexts() const {
    QStringList texts;
    for (const SkToFMessage& box : boxes) {
        texts << box.text;
    }
    return texts;
}

QStringList ToFFixture::boxLines() const {
    QStringList lines;
    for (const SkToFMessage& box : boxes) {
        lines << boxLine(box);
    }
    return lines;
}

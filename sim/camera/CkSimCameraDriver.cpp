#include "sim/camera/CkSimCameraDriver.h"

#include "sim/camera/CkSimCamera.h"

#include "zuCore/ToFVocabulary.h"

#include <QCoreApplication>

#include <new>
#include <utility>

const QString CkSimCameraDriver::kWaveId = QStringLiteral("sim:wave");
const QString CkSimCameraDriver::kHybridId = QStringLiteral("sim:hybrid");
const QString CkSimCameraDriver::kGreyId = QStringLiteral("sim:grey");

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(CkSimCameraDriver)
};

QList<std::pair<EkSimCameraKind, SkCameraInfo>> cameras() {
    return {{EkSimCameraKind::Wave,
             {CkSimCameraDriver::kWaveId, Texts::tr("Simulated ToF camera"), QStringLiteral("SIM-CW-640"),
              QStringLiteral("SIM0001"), 0}},
            {EkSimCameraKind::Hybrid,
             {CkSimCameraDriver::kHybridId, Texts::tr("Simulated hybrid ToF camera"),
              QStringLiteral("SIM-HY-832"), QStringLiteral("SIM0002"), ToFSensorType::kHybrid}},
            {EkSimCameraKind::Grey,
             {CkSimCameraDriver::kGreyId, Texts::tr("Simulated grey camera"), QStringLiteral("SIM-GR-640"),
              QStringLiteral("SIM0003"), 0}}};
}

} // namespace

QString CkSimCameraDriver::name() const {
    return Texts::tr("Simulated cameras");
}

QList<SkCameraInfo> CkSimCameraDriver::availableCameras() const {
    QList<SkCameraInfo> infos;
    for (const auto& [kind, info] : cameras()) {
        infos.append(info);
    }
    return infos;
}

std::unique_ptr<IkCamera> CkSimCameraDriver::open(const QString& sId, QString* psError) {
    for (const auto& [kind, info] : cameras()) {
        if (info.id != sId) {
            continue;
        }
        try {
            return std::make_unique<CkSimCamera>(kind, info);
        } catch (const std::bad_alloc&) {
            if (psError) {
                *psError = Texts::tr("Not enough memory to open \"%1\".").arg(info.name);
            }
            return nullptr;
        }
    }
    if (psError) {
        *psError = Texts::tr("There is no simulated camera \"%1\".").arg(sId);
    }
    return nullptr;
}

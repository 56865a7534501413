#pragma once

#include "zuCore/IkCameraDriver.h"

/// Driver of the simulated cameras: a continuous-wave ToF camera, a hybrid ToF camera and a plain grey one.
/// They are always available; each can be opened several times, giving independent cameras.
class CkSimCameraDriver : public IkCameraDriver {
public:
    static const QString kWaveId;
    static const QString kHybridId;
    static const QString kGreyId;

    QString name() const override;
    QList<SkCameraInfo> availableCameras() const override;
    /// A CkSimCamera.
    std::unique_ptr<IkCamera> open(const QString& sId, QString* psError) override;
};

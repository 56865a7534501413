#pragma once

#include "zuCore/IkCameraDriver.h"

#include <QList>
#include <memory>
#include <vector>

/// The camera drivers of the program, and the cameras that are held apart: treated as unplugged, whatever
/// their drivers say. User-interface thread. What a driver throws counts as a failure of that driver alone.
class CkCameraDrivers {
public:
    void add(std::unique_ptr<IkCameraDriver> driver) { m_drivers.push_back(std::move(driver)); }

    /// A new camera object of the driver that offers it; fills info. Null on failure, with sReason as the
    /// driver gives it, or unchanged when no driver offers the camera.
    std::unique_ptr<IkCamera> open(const QString& sId, SkCameraInfo& info, QString& sReason) const;
    /// What the drivers offer, held apart or not. bComplete: all of them answered.
    QList<SkCameraInfo> offered(bool& bComplete) const;
    static bool contains(const QList<SkCameraInfo>& cameras, const QString& sId);

    void holdApart(const SkCameraInfo& info) { m_heldApart.append(info); }
    bool endHoldApart(const QString& sId); ///< False for a camera that was not held apart.
    bool isHeldApart(const QString& sId) const { return contains(m_heldApart, sId); }
    const QList<SkCameraInfo>& heldApart() const { return m_heldApart; }

private:
    std::vector<std::unique_ptr<IkCameraDriver>> m_drivers;
    QList<SkCameraInfo> m_heldApart;
};

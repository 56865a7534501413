#pragma once

#include "zuCore/IkCameraDriver.h"

#include <QList>
#include <memory>
#include <vector>

/// The camera drivers of the program, and the cameras that are held apart: treated as unplugged although
/// their drivers offer them. User-interface thread. An exception from a driver is a failure of that
/// driver only.
class CkCameraDrivers {
public:
    void add(std::unique_ptr<IkCameraDriver> driver) { m_drivers.push_back(std::move(driver)); }

    /// Creates a camera object through the driver that offers the camera, and fills info. Null on failure,
    /// with the driver's reason in sReason; sReason is unchanged when no driver offers the camera.
    std::unique_ptr<IkCamera> open(const QString& sId, SkCameraInfo& info, QString& sReason) const;
    /// All cameras that the drivers offer, including those held apart. bComplete: every driver answered.
    QList<SkCameraInfo> offered(bool& bComplete) const;
    static bool contains(const QList<SkCameraInfo>& cameras, const QString& sId);

    void withhold(const SkCameraInfo& info) { m_withheld.append(info); }
    bool endWithhold(const QString& sId); ///< False for a camera that was not withheld.
    bool isWithheld(const QString& sId) const { return contains(m_withheld, sId); }
    const QList<SkCameraInfo>& withheld() const { return m_withheld; }

private:
    std::vector<std::unique_ptr<IkCameraDriver>> m_drivers;
    QList<SkCameraInfo> m_withheld;
};

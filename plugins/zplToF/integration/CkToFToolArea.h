#pragma once

#include <QCoreApplication>

class QObject;

/// The two buttons that a ToF camera's panel gets. User-interface thread.
class CkToFToolArea {
    Q_DECLARE_TR_FUNCTIONS(CkToFPlugin)

public:
    /// Builds the area and hands it to the host to place. pReceiver has the slots
    /// on_actOpenToF3dViewStartAcq() and on_actOpenAllToFViewsStartAcq(). False for a camera that has no ToF
    /// readout mode or has gone, and without a host. Where the host has no panel for the camera, nothing is
    /// left behind.
    static bool addToCameraPanel(void* cameraHandle, QObject* pReceiver);
};

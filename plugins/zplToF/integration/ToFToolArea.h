#pragma once

class QObject;

/// The two buttons that a ToF camera's panel gets. User-interface thread.
namespace ToFToolArea {

/// Builds the area and hands it to the host to place. pReceiver has the slots
/// on_actOpenToF3dViewStartAcq() and on_actOpenAllToFViewsStartAcq(). False for a camera that has no ToF
/// readout mode or has gone, and without a host. Where the host has no panel for the camera, nothing is
/// left behind.
bool addToCameraPanel(void* cameraHandle, QObject* pReceiver);

} // namespace ToFToolArea

#pragma once

class QObject;

/// The two buttons in the panel of a ToF camera. User-interface thread.
namespace ToFToolArea {

/// Builds the area and passes it to the host, which places it. pReceiver has the slots
/// on_actOpenToF3dViewStartAcq() and on_actOpenAllToFViewsStartAcq(). False for a camera without ToF readout
/// mode, for a closed one, and without a host. Builds nothing when the host has no panel for the camera.
bool addToCameraPanel(void* cameraHandle, QObject* pReceiver);

} // namespace ToFToolArea

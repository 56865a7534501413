#pragma once

#include "zuCore/CkImageMetadata.h"
#include "zuCore/SkPicBuf.h"

class CkChainable;
class CkMdiView;

/// What kind of ToF data a view or a block delivers; all false until a format is known.
struct SkToFKinds {
    bool isAB = false;           ///< raw, taps A and B
    bool isAminB = false;        ///< raw, A minus B
    bool isPhaseShift = false;   ///< phase shift or depth
    bool separatePhases = false; ///< phases or sections come as separate images
    bool isHybrid = false;       ///< raw, X1 X2 X3

    /// Whether anything is there that a ToF view can work with.
    bool any() const { return isAB || isAminB || isPhaseShift || isHybrid; }
    /// Whether it is raw data that a processing block can work with.
    bool anyRaw() const { return isAB || isAminB || isHybrid; }
};

/// Recognises ToF cameras and ToF data, and sets a camera up. User-interface thread. Every check returns
/// false rather than fail, also for cameras that have been closed and for null pointers.
namespace ToFCameraCheck {

/// Sensor type of the hybrid camera, which has no readout mode.
inline constexpr quint32 kHybridSensorType = 13;

bool isToFCamera(void* cameraHandle);

/// cameraHandle gets the handle of the view's camera, null for a view without one.
bool viewBelongsToToFCamera(int iViewId, void*& cameraHandle);

/// The format a view shows: that of its block when known, else that of its current image. info and
/// metadata may be null.
bool imageFormatAtView(CkMdiView* pView, SkPicBufInfo* pInfo, CkImageMetadata* pMetadata);

/// The same, summarised; all flags are false when no format is known (false).
bool imageFormatAtView(CkMdiView* pView, bool& isAB, bool& isAminB, bool& isPhaseShift, bool& separatePhases,
                       bool& isHybrid);
bool imageFormatAtView(CkMdiView* pView, SkToFKinds& kinds);

/// The flags of a block's output format. False when it is not a block of pictures or unknown.
bool checkToFFormat(CkChainable* pBlock, bool& isAB, bool& isAminB, bool& isPhaseShift, bool& separatePhases,
                    bool& isHybrid);
bool checkToFFormat(CkChainable* pBlock, SkToFKinds& kinds);

/// Puts a ToF camera into a readout mode and data format that the processing understands, in one commit,
/// and starts the chain of the view's block when it is stopped (pView may be null). False when it is no
/// ToF camera or refuses; its values are then as before. Receivers of the camera's signals may close the
/// view and the camera.
bool switchCameraTo3dFormat(CkMdiView* pView, void* cameraHandle);

} // namespace ToFCameraCheck

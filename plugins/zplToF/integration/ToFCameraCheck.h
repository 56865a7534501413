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

    /// Whether a ToF view can work with it.
    bool any() const { return isAB || isAminB || isPhaseShift || isHybrid; }
    /// Whether it is raw data, input of a processing block.
    bool anyRaw() const { return isAB || isAminB || isHybrid; }
};

/// Recognises ToF cameras and ToF data, and sets a camera up. User-interface thread. Checks
/// never fail: they return false for cameras that have been closed and for null pointers.
namespace ToFCameraCheck {

bool isToFCamera(void* cameraHandle);

/// cameraHandle: set to the handle of the view's camera, null for a view without one.
bool viewBelongsToToFCamera(int iViewId, void*& cameraHandle);

/// The format a view shows: that of its block when known, else that of its current image. False when neither
/// is known. pInfo and pMetadata may be null.
bool imageFormatAtView(CkMdiView* pView, SkPicBufInfo* pInfo, CkImageMetadata* pMetadata);

/// The same as flags; all are false when no format is known.
bool imageFormatAtView(CkMdiView* pView, bool& isAB, bool& isAminB, bool& isPhaseShift, bool& separatePhases,
                       bool& isHybrid);
bool imageFormatAtView(CkMdiView* pView, SkToFKinds& kinds);

/// The same for the output format of a block. False when pBlock is not a CkImageProvider or does not know its
/// format.
bool checkToFFormat(CkChainable* pBlock, bool& isAB, bool& isAminB, bool& isPhaseShift, bool& separatePhases,
                    bool& isHybrid);
bool checkToFFormat(CkChainable* pBlock, SkToFKinds& kinds);

/// Sets a ToF camera to a readout mode and data format that the processing supports, in one commit, and
/// starts the chain of the view's block if it is stopped (pView may be null). False when the camera is not a
/// ToF camera or refuses a value; its values are then unchanged. Receivers of the camera's signals may close
/// the view and the camera.
bool switchCameraTo3dFormat(CkMdiView* pView, void* cameraHandle);

} // namespace ToFCameraCheck

#pragma once

#include "sim/synth/SkSimExposure.h"

#include "zuCore/ToFVocabulary.h"

enum class EkSimCameraKind { Wave, Hybrid, Grey };

enum class EkSimScene { Room = 0, Wall = 1 };

/// All settings of a simulated camera; each kind uses a subset. Plain data; the defaults are those of the
/// camera parameters.
struct SkSimSettings {
    double frameRate = 30.0; ///< sets per second
    SkSimExposure exposure;
    EkSimScene scene = EkSimScene::Room;
    double wallDistanceM = 2.0;
    double wallReflectivity = 0.8;
    double focalLengthMm = 3.5;
    bool reportFocalLength = false; ///< whether the metadata of frames contain the focal length
    int dataFormat = 0;             ///< see ToFDataFormat
    int converterBits = 12;         ///< of the 16-bit formats: 12 or 16
    bool separateImages = false;    ///< one image per phase or section instead of a stack

    int readoutMode = ToFReadoutMode::kAandB; ///< any other than kAandB and kAminusB: no ToF readout
    double modulationMHz = 20.0;
    int phases = 4; ///< 1, 2, 4 or 8

    double pulseNs = 40.0;
    int sections = 1;    ///< 1 to 4
    int sectionMode = 0; ///< see ToFSectionMode
};

#include "plugins/zplToF/cloud/SkToFOpticalPath.h"

#include "zuCore/CkImageMetadata.h"

void SkToFOpticalPath::adoptCameraValues(const CkImageMetadata& metadata) {
    if (metadata.modulationFrequency > 0.0F) {
        modulationFreqMHz = metadata.modulationFrequency;
    }
    if (metadata.lensFocalLength > 0.0F) {
        lensFocalLengthMM = metadata.lensFocalLength;
    }
}

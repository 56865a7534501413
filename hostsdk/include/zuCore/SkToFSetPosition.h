#pragma once

#include "zuCore/CkImageMetadata.h"
#include "zuCore/ToFVocabulary.h"

/// The position of an image in a set: the phases, or the sections of a hybrid measurement, that arrive as
/// separate images and make one measurement together. A reference section arrives before the images of its
/// set and does not count as one of them. Plain data, as the metadata state it; nothing is checked.
struct SkToFSetPosition {
    qint64 count = 0;      ///< images of the set; 0 or negative: none
    qint64 index = 0;      ///< from 0; negative for a reference section, and may be outside the set
    qint64 references = 0; ///< reference sections before the images: 0 or 1

    /// The position among the sections for hybrid input, otherwise among the phases.
    static SkToFSetPosition of(const CkImageMetadata& metadata, bool bHybrid) {
        if (!bHybrid) {
            return {metadata.phaseSequenceLength, metadata.phaseSequenceIndex, 0};
        }
        const qint64 references = ToFSectionMode::referenceSections(metadata.sectionMode);
        return {metadata.sectionCount - references, metadata.sectionIndex - references, references};
    }

    /// Whether the image is the first to arrive of its set, reference section included.
    bool isFirstToArrive() const { return index == -references; }

    /// Whether the image is one of several phases that arrive as separate images.
    static bool isSeparatePhase(const CkImageMetadata& metadata) {
        return metadata.phaseSequenceLength > 0 && metadata.phaseSequenceLength != metadata.phasesCount;
    }
};

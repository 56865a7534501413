#pragma once

/// Why a frame has no output, other than that its set is not complete yet.
enum class EkFrameRefusal {
    None,
    NoPicture,        ///< data of another kind
    NoPixels,         ///< a picture without data
    UnknownTransform, ///< a number from a chain file that is no transform
    SetTooLarge,      ///< beyond CkToFPhaseCollector::kMaximumBytes
    NoMemory,         ///< no memory for a work buffer at set-up
    SetDiffers,       ///< the images have another number or format than at set-up
    OutsideSet,       ///< index of an image outside its set
    NoReference,      ///< the section needs a reference, but there was none at set-up
    ReferenceDiffers, ///< a section of another format than its reference
    NothingToMerge,   ///< hybrid, fewer than two sections
    NoOutputPixels,   ///< the output would have no row or column
    NotSupported      ///< no operation for this sample type or layout
};

namespace ToFFrames {

/// The text for the user, untranslated (context CkToFProcessCnbl); empty for None.
const char* refusalText(EkFrameRefusal refusal);

} // namespace ToFFrames

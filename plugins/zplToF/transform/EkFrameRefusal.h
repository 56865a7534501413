#pragma once

namespace ToFFrames {

/// Why nothing comes of a frame, other than that its set is not complete yet.
enum class EkRefusal {
    None,
    NoPicture,        ///< data of another kind
    NoPixels,         ///< a picture without data
    UnknownTransform, ///< as a chain file may hold one
    SetTooLarge,      ///< beyond CkToFPhaseCollector::maximumBytes
    NoMemory,         ///< a work buffer could not be had at set-up
    SetDiffers,       ///< the images have another number or format than at set-up
    OutsideSet,       ///< index of an image outside its set
    NoReference,      ///< a section to subtract from, set up without
    ReferenceDiffers, ///< a section of another format than its reference
    NothingToMerge,   ///< hybrid, less than two sections
    NoOutputPixels,   ///< no row or column would come out
    NotSupported      ///< sample type or layout that no operation takes
};

/// The text for the user, untranslated (context CkToFProcessCnbl); empty for None.
const char* refusalText(EkRefusal refusal);

} // namespace ToFFrames

#include "plugins/zplToF/transform/EkFrameRefusal.h"

#include <QtGlobal>

const char* ToFFrames::refusalText(EkFrameRefusal refusal) {
    switch (refusal) {
    case EkFrameRefusal::None:
        break;
    case EkFrameRefusal::NoPicture:
        return QT_TRANSLATE_NOOP("CkToFProcessCnbl", "The block works on pictures only.");
    case EkFrameRefusal::NoPixels:
        return QT_TRANSLATE_NOOP("CkToFProcessCnbl", "The picture has no pixels.");
    case EkFrameRefusal::UnknownTransform:
        return QT_TRANSLATE_NOOP("CkToFProcessCnbl",
                                 "The block is set to a transform that does not exist. Choose one of those "
                                 "in its settings.");
    case EkFrameRefusal::SetTooLarge:
        return QT_TRANSLATE_NOOP("CkToFProcessCnbl",
                                 "The set of phase images needs more than 1 GiB of memory.");
    case EkFrameRefusal::NoMemory:
        return QT_TRANSLATE_NOOP("CkToFProcessCnbl", "There is not enough memory for the images of a set.");
    case EkFrameRefusal::SetDiffers:
        return QT_TRANSLATE_NOOP("CkToFProcessCnbl",
                                 "The images of the set have another number or size than the chain was "
                                 "started for. Stop the chain and start it again.");
    case EkFrameRefusal::OutsideSet:
        return QT_TRANSLATE_NOOP("CkToFProcessCnbl", "The index of the image is outside its set.");
    case EkFrameRefusal::NoReference:
        return QT_TRANSLATE_NOOP("CkToFProcessCnbl",
                                 "The chain was started for sections without a reference section. Stop the "
                                 "chain and start it again.");
    case EkFrameRefusal::ReferenceDiffers:
        return QT_TRANSLATE_NOOP("CkToFProcessCnbl",
                                 "The section has another size or sample type than its reference section.");
    case EkFrameRefusal::NothingToMerge:
        return QT_TRANSLATE_NOOP(
            "CkToFProcessCnbl", "There is nothing to merge: the hybrid picture has fewer than two sections.");
    case EkFrameRefusal::NoOutputPixels:
        return QT_TRANSLATE_NOOP("CkToFProcessCnbl",
                                 "Nothing is left of the picture: it has too few rows for its phases, or too "
                                 "few columns.");
    case EkFrameRefusal::NotSupported:
        return QT_TRANSLATE_NOOP("CkToFProcessCnbl",
                                 "Pictures of this sample type or layout cannot be processed.");
    }
    return "";
}

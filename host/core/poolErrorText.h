#pragma once

#include "zuCore/CkChain.h"
#include "zuCore/CkPicBufAPI.h"

/// Why a block has no pictures for an output of this format.
inline QString poolErrorText(const SkPicBufInfo& output) {
    return CkPicBufAPI::byteSize(output) == 0
               ? CkChain::tr("The output of the block has no pixels.")
               : CkChain::tr("There is not enough memory for the pictures of the block.");
}

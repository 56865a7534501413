#pragma once

#include "host/viewer/picture/CkImageView.h"
#include "tests/support/TestFrames.h"

/// A picture view that tests feed with frames.
class CkFedImageView : public CkImageView {
public:
    CkFedImageView() : CkImageView(nullptr) {}
    void feed(std::unique_ptr<CkImageData> frame) { showFrame(std::move(frame)); }
};

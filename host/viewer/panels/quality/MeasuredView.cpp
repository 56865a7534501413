#include "host/viewer/panels/quality/MeasuredView.h"

#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/picture/CkImageView.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkImageData.h"
#include "zuCore/ToFVocabulary.h"

namespace {

const CkChain* chainOf(const CkMdiView* view) {
    const CkChainable* block = view != nullptr ? view->dataProvider() : nullptr;
    return block != nullptr ? block->chain() : nullptr;
}

} // namespace

CkImageView* measuredViewFor(CkMdiView* view, const CkViewArea& area) {
    if (auto* image = qobject_cast<CkImageView*>(view)) {
        return image;
    }
    if (auto* connected =
            view != nullptr ? qobject_cast<CkImageView*>(area.view(view->connectedViewId())) : nullptr) {
        return connected;
    }
    const CkChain* const chain = chainOf(view);
    CkImageView* found = nullptr;
    for (CkMdiView* candidate : area.views()) {
        auto* const image = qobject_cast<CkImageView*>(candidate);
        if (image == nullptr || chain == nullptr || chainOf(image) != chain) {
            continue;
        }
        // A cloud is made from distances; without them any picture of the chain is used.
        const CkImageData* const frame = image->currentImage();
        const QString first = frame != nullptr ? frame->metadata().channelNames.value(0) : QString();
        if (first == ToFChannel::kDepth || first == ToFChannel::kPhaseShift) {
            return image;
        }
        found = found == nullptr ? image : found;
    }
    return found;
}

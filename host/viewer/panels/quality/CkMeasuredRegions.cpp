#include "host/viewer/panels/quality/CkMeasuredRegions.h"

#include "host/viewer/picture/CkImageCanvas.h"
#include "host/viewer/picture/CkImageView.h"
#include "zuCore/CkChainable.h"

#include <algorithm>

namespace {

QString keyOf(const CkImageView& view) {
    const CkChainable* const block = view.dataProvider();
    const CkChain* const chain = block != nullptr ? block->chain() : nullptr;
    const QSize size = view.canvas()->pictureSize();
    const QString owner = chain != nullptr ? QStringLiteral("chain %1").arg(quintptr(chain))
                                           : QStringLiteral("view %1").arg(view.viewId());
    return QStringLiteral("%1, %2 x %3").arg(owner).arg(size.width()).arg(size.height());
}

} // namespace

QRect CkMeasuredRegions::region(const CkImageView& view, const QSize& size) {
    const QString key = keyOf(view);
    if (!m_regions.contains(key)) {
        const QSize part(std::max(1, size.width() / 4), std::max(1, size.height() / 4));
        m_regions.insert(
            key, QRect(QPoint((size.width() - part.width()) / 2, (size.height() - part.height()) / 2), part));
    }
    return m_regions.value(key);
}

void CkMeasuredRegions::setRegion(const CkImageView& view, const QRect& region) {
    m_regions.insert(keyOf(view), region);
}

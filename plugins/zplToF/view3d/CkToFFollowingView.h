#pragma once

#include "zuCoreGui/CkMdiView.h"

/// Base of a view that shows the frames of another one, the connected view, or, once it has been cloned onto
/// a block of its own, the frames of that block. Carries no signals or slots, so that the meta-object of a
/// view derived from it follows that of CkMdiView. User-interface thread.
class CkToFFollowingView : public CkMdiView {
public:
    int connectedViewId() const override { return m_connectedViewId; }
    int secondViewId() const { return m_secondViewId; } ///< As given; passed on to clones.
    QString viewTitle() const override;
    /// The frame itself: that of the view's own block until the next one arrives, that of the connected view
    /// while receivedFrame is emitted. Afterwards the current image, if it was made from this frame.
    const CkImageData* imageData(qint32 iFrameId) override;
    CkChainable* dataProvider() const override;
    QList<void*> cameraHandles() const override;
    /// A frame of the connected view; bForce bypasses the limit of the refresh rate.
    void updateWithConnectedImageData(const CkImageData* pData, bool bForce) override;

protected:
    /// iSecondViewId is only passed on to clones. Both blocks may be null.
    CkToFFollowingView(int iConnectedViewId, int iSecondViewId, CkChainable* pProvider, CkChainable* pSecond);

    /// Sets the window title to the title of the chain with this suffix and keeps it up to date; without a
    /// chain the title does not change.
    void followTitle(const QString& sSuffix);
    /// The view with the connected identifier; null when it has been closed, and outside an application.
    CkMdiView* connectedView() const;

    /// The size of a clone on a block: 496 pixels wide, in the aspect ratio of the block's pictures. Invalid
    /// when the block has no pictures or does not know their size.
    static QSize cloneSize(CkChainable* pProvider);

    void showFrame(std::unique_ptr<CkImageData> frame) override;
    /// Shows a frame of the view's own block or of the connected view. Null: shows the current one again.
    virtual void showImageData(const CkImageData* pData, bool bForce) = 0;

private:
    void refreshTitle();

    const int m_connectedViewId;
    const int m_secondViewId;
    QString m_titleSuffix;
    const CkImageData* m_reported = nullptr; ///< the frame that receivedFrame is being emitted for
};

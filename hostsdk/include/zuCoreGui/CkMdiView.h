#pragma once

#include "zuCore/SkPicBuf.h"
#include "zuCoreGui/zuCoreGuiGlobal.h"

#include <QList>
#include <QPointer>
#include <QWidget>
#include <memory>

class CkChainable;
class CkImageData;
class CkLut;

/// A view in the MDI area. Base class of image views and of the views of plug-ins. User-interface thread.
///
/// A view constructed on a block shows that block's frames: the base attaches itself to the block's chain,
/// keeps only the newest frame and shows it (showFrame) from the event loop. When a block is inserted after
/// the view's block, the view switches to the new block's output. A view without a block receives its
/// frames through updateWithConnectedImageData.
class ZUCOREGUI_EXPORT CkMdiView : public QWidget {
    Q_OBJECT

public:
    /// Bits of viewCaps.
    enum EkViewCaps : int {
        NativeWindowCap = 0x40, ///< holds a native sub-surface that needs a top-level window
    };

    /// Either block may be null. The second one is stored for views that compare two sources.
    explicit CkMdiView(CkChainable* pProvider = nullptr, CkChainable* pSecond = nullptr);
    ~CkMdiView() override;

    /// Identifier within the program, from 0, never reused; assigned at construction.
    int viewId() const { return m_iViewId; }

    virtual int viewCaps() const; ///< EkViewCaps; the base returns 0.
    /// The view this one follows, or -1.
    virtual int connectedViewId() const;
    /// Whether the view holds data that would be lost when it closes.
    virtual bool containsData() const;
    virtual QString viewTitle() const; ///< The window title, else the chain's title up to the block.

    /// The colour table of the view (owned by the view, may be null), its flags bAutoContrast and
    /// bShowSaturation, and the bits of the values it is applied to. Null pointers are ignored.
    virtual CkLut* viewLut(bool* pbFlag1, bool* pbFlag2, unsigned int* puiBits);
    /// Takes ownership of the table; it may also be the view's own table, changed in place. A null table only
    /// stores the flags. bUpdate: show the change at once.
    virtual void setViewLut(CkLut* pLut, bool bFlag1, bool bFlag2, bool bUpdate);

    /// The frame that is shown, or null. Valid until the next frame.
    virtual CkImageData* currentImage();
    /// The frame received last when its identifier is iFrameId, else null. Valid until the next frame.
    virtual const CkImageData* imageData(qint32 iFrameId);

    /// The block whose output is shown, or null.
    virtual CkChainable* dataProvider() const;
    CkChainable* secondProvider() const;        ///< Or null.
    virtual QList<void*> cameraHandles() const; ///< Cameras that the view shows; empty for none.

    /// A view of the same kind on other blocks, added to the application; null when not possible.
    virtual CkMdiView* clone(CkChainable* pProvider, CkChainable* pSecond);

    /// A frame of the view that this one follows; the caller keeps ownership.
    virtual void updateWithConnectedImageData(const CkImageData* pData, bool bForce);

    /// Frames dropped since the view was opened, because it was still busy with an earlier one.
    quint64 droppedFrames() const;

signals:
    /// A new frame has arrived: imageData(iFrameId) returns it during the call, and until the next one.
    void receivedFrame(qint32 iFrameId);
    /// After receivedFrame; the application forwards it to the plug-ins (CkPlugin::viewGotNewImage).
    void frameShown(int iViewId, const CkImageData* pData);
    /// The block shown changed (insertion, removal), or was deleted.
    void dataProviderChanged();
    void viewTitleChanged(); ///< The result of viewTitle has changed.

protected:
    /// Shows a frame of the view's own block and takes ownership of it. Overrides call the base last, which
    /// stores the frame and emits receivedFrame and frameShown.
    virtual void showFrame(std::unique_ptr<CkImageData> data);

    /// Attaches to another block's frames; null detaches.
    void setDataProvider(CkChainable* pProvider);

private:
    class CkPrivate;
    std::unique_ptr<CkPrivate> m_d;
    int m_iViewId;
};

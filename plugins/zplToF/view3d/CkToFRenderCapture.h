#pragma once

#include <QList>
#include <QObject>
#include <QPointer>

namespace Qt3DRender {
class QFrameGraphNode;
class QRenderCapture;
class QRenderCaptureReply;
class QSubtreeEnabler;
} // namespace Qt3DRender

/// Captures pictures of the rendered scene. The capture node is a second leaf of the frame graph, for which
/// Qt 3D draws the whole scene a second time in every frame; it is enabled only while a request is pending.
class CkToFRenderCapture : public QObject {
    Q_OBJECT

public:
    /// pBranch: the node under which to capture; it owns the nodes created here.
    explicit CkToFRenderCapture(Qt3DRender::QFrameGraphNode* pBranch, QObject* pParent = nullptr);

    Qt3DRender::QRenderCapture* capture() const;

    /// The reply completes after the next frame is drawn; the caller deletes it. Null when the nodes have
    /// been deleted.
    Qt3DRender::QRenderCaptureReply* request();

private:
    void disableWhenIdle();

    QPointer<Qt3DRender::QSubtreeEnabler> m_enabler;
    QPointer<Qt3DRender::QRenderCapture> m_capture;
    QList<QPointer<Qt3DRender::QRenderCaptureReply>> m_pending;
};

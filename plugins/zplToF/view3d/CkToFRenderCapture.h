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

/// Pictures of the rendered scene. The capture node is a second leaf of the frame graph, for which the whole
/// scene would be drawn twice in every frame; it takes part only while a picture is wanted.
class CkToFRenderCapture : public QObject {
    Q_OBJECT

public:
    /// pBranch: the node under which to capture; it owns what is made here but this object.
    explicit CkToFRenderCapture(Qt3DRender::QFrameGraphNode* pBranch, QObject* pParent = nullptr);

    Qt3DRender::QRenderCapture* capture() const;

    /// The reply completes after the next drawn frame; its receiver deletes it. Null when the nodes are gone.
    Qt3DRender::QRenderCaptureReply* request();

private:
    void settle();

    QPointer<Qt3DRender::QSubtreeEnabler> m_enabler;
    QPointer<Qt3DRender::QRenderCapture> m_capture;
    QList<QPointer<Qt3DRender::QRenderCaptureReply>> m_open;
};

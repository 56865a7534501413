#pragma once

#include <QPointF>
#include <QPointer>
#include <Qt3DExtras/QOrbitCameraController>
#include <functional>

class QKeyEvent;
class QMouseEvent;
class QWheelEvent;
class QWindow;

/// Moves the camera by the mouse, wheel and key events of a window. The base class would move it once per
/// frame, by an amount that depends on the time since the last one; here the frame rate has no effect.
///
/// Left button: the point under the mouse follows it. Right button: rotates about the view centre, 180
/// degrees over the width of the window. Both buttons, or the wheel: zoom, 10 % per notch. Arrow keys move,
/// with Alt they rotate; Page Up and Page Down, or Shift with the up and down arrows, zoom.
class CkToFOrbitController : public Qt3DExtras::QOrbitCameraController {
    Q_OBJECT

public:
    /// Distance along the line of sight, in scene units, of the point drawn at a position in the window; 0 or
    /// less where there is none. Called when a move begins.
    using DepthAt = std::function<float(const QPointF&)>;

    CkToFOrbitController(QWindow* pWindow, DepthAt depthAt, Qt3DCore::QNode* pParent);

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    void moveCamera(const InputState& state, float fSeconds) override;

    void press(const QMouseEvent& event);
    void drag(const QMouseEvent& event);
    void wheel(const QWheelEvent& event);
    void key(const QKeyEvent& event);

    void move(const QPointF& pixels, float fDepth);
    void turn(const QPointF& degrees);
    void zoom(double dNotches);
    float centreDepth() const;

    QPointer<QWindow> m_window;
    const DepthAt m_depthAt;
    QPointF m_last;
    float m_depth = 0.0F; ///< of the point that follows the mouse
};

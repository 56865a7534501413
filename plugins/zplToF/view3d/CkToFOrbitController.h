#pragma once

#include <QPointF>
#include <QPointer>
#include <Qt3DExtras/QOrbitCameraController>
#include <functional>

class QKeyEvent;
class QMouseEvent;
class QWheelEvent;
class QWindow;

/// Moves the camera by mouse, wheel and keys of a window, by the same amount however often the scene is
/// drawn: what it is derived from turns and moves by the time between two drawings.
///
/// Left button: the point under the mouse follows it. Right button: turns about the view centre, by 180
/// degrees over the width of the window. Both, or the wheel: nearer and farther, 10 % a notch. Arrow keys
/// move, with Alt they turn; Page Up and Page Down, and with Shift the arrows up and down, go nearer and
/// farther.
class CkToFOrbitController : public Qt3DExtras::QOrbitCameraController {
    Q_OBJECT

public:
    /// Distance along the line of sight, in scene units, of what is seen at a place in the window; not above
    /// 0 where nothing is. Asked at the beginning of a move.
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

    QPointer<QWindow> m_pWindow;
    const DepthAt m_depthAt;
    QPointF m_last;
    float m_fDepth = 0.0F; ///< of the point that follows the mouse
};

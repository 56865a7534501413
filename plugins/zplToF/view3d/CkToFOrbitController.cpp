#include "plugins/zplToF/view3d/CkToFOrbitController.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <QWindow>
#include <Qt3DRender/QCamera>
#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr double kNotchFactor = 1.1;
constexpr double kNotchesOverWindow = 10.0; ///< of a zoom with both buttons
constexpr double kAngleOfNotch = 120.0;     ///< QWheelEvent counts eighths of a degree
constexpr double kDegreesOverWindow = 180.0;
constexpr double kDegreesOfKey = 5.0;
constexpr double kWindowOfKey = 0.05;                      ///< share of the window's height
constexpr float kNearestCentre = 0.2F, kFarthest = 500.0F; ///< scene units; within the camera's planes

} // namespace

CkToFOrbitController::CkToFOrbitController(QWindow* pWindow, DepthAt depthAt, Qt3DCore::QNode* pParent)
    : QOrbitCameraController(pParent), m_window(pWindow), m_depthAt(std::move(depthAt)) {
    pWindow->installEventFilter(this);
}

// The base class calls this once per frame.
void CkToFOrbitController::moveCamera(const InputState&, float) {}

bool CkToFOrbitController::eventFilter(QObject* pWatched, QEvent* pEvent) {
    if (pWatched == m_window && camera() != nullptr && !m_window->size().isEmpty()) {
        switch (pEvent->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
            press(static_cast<const QMouseEvent&>(*pEvent));
            break;
        case QEvent::MouseMove:
            drag(static_cast<const QMouseEvent&>(*pEvent));
            break;
        case QEvent::Wheel:
            wheel(static_cast<const QWheelEvent&>(*pEvent));
            break;
        case QEvent::KeyPress:
            key(static_cast<const QKeyEvent&>(*pEvent));
            break;
        default:
            break;
        }
    }
    return QOrbitCameraController::eventFilter(pWatched, pEvent);
}

void CkToFOrbitController::press(const QMouseEvent& event) {
    m_last = event.position();
    const float depth = event.button() == Qt::LeftButton ? m_depthAt(m_last) : 0.0F;
    m_depth = depth > 0.0F ? depth : centreDepth();
}

void CkToFOrbitController::drag(const QMouseEvent& event) {
    const QPointF moved = event.position() - std::exchange(m_last, event.position());
    const bool left = event.buttons().testFlag(Qt::LeftButton);
    const bool right = event.buttons().testFlag(Qt::RightButton);
    if (left && right) {
        zoom(-kNotchesOverWindow * moved.y() / m_window->height());
    } else if (left) {
        move(moved, m_depth);
    } else if (right) {
        turn(moved * (kDegreesOverWindow / m_window->width()));
    }
}

void CkToFOrbitController::wheel(const QWheelEvent& event) {
    // With Alt held, Qt reports the wheel as a horizontal one.
    const QPoint angle = event.angleDelta();
    zoom((angle.y() != 0 ? angle.y() : angle.x()) / kAngleOfNotch);
}

void CkToFOrbitController::key(const QKeyEvent& event) {
    QPointF direction; // of the camera, in the window
    switch (event.key()) {
    case Qt::Key_Left:
        direction = {-1.0, 0.0};
        break;
    case Qt::Key_Right:
        direction = {1.0, 0.0};
        break;
    case Qt::Key_Up:
        direction = {0.0, -1.0};
        break;
    case Qt::Key_Down:
        direction = {0.0, 1.0};
        break;
    case Qt::Key_PageUp:
        zoom(1.0);
        return;
    case Qt::Key_PageDown:
        zoom(-1.0);
        return;
    default:
        return;
    }
    if (event.modifiers().testFlag(Qt::AltModifier)) {
        turn(-direction * kDegreesOfKey);
    } else if (event.modifiers().testFlag(Qt::ShiftModifier)) {
        zoom(-direction.y());
    } else {
        move(-direction * kWindowOfKey * m_window->height(), centreDepth());
    }
}

// The scene moves with the mouse, the camera the other way.
void CkToFOrbitController::move(const QPointF& pixels, float fDepth) {
    const double halfHeight = std::tan(double(camera()->fieldOfView()) * M_PI / 360.0) * double(fDepth);
    const double halfWidth = halfHeight * double(camera()->aspectRatio());
    camera()->translate(QVector3D(float(-2.0 * halfWidth * pixels.x() / m_window->width()),
                                  float(2.0 * halfHeight * pixels.y() / m_window->height()), 0.0F));
}

void CkToFOrbitController::turn(const QPointF& degrees) {
    // When the camera is upside down, the scene has to turn the other way to follow the mouse.
    const double sense = camera()->upVector().y() < 0.0F ? -1.0 : 1.0;
    const QVector3D up(0.0F, 1.0F, 0.0F);
    camera()->rotateAboutViewCenter(QQuaternion::fromAxisAndAngle(up, float(-sense * degrees.x())));
    const QVector3D right = QVector3D::normal(camera()->viewVector(), camera()->upVector());
    camera()->rotateAboutViewCenter(QQuaternion::fromAxisAndAngle(right, float(-degrees.y())));
}

void CkToFOrbitController::zoom(double dNotches) {
    const float distance = centreDepth();
    const float wanted =
        std::clamp(distance / float(std::pow(kNotchFactor, dNotches)), kNearestCentre, kFarthest);
    if (distance > 0.0F) {
        camera()->setPosition(camera()->viewCenter() - camera()->viewVector() * (wanted / distance));
    }
}

float CkToFOrbitController::centreDepth() const {
    return camera()->viewVector().length();
}

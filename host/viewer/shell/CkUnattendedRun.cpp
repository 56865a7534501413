#include "host/viewer/shell/CkUnattendedRun.h"

#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/shell/CkMainWindow.h"
#include "zuCoreGui/CkMdiView.h"

#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMetaObject>
#include <QPixmap>
#include <QScreen>

namespace {
constexpr int kPollMs = 100;
}

CkUnattendedRun::CkUnattendedRun(const SkViewerOptions& options, CkMainWindow* pWindow, QObject* pParent)
    : QObject(pParent), m_options(options), m_window(pWindow) {
    m_timer.setInterval(kPollMs);
    connect(&m_timer, &QTimer::timeout, this, &CkUnattendedRun::advance);
}

void CkUnattendedRun::start() {
    // Files of an earlier run must not be mistaken for results of this one.
    for (const QString& file : {m_options.screenshotFile, m_options.screenshot3dFile, m_options.plyFile}) {
        if (!file.isEmpty()) {
            QFile::remove(file);
        }
    }
    m_waiting.start();
    m_timer.start();
}

CkMdiView* CkUnattendedRun::viewWith(const char* pSignature) const {
    for (CkMdiView* view : m_window->area()->views()) {
        if (view->metaObject()->indexOfMethod(QMetaObject::normalizedSignature(pSignature)) >= 0) {
            return view;
        }
    }
    return nullptr;
}

bool CkUnattendedRun::call(const char* pMethod, const QString& sFileName) const {
    bool ok = false;
    CkMdiView* view = viewWith(QByteArray(pMethod) + "(QString)");
    return view != nullptr &&
           QMetaObject::invokeMethod(view, pMethod, Qt::DirectConnection, Q_RETURN_ARG(bool, ok),
                                     Q_ARG(QString, sFileName)) &&
           ok;
}

void CkUnattendedRun::next(EkStep step) {
    m_step = step;
    m_waiting.restart();
}

void CkUnattendedRun::fail(const QString& sWhat) {
    m_timer.stop();
    qCritical("%s", qUtf8Printable(sWhat));
    emit finished(kFailed);
}

void CkUnattendedRun::advance() {
    if (!m_window) {
        return;
    }
    const bool late = m_waiting.elapsed() > m_timeLimitMs;
    switch (m_step) {
    case EkStep::Frames:
        if (!m_counted) {
            const QList<CkMdiView*> views = m_window->area()->views();
            if (!views.isEmpty()) {
                m_counted = views.first();
                connect(m_counted, &CkMdiView::receivedFrame, this, [this] {
                    ++m_frames;
                    if (m_step == EkStep::Frames) {
                        m_waiting.restart();
                    }
                });
            }
        }
        if (m_frames >= m_options.frames) {
            next(EkStep::Cloud);
        } else if (late) {
            fail(tr("Only %1 of %n frame(s) came.", nullptr, m_options.frames).arg(m_frames));
        }
        break;
    case EkStep::Cloud:
        if (m_options.plyFile.isEmpty() || call("savePly", m_options.plyFile)) {
            next(EkStep::Scene);
        } else if (late) {
            fail(tr("%1: there is no point cloud to write.").arg(m_options.plyFile));
        }
        break;
    case EkStep::Scene:
        if (m_options.screenshot3dFile.isEmpty()) {
            next(EkStep::Window);
        } else if (call("grabScene", m_options.screenshot3dFile)) {
            next(EkStep::SceneFile);
        } else if (late) {
            fail(tr("%1: there is no 3D scene to take a picture of.").arg(m_options.screenshot3dFile));
        }
        break;
    case EkStep::SceneFile:
        if (QFileInfo(m_options.screenshot3dFile).size() > 0) {
            next(EkStep::Window);
        } else if (late) {
            fail(tr("%1: the picture of the 3D scene did not come.").arg(m_options.screenshot3dFile));
        }
        break;
    case EkStep::Window:
        if (!m_options.screenshotFile.isEmpty() && !grabWindow(m_window, m_options.screenshotFile)) {
            fail(tr("%1: the picture of the window cannot be written.").arg(m_options.screenshotFile));
            return;
        }
        m_timer.stop();
        emit finished(0);
        break;
    }
}

bool CkUnattendedRun::grabWindow(QWidget* pWindow, const QString& sFileName) {
    QPixmap picture;
    // Only the X server has the contents of 3D surfaces inside the window.
    if (QGuiApplication::platformName() == QLatin1String("xcb") && pWindow->screen() != nullptr) {
        picture = pWindow->screen()->grabWindow(pWindow->winId());
    }
    if (picture.isNull()) {
        picture = pWindow->grab();
    }
    return picture.save(sFileName);
}

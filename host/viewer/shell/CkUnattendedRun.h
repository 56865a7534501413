#pragma once

#include "host/viewer/shell/CkCommandLine.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTimer>

class CkMainWindow;
class CkMdiView;

/// A run without a user: waits until enough frames were shown, writes the requested files, and finishes. Each
/// step has a time limit. Functions of plug-in views are invoked by name: "grabScene(QString)" and
/// "savePly(QString)", which return a bool. User-interface thread.
class CkUnattendedRun : public QObject {
    Q_OBJECT

public:
    static constexpr int kFailed = 3;

    CkUnattendedRun(const SkViewerOptions& options, CkMainWindow* pWindow, QObject* pParent = nullptr);

    void start();

    /// Time limit of each step, in milliseconds.
    void setTimeLimit(int iMs) { m_timeLimitMs = iMs; }

    /// Writes a picture of the window, including native surfaces inside it where the platform makes these
    /// visible.
    static bool grabWindow(QWidget* pWindow, const QString& sFileName);

signals:
    void finished(int iExitCode);

private:
    enum class EkStep { Frames, Cloud, Scene, SceneFile, Window };

    void advance();
    void next(EkStep step);
    void fail(const QString& sWhat);
    CkMdiView* viewWith(const char* pSignature) const;
    bool call(const char* pMethod, const QString& sFileName) const;

    SkViewerOptions m_options;
    QPointer<CkMainWindow> m_window;
    QPointer<CkMdiView> m_counted;
    QTimer m_timer;
    QElapsedTimer m_waiting;
    EkStep m_step = EkStep::Frames;
    int m_frames = 0;
    int m_timeLimitMs = 30'000;
};

#pragma once

#include <QWidget>

class CkCameraParameters;
class QLabel;
class QLayout;
class QPushButton;
class QScrollArea;
class QVBoxLayout;

/// Panel of one open camera: start, stop, pause, step; the tools of plug-ins; every parameter. Deleted before
/// the camera is closed; stays while it is unplugged. User-interface thread.
class CkCameraPanel : public QWidget {
    Q_OBJECT

public:
    explicit CkCameraPanel(void* pCameraHandle, QWidget* pParent = nullptr);

    void* cameraHandle() const { return m_cameraHandle; }

    /// Drops the camera and its parameters, for a panel that is to be deleted later.
    void detach();

    /// Adds a layout below the start and stop buttons and takes ownership of it.
    void addToolLayout(QLayout* pLayout);

    /// Whether the camera is paused.
    bool isPaused() const;

signals:
    void startRequested(void* pCameraHandle);
    void stopRequested(void* pCameraHandle);
    void newViewRequested(void* pCameraHandle);

public slots:
    void toggleAcquisition();
    void setPaused(bool bPaused);
    void step();

private:
    QWidget* createControls();
    QScrollArea* createParameters(CkCameraParameters* pParameters);
    void showParameters();
    void showState();

    void* m_cameraHandle;
    QVBoxLayout* m_toolArea = nullptr;
    QLabel* m_stateLabel = nullptr;
    QPushButton* m_startButton = nullptr;
    QPushButton* m_pauseButton = nullptr;
    QPushButton* m_stepButton = nullptr;
    QScrollArea* m_parameters = nullptr;
};

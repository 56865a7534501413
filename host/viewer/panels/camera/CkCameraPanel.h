#pragma once

#include <QWidget>

class CkCameraParameters;
class QLabel;
class QLayout;
class QPushButton;
class QScrollArea;
class QVBoxLayout;

/// Panel of one open camera: start, stop, pause, step; what plug-ins add; every parameter. Goes before the
/// camera does; stays while it is unplugged. User-interface thread.
class CkCameraPanel : public QWidget {
    Q_OBJECT

public:
    explicit CkCameraPanel(void* pCameraHandle, QWidget* pParent = nullptr);

    void* cameraHandle() const { return m_pCameraHandle; }

    /// Lets go of the camera and its parameters, before a panel is deleted later.
    void detach();

    /// Puts a layout below the start and stop buttons and takes it over.
    void addToolLayout(QLayout* pLayout);

    /// Whether the camera is being held by the pause button.
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

    void* m_pCameraHandle;
    QVBoxLayout* m_pToolArea = nullptr;
    QLabel* m_pStateLabel = nullptr;
    QPushButton* m_pStartButton = nullptr;
    QPushButton* m_pPauseButton = nullptr;
    QPushButton* m_pStepButton = nullptr;
    QScrollArea* m_pParameters = nullptr;
};

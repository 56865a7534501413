#pragma once

#include <QIcon>
#include <QPushButton>

class CkCameraController;
class CkRecordingManager;

/// Starts and stops the recording of a camera. User-interface thread.
class CkRecordButton : public QPushButton {
    Q_OBJECT

public:
    CkRecordButton(CkRecordingManager* pManager, CkCameraController* pCameras, void* pCameraHandle,
                   QWidget* pParent = nullptr);

    static QIcon icon();

private:
    void press();
    void refresh();

    CkRecordingManager* m_pManager;
    CkCameraController* m_pCameras;
    void* m_pHandle;
};

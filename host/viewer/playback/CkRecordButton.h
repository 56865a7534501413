#pragma once

#include <QIcon>
#include <QPushButton>

class CkCameraController;
class CkRecordingDesk;

/// Starts and stops the recording of a camera. User-interface thread.
class CkRecordButton : public QPushButton {
    Q_OBJECT

public:
    CkRecordButton(CkRecordingDesk* pDesk, CkCameraController* pCameras, void* pCameraHandle,
                   QWidget* pParent = nullptr);

    static QIcon icon();

private:
    void press();
    void refresh();

    CkRecordingDesk* m_pDesk;
    CkCameraController* m_pCameras;
    void* m_pHandle;
};

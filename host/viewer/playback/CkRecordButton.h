#pragma once

#include <QIcon>
#include <QPushButton>

class CkCameraDesk;
class CkRecordingDesk;

/// Starts and stops the recording of a camera. User-interface thread.
class CkRecordButton : public QPushButton {
    Q_OBJECT

public:
    CkRecordButton(CkRecordingDesk* pDesk, CkCameraDesk* pCameras, void* pCameraHandle,
                   QWidget* pParent = nullptr);

    static QIcon icon();

private:
    void press();
    void refresh();

    CkRecordingDesk* m_pDesk;
    CkCameraDesk* m_pCameras;
    void* m_pHandle;
};

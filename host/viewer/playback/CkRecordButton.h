#pragma once

#include <QIcon>
#include <QPushButton>

#include <functional>

class CkRecordingManager;

/// Starts and stops the recording of a camera. User-interface thread.
class CkRecordButton : public QPushButton {
    Q_OBJECT

public:
    /// For a camera without a chain, openView is called to open a view with one.
    CkRecordButton(CkRecordingManager* pManager, void* pCameraHandle, std::function<void()> openView,
                   QWidget* pParent = nullptr);

    static QIcon icon();

private:
    void toggleRecording();
    void refresh();

    CkRecordingManager* m_manager;
    void* m_handle;
    std::function<void()> m_openView;
};

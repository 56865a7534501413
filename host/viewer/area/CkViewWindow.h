#pragma once

#include <QMdiSubWindow>

/// Frame of one view inside the area; asks the area before it closes. User-interface thread.
class CkViewWindow : public QMdiSubWindow {
    Q_OBJECT

public:
    explicit CkViewWindow(int iViewId, QWidget* pParent = nullptr);

    int viewId() const { return m_viewId; }

    /// Closes without asking again; the window and its view are deleted later.
    void closeNow();

signals:
    /// The user asks to close the view; the receiver calls closeNow to agree.
    void closeRequested(int iViewId);

protected:
    void closeEvent(QCloseEvent* pEvent) override;

private:
    int m_viewId;
    bool m_agreed = false;
};

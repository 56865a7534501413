#pragma once

#include <QObject>
#include <QString>

class CkCameraController;
class CkChain;
class CkFileOpener;
class CkViewArea;
class QWidget;

/// Opens and saves chain files. User-interface thread.
class CkChainFileController : public QObject {
    Q_OBJECT

public:
    /// Progress dialogs open above the window, which becomes the parent.
    CkChainFileController(CkViewArea* area, CkCameraController* cameras, QWidget* window);

    /// Opens a chain file: its cameras, its chain, and a picture view on each of its ends; then starts them.
    /// False, with error set, on failure; cameras opened for it are closed again.
    bool open(const QString& fileName, QString& error);
    /// False, with error set, when the file cannot be written.
    bool save(const CkChain& chain, const QString& fileName, QString& error);
    bool saveActive(const QString& fileName, QString& error);

    /// The chain of the active view; null when that shows none.
    CkChain* activeChain() const;

    /// Registers chain files as files that can be opened.
    void addFileKind(CkFileOpener* opener);

signals:
    /// A chain file was opened or saved.
    void used(const QString& fileName);

private:
    void openCamerasOf(const QString& fileName);
    void startCamerasOf(const CkChain& chain);

    CkViewArea* m_area;
    CkCameraController* m_cameras;
    QWidget* m_window;
};

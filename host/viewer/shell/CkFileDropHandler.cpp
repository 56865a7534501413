#include "host/viewer/shell/CkFileDropHandler.h"

#include <QDropEvent>
#include <QMimeData>
#include <QTimer>
#include <QUrl>
#include <QWidget>

namespace {

QStringList localFiles(const QMimeData& data) {
    QStringList files;
    for (const QUrl& url : data.urls()) {
        if (url.isLocalFile()) {
            files.append(url.toLocalFile());
        }
    }
    return files;
}

// A drag source deletes its files after a move.
void acceptAsCopy(QDropEvent& event) {
    event.setDropAction(Qt::CopyAction);
    event.setAccepted(event.possibleActions().testFlag(Qt::CopyAction));
}

} // namespace

CkFileDropHandler::CkFileDropHandler(QWidget* widget) : QObject(widget) {
    widget->setAcceptDrops(true);
    widget->installEventFilter(this);
}

bool CkFileDropHandler::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::DragEnter && event->type() != QEvent::Drop) {
        return QObject::eventFilter(watched, event);
    }
    auto& drop = static_cast<QDropEvent&>(*event);
    const QStringList files = localFiles(*drop.mimeData());
    if (event->type() == QEvent::Drop || !files.isEmpty()) {
        acceptAsCopy(drop);
    }
    if (event->type() == QEvent::Drop) {
        QTimer::singleShot(0, this, [this, files] { emit filesDropped(files); });
    }
    return true;
}

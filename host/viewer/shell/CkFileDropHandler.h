#pragma once

#include <QObject>
#include <QStringList>

class QWidget;

/// Accepts local files that are dropped onto a widget. User-interface thread.
class CkFileDropHandler : public QObject {
    Q_OBJECT

public:
    /// The widget accepts drops from now on, and becomes the parent.
    explicit CkFileDropHandler(QWidget* widget);

signals:
    /// Emitted from the event loop, after the drop has been completed: until then the program from which the
    /// files were dragged is blocked.
    void filesDropped(const QStringList& fileNames);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

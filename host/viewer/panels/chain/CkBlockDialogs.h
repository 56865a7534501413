#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>

class CkChainable;
class QDialog;
class QWidget;

/// The dialogs that the chain panel opens for single blocks: settings and help, none of them modal. A
/// settings dialog is deleted with its block, or with this object. User-interface thread.
class CkBlockDialogs : public QObject {
    Q_OBJECT

public:
    /// pOwner: the widget in whose window the dialogs open.
    explicit CkBlockDialogs(QWidget* pOwner);
    ~CkBlockDialogs() override;

    /// Opens a block's settings, or raises them. False for a block without settings.
    bool configure(CkChainable* pBlock);
    /// Closes a block's settings.
    void close(const CkChainable* pBlock);
    /// Shows the help of a block that has one.
    void help(CkChainable* pBlock);

signals:
    /// A settings dialog was closed.
    void closed();

private:
    QWidget* m_owner;
    QHash<const CkChainable*, QPointer<QDialog>> m_settings;
};

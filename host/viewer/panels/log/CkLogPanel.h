#pragma once

#include <QWidget>

class CkLogFilter;
class CkLogModel;
class QComboBox;
class QLineEdit;
class QTreeView;

/// Shows the log with a choice of levels and a search. User-interface thread.
class CkLogPanel : public QWidget {
    Q_OBJECT

public:
    explicit CkLogPanel(QWidget* pParent = nullptr);

    CkLogModel* model() const { return m_pModel; }
    CkLogFilter* filter() const { return m_pFilter; }

public slots:
    void focusSearch();

private:
    void copySelected();

    CkLogModel* m_pModel;
    CkLogFilter* m_pFilter;
    QTreeView* m_pView;
    QComboBox* m_pLevel;
    QLineEdit* m_pSearch;
};

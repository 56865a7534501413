#pragma once

#include <QWidget>

class CkLogFilter;
class CkLogModel;
class QComboBox;
class QLayout;
class QLineEdit;
class QTreeView;

/// Shows the log, filtered by level and by a search text. User-interface thread.
class CkLogPanel : public QWidget {
    Q_OBJECT

public:
    explicit CkLogPanel(QWidget* pParent = nullptr);

    CkLogModel* model() const { return m_model; }
    CkLogFilter* filter() const { return m_filter; }

public slots:
    void focusSearch();

private:
    void createView();
    QLayout* createFilterBar();
    void copySelected();

    CkLogModel* m_model;
    CkLogFilter* m_filter;
    QTreeView* m_view;
    QComboBox* m_level;
    QLineEdit* m_search;
};

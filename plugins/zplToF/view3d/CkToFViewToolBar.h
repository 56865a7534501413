#pragma once

#include "plugins/zplToF/view3d/CkToFToolBar.h"

#include <QCoreApplication>

class CkToFCloudBuilder;

/// The tool bar of a 3D view: its actions, and what it shows of the cloud. User-interface thread.
class CkToFViewToolBar : public CkToFToolBar {
    // The texts belong to the view, which users and translators know.
    Q_DECLARE_TR_FUNCTIONS(CkToF3DMdiView)

public:
    /// pView: parent, and receiver of the actions by the names of its slots.
    explicit CkToFViewToolBar(QWidget* pView);

    /// The size of the measured volume, and whether there are points to export.
    void showCloud(const CkToFCloudBuilder& cloud);

    /// The factor in the text of an action ("0.5x"); 0 when the object is no such action.
    static float zoomFactor(const QObject* pAction);
    /// The width in pixels in the text of an action ("320"); 0 when the object is no such action.
    static int width(const QObject* pAction);

private:
    QAction* m_exportAction = nullptr;
};

#include "plugins/zplToF/view3d/ToFDistanceOffset.h"

#include "plugins/zplToF/view3d/3dMdiView.h"
#include "plugins/zplToF/view3d/ToFHostSettings.h"

#include <QApplication>
#include <QSettings>

float ToFDistanceOffset::read(float fDefault) {
    const auto settings = ToFHostSettings::open();
    return settings ? SkToFViewSettings::readDistanceOffset(*settings, fDefault) : fDefault;
}

void ToFDistanceOffset::store(float fOffset) {
    ToFHostSettings::write(ToFSettingsKey::kRealDistanceOffsetM, fOffset);
    const QWidgetList widgets = QApplication::allWidgets();
    for (QWidget* widget : widgets) {
        if (auto* view = qobject_cast<CkToF3DMdiView*>(widget)) {
            view->updateAfterDistanceOffsetChanged();
        }
    }
}

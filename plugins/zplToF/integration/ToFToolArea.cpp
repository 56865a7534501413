#include "plugins/zplToF/integration/ToFToolArea.h"

#include "zuCore/CkCameraManager.h"
#include "zuCore/CkCameraParameters.h"
#include "zuCore/ToFVocabulary.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QSpacerItem>
#include <QToolButton>
#include <QVariant>
#include <memory>

namespace {

struct SkTexts {
    // The texts belong to the plug-in class, which users and translators know.
    Q_DECLARE_TR_FUNCTIONS(CkToFPlugin)
};

} // namespace

bool ToFToolArea::addToCameraPanel(void* cameraHandle, QObject* pReceiver) {
    CkCameraParameters* parameters = CkCameraManager::instance()->cameraParameters(cameraHandle);
    IkAppDelegate* host = IkAppDelegate::instance();
    if (host == nullptr || parameters == nullptr ||
        parameters->findParam(ToFParameter::kReadoutMode, false) == nullptr) {
        return false;
    }
    auto* layout = new QHBoxLayout;
    QList<QPointer<QWidget>> widgets;

    auto* label = new QLabel(SkTexts::tr("ToF Processing:"));
    layout->addWidget(label);
    widgets.append(label);

    const auto addButton = [&](const QString& text, const char* name, const char* slot) {
        auto* button = new QToolButton;
        button->setText(text);
        button->setObjectName(QLatin1String(name));
        button->setProperty(ToFProperty::kCameraHandle, QVariant::fromValue(quint64(quintptr(cameraHandle))));
        QObject::connect(button, SIGNAL(clicked(bool)), pReceiver, slot);
        layout->addWidget(button);
        widgets.append(button);
    };
    addButton(SkTexts::tr("Open 3D View"), "btnToF3D", SLOT(on_actOpenToF3dViewStartAcq()));
    addButton(SkTexts::tr("Open All ToF Processing Views"), "btnToFAllViews",
              SLOT(on_actOpenAllToFViewsStartAcq()));
    layout->addSpacerItem(new QSpacerItem(1, 1, QSizePolicy::Expanding, QSizePolicy::Minimum));

    if (!host->addCameraPanelLayout(cameraHandle, parameters, layout, 1)) {
        // A layout does not own its widgets before it has a parent.
        for (const QPointer<QWidget>& widget : widgets) {
            delete widget.data();
        }
        delete layout;
    }
    return true;
}

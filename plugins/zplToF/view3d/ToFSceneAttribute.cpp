#include "plugins/zplToF/view3d/ToFSceneAttribute.h"

#include <QString>
#include <Qt3DCore/QAttribute>
#include <Qt3DCore/QGeometry>
#include <Qt3DRender/QGeometryRenderer>

Qt3DCore::QAttribute* ToFSceneAttribute::find(const Qt3DRender::QGeometryRenderer* pRenderer,
                                              const QString& sName) {
    if (pRenderer == nullptr || pRenderer->geometry() == nullptr) {
        return nullptr;
    }
    const auto attributes = pRenderer->geometry()->attributes();
    for (Qt3DCore::QAttribute* attribute : attributes) {
        if (attribute->name() == sName) {
            return attribute;
        }
    }
    return nullptr;
}

QString ToFSceneAttribute::indexName() {
    return QStringLiteral("sceneIndexBuffer");
}

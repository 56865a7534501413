#pragma once

class QString;
namespace Qt3DCore {
class QAttribute;
}
namespace Qt3DRender {
class QGeometryRenderer;
}

/// Attributes of the scene's geometries by name.
namespace ToFSceneAttribute {

/// The first attribute of exactly this name; null without a renderer, a geometry or a match.
Qt3DCore::QAttribute* find(const Qt3DRender::QGeometryRenderer* pRenderer, const QString& sName);

/// "sceneIndexBuffer": the name of every index attribute.
QString indexName();

} // namespace ToFSceneAttribute

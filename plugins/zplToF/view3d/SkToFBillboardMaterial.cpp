#include "plugins/zplToF/view3d/SkToFBillboardMaterial.h"

#include <QPointF>
#include <QUrl>
#include <Qt3DRender/QEffect>
#include <Qt3DRender/QFilterKey>
#include <Qt3DRender/QGraphicsApiFilter>
#include <Qt3DRender/QMaterial>
#include <Qt3DRender/QParameter>
#include <Qt3DRender/QRenderPass>
#include <Qt3DRender/QShaderProgram>
#include <Qt3DRender/QTechnique>

namespace {

QByteArray shaderSource(const char* name) {
    return Qt3DRender::QShaderProgram::loadSource(QUrl(QLatin1String("qrc:/shaders/") + QLatin1String(name)));
}

Qt3DRender::QParameter* addParameter(Qt3DRender::QMaterial* material, const char* name,
                                     const QPointF& value) {
    auto* parameter = new Qt3DRender::QParameter(QLatin1String(name), value, material);
    material->addParameter(parameter);
    return parameter;
}

} // namespace

SkToFBillboardMaterial SkToFBillboardMaterial::create(Qt3DCore::QNode* pParent) {
    SkToFBillboardMaterial result;
    auto* material = new Qt3DRender::QMaterial(pParent);
    result.material = material;
    result.pointSize = addParameter(material, "parPointSize", QPointF(0.01, 0.01));
    result.windowSize = addParameter(material, "parWindowSize", QPointF(1.0, 1.0));

    result.program = new Qt3DRender::QShaderProgram(material);
    result.program->setVertexShaderCode(shaderSource("billboards.vert"));
    result.program->setFragmentShaderCode(shaderSource("billboards.frag"));
    result.program->setGeometryShaderCode(shaderSource("billboards.geom"));

    auto* pass = new Qt3DRender::QRenderPass(material);
    pass->setShaderProgram(result.program);

    // The key by which the default forward renderer selects techniques.
    auto* filterKey = new Qt3DRender::QFilterKey;
    filterKey->setName(QStringLiteral("renderingStyle"));
    filterKey->setValue(QStringLiteral("forward"));

    auto* technique = new Qt3DRender::QTechnique;
    technique->addRenderPass(pass);
    technique->addFilterKey(filterKey);
    technique->graphicsApiFilter()->setApi(Qt3DRender::QGraphicsApiFilter::OpenGL);
    technique->graphicsApiFilter()->setProfile(Qt3DRender::QGraphicsApiFilter::CoreProfile);
    technique->graphicsApiFilter()->setMajorVersion(3);
    technique->graphicsApiFilter()->setMinorVersion(1);

    auto* effect = new Qt3DRender::QEffect(material);
    effect->addTechnique(technique);
    material->setEffect(effect);
    return result;
}

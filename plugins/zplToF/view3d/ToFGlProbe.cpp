#include "plugins/zplToF/view3d/ToFGlProbe.h"

#include <QByteArray>
#include <QGuiApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QSurfaceFormat>
#include <utility>

namespace {

using Version = std::pair<int, int>;

bool s_software = false;

bool isSoftwareRenderer(const QByteArray& name) {
    for (const char* known : {"llvmpipe", "softpipe", "swrast", "swr", "software"}) {
        if (name.contains(known)) {
            return true;
        }
    }
    return false;
}

bool contextComesUp(const QSurfaceFormat& wanted, bool needsCore) {
    QOpenGLContext context;
    context.setFormat(wanted);
    if (!context.create()) {
        return false;
    }
    const QSurfaceFormat got = context.format();
    if (needsCore && (context.isOpenGLES() || got.profile() != QSurfaceFormat::CoreProfile)) {
        return false;
    }
    if (got.version() < Version(3, needsCore ? 2 : 0)) {
        return false;
    }
    QOffscreenSurface surface;
    surface.setFormat(got);
    surface.create();
    if (!surface.isValid() || !context.makeCurrent(&surface)) {
        return false;
    }
    const GLubyte* name = context.functions()->glGetString(GL_RENDERER);
    s_software = isSoftwareRenderer(QByteArray(reinterpret_cast<const char*>(name)).toLower());
    context.doneCurrent();
    return true;
}

} // namespace

bool ToFGlProbe::canRender(bool bGeometryShader) {
    static bool s_known[2] = {false, false};
    bool& known = s_known[bGeometryShader ? 1 : 0];
    if (!known && qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr) {
        QSurfaceFormat wanted;
        if (bGeometryShader) {
            wanted.setRenderableType(QSurfaceFormat::OpenGL);
            wanted.setVersion(3, 2);
            wanted.setProfile(QSurfaceFormat::CoreProfile);
        } else {
            wanted.setVersion(3, 0);
        }
        known = contextComesUp(wanted, bGeometryShader);
    }
    return known;
}

bool ToFGlProbe::isSoftware() {
    return s_software;
}

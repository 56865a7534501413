#include "host/viewer/base/ViewerVersion.h"

QString ViewerVersion::number() {
    return QStringLiteral(ZU_VIEWER_VERSION);
}

QString ViewerVersion::text() {
    return QStringLiteral("zuviewer " ZU_VIEWER_VERSION);
}

#include "host/recording/ForeignMembers.h"

#include "zuCore/CkImageData.h"

#include <QVariant>

namespace {

constexpr char kForeignProperty[] = "zuForeignMembers";

}

QJsonObject ForeignMembers::of(const CkImageData& frame) {
    return frame.property(kForeignProperty).toJsonObject();
}

void ForeignMembers::set(CkImageData& frame, const QJsonObject& members) {
    frame.setProperty(kForeignProperty, members.isEmpty() ? QVariant() : QVariant(members));
}

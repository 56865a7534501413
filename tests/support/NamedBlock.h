#pragma once

#include "zuCore/CkImageProvider.h"

/// A block that can be given another name.
class NamedBlock : public CkImageProvider {
public:
    QString title() const override { return name; }
    bool acceptsDataFrom(CkChainable*) override { return true; }
    void rename(const QString& to) {
        name = to;
        emit configurationChanged();
    }

    QString name = QStringLiteral("Named");
};

#pragma once

#include "zuCore/CkImageProvider.h"

/// A block whose title can be changed.
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

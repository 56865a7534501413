#pragma once

#include "zuCore/CkImageData.h"

#include <QByteArrayList>
#include <QVariantList>

/// The dynamic properties of a frame, such as members of a recording's description that only other programs
/// understand. Blocks are not aware of them: the chain copies them from a block's input to its output.
struct SkFrameProperties {
    QByteArrayList names;
    QVariantList values; ///< one per name

    /// Empty for null.
    static SkFrameProperties of(const CkImageData* pFrame) {
        SkFrameProperties properties;
        if (pFrame != nullptr) {
            properties.names = pFrame->dynamicPropertyNames();
            for (const QByteArray& name : properties.names) {
                properties.values.append(pFrame->property(name.constData()));
            }
        }
        return properties;
    }

    /// Properties that the frame has already keep their value. To be called on the thread that created the
    /// frame.
    void addTo(CkImageData& frame) const {
        for (qsizetype i = 0; i < names.size(); ++i) {
            if (!frame.property(names[i].constData()).isValid()) {
                frame.setProperty(names[i].constData(), values[i]);
            }
        }
    }
};

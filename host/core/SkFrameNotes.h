#pragma once

#include "zuCore/CkImageData.h"

#include <QByteArrayList>
#include <QVariantList>

/// What a frame carries beside its members, as dynamic properties. Blocks know nothing of them: the chain
/// hands them on from input to output.
struct SkFrameNotes {
    QByteArrayList names;
    QVariantList values;

    static SkFrameNotes of(const CkImageData* pFrame) {
        SkFrameNotes notes;
        if (pFrame != nullptr) {
            notes.names = pFrame->dynamicPropertyNames();
            for (const QByteArray& name : notes.names) {
                notes.values.append(pFrame->property(name.constData()));
            }
        }
        return notes;
    }

    /// What the frame has already stays. On the thread that made the frame.
    void give(CkImageData& frame) const {
        for (qsizetype i = 0; i < names.size(); ++i) {
            if (!frame.property(names[i].constData()).isValid()) {
                frame.setProperty(names[i].constData(), values[i]);
            }
        }
    }
};

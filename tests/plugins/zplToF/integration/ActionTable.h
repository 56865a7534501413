#pragma once

#include "ToFRig.h"

#include <QTextStream>

/// What the tables of the three actions have in common.

enum class CameraKind { None, NotToF, ToF, Hybrid };

inline bool isToF(CameraKind kind) {
    return kind == CameraKind::ToF || kind == CameraKind::Hybrid;
}

/// One camera of every kind, none of them set up for ToF yet.
struct TableCameras {
    FakeCamera plain{{-1, 5}};
    FakeCamera tof{{3, 5}};
    FakeCamera hybrid{{-1, 5, 13}};

    const FakeCamera* of(CameraKind kind) const {
        switch (kind) {
        case CameraKind::NotToF:
            return &plain;
        case CameraKind::ToF:
            return &tof;
        case CameraKind::Hybrid:
            return &hybrid;
        case CameraKind::None:
            break;
        }
        return nullptr;
    }

    /// "readout/format" of the three, then the number of commits of each.
    QString state() const {
        QString text;
        QTextStream stream(&text);
        for (const FakeCamera* camera : {&plain, &tof, &hybrid}) {
            stream << camera->value("tof_readout_mode") << '/' << camera->value("imgdataformat") << ' ';
        }
        stream << plain.log().commits << tof.log().commits << hybrid.log().commits;
        return text;
    }
    /// The same as it has to be: only the camera of this kind was set up, once; none for None.
    static QString expectedState(CameraKind setUp) {
        return QStringLiteral("-1/5 %1 %2 0%3%4")
            .arg(setUp == CameraKind::ToF ? QStringLiteral("4/13") : QStringLiteral("3/5"),
                 setUp == CameraKind::Hybrid ? QStringLiteral("-1/18") : QStringLiteral("-1/5"))
            .arg(setUp == CameraKind::ToF ? 1 : 0)
            .arg(setUp == CameraKind::Hybrid ? 1 : 0);
    }
};

inline QString line(QMessageBox::Icon icon, const char* title, const QString& text,
                    QMessageBox::StandardButtons buttons, QMessageBox::StandardButton defaultButton) {
    return boxLine({icon, QString::fromLatin1(title), text, buttons, defaultButton});
}

inline QString withQuestion(const QString& text) {
    return text + QStringLiteral("\n\nDo you want to update the camera parameters automatically?");
}

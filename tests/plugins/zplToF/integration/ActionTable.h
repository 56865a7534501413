#pragma once

#include "plugins/zplToF/chain/CkToFProcessCnbl.h"
#include "plugins/zplToF/view3d/3dMdiView.h"
#include "tests/plugins/zplToF/integration/ToFFixture.h"
#include "zuCore/CkChainManager.h"

#include <QTextStream>
#include <gtest/gtest.h>

/// Shared by the tables of the three actions.

enum class CameraKind { None, NotToF, ToF, Hybrid };

inline bool isToF(CameraKind kind) {
    return kind == CameraKind::ToF || kind == CameraKind::Hybrid;
}

/// What the active view is.
enum class ViewOn {
    Nothing,         ///< there is none
    Source,          ///< an image view on the source of the chain
    Block,           ///< on a block after the source that is no ToF block
    Amplitude,       ///< on a ToF block
    BehindAmplitude, ///< on a block after such a ToF block
    Depth,           ///< on a ToF block
    Raw,             ///< on a ToF block that makes A minus B from A and B and leaves the phases separate
    BehindRaw,       ///< on a block after such a ToF block
    Scene,           ///< a 3D view that follows an image view on the source
    LonelyScene,     ///< a 3D view whose image view has been closed
    OwnImage,        ///< a view without a block that holds an image of its own, or none
};

inline bool hasBlock(ViewOn on) {
    return on != ViewOn::Nothing && on != ViewOn::LonelyScene && on != ViewOn::OwnImage;
}

/// The blocks after the source: p passes pictures on, a digit is a ToF block with that transform.
inline const char* shapeBehind(ViewOn on) {
    switch (on) {
    case ViewOn::Block:
        return "p";
    case ViewOn::Amplitude:
        return "2";
    case ViewOn::BehindAmplitude:
        return "2p";
    case ViewOn::Depth:
        return "3";
    case ViewOn::Raw:
        return "5";
    case ViewOn::BehindRaw:
        return "5p";
    default:
        return "";
    }
}

inline bool isRaw(FakeKind kind) {
    return kind == FakeKind::AB || kind == FakeKind::AminB || kind == FakeKind::Hybrid;
}

/// The kind of the source's pictures when they reach the view. A block that refuses its input has no known
/// output.
inline FakeKind shownKind(ViewOn on, FakeKind source) {
    switch (on) {
    case ViewOn::Amplitude:
    case ViewOn::BehindAmplitude:
        return isRaw(source) ? FakeKind::Grey : FakeKind::Unknown;
    case ViewOn::Depth:
        return isRaw(source) ? FakeKind::PhaseShift : FakeKind::Unknown;
    case ViewOn::Raw:
    case ViewOn::BehindRaw:
        return source == FakeKind::AB ? FakeKind::AminB : FakeKind::Unknown;
    default:
        return source;
    }
}

/// What the source delivers after its camera has been set up; only a camera that sent grey pictures changes.
inline FakeKind kindAfterSetUp(FakeKind kind, CameraKind camera) {
    if (kind != FakeKind::Grey) {
        return kind;
    }
    return camera == CameraKind::Hybrid ? FakeKind::Hybrid : FakeKind::AB;
}

/// Inserts the blocks of a shape after the source; the view ends up on the last one.
inline void buildShape(ToFFixture& rig, const char* shape) {
    CkChainable* last = rig.source;
    for (const char* letter = shape; *letter != '\0'; ++letter) {
        CkChainable* block = nullptr;
        if (*letter == 'p') {
            block = new PassBlock;
        } else {
            auto* tof = new CkToFProcessCnbl;
            tof->setTransform(CkToFProcessCnbl::EkTransformType(*letter - '0'), false);
            block = tof;
        }
        ASSERT_TRUE(CkChainManager::instance()->insertAfter(rig.chain(), block, last));
        last = block;
    }
    ASSERT_EQ(rig.view->dataProvider(), last);
}

inline QString shapeOf(const CkChain* chain) {
    QString shape;
    const QList<CkChainable*> blocks = chain->blocks();
    for (CkChainable* block : blocks.mid(1)) {
        const auto* tof = qobject_cast<CkToFProcessCnbl*>(block);
        shape += tof != nullptr ? QString::number(int(tof->transform())) : QStringLiteral("p");
    }
    return shape;
}

/// A chain with a source of this kind, the blocks of the view, and the active view. The chain always has an
/// image view.
inline void openOn(ToFFixture& rig, ViewOn on, FakeKind kind, bool separate, const FakeCamera* camera) {
    rig.open(kind, separate, camera);
    ASSERT_NO_FATAL_FAILURE(buildShape(rig, shapeBehind(on)));
    CkMdiView* active = nullptr;
    if (on == ViewOn::Nothing) {
        rig.app.activeView = -1;
    } else if (on == ViewOn::Scene || on == ViewOn::LonelyScene) {
        const int gone = 1 << 30;
        active = new CkToF3DMdiView(on == ViewOn::Scene ? rig.view->viewId() : gone, -1, nullptr, nullptr);
    } else if (on == ViewOn::OwnImage) {
        auto* holder = new ViewWithImage;
        SkPicBuf picture;
        CkImageMetadata metadata;
        if (describe(kind, separate, picture, metadata)) {
            holder->image = std::make_unique<CkImageData>();
            holder->image->setPicBuf(picture);
            holder->image->setMetadata(metadata);
        }
        active = holder;
        rig.app.viewCameras[active->viewId()] = camera != nullptr ? camera->handle() : nullptr;
    }
    if (active != nullptr) {
        rig.app.addMdiView(active);
        rig.app.activeView = active->viewId();
    }
    rig.app.addedViews.clear();
    rig.app.calls.clear();
}

/// One camera of each kind, none of them set up for ToF yet.
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

    /// "readout/format" of the three cameras, then the number of commits of each.
    QString state() const {
        QString text;
        QTextStream stream(&text);
        for (const FakeCamera* camera : {&plain, &tof, &hybrid}) {
            stream << camera->value("tof_readout_mode") << '/' << camera->value("imgdataformat") << ' ';
        }
        stream << plain.log().commits << tof.log().commits << hybrid.log().commits;
        return text;
    }
    /// The same as expected: only the camera of this kind was set up, once; none for None.
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

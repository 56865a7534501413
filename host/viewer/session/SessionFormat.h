#pragma once

#include <QString>

/// Names in the XML text of a session. They are a file format: texts of older versions stay readable.
namespace SessionFormat {

constexpr int kVersion = 1;

// Elements. A <chain> of the session holds the <chain> that CkChain::save() writes.
inline const QString kSession = QStringLiteral("session");
inline const QString kCamera = QStringLiteral("camera");
inline const QString kChain = QStringLiteral("chain");
inline const QString kView = QStringLiteral("view");

// Attributes of the session, of its cameras, and of the sources in its chains.
inline const QString kVersionNumber = QStringLiteral("version");
inline const QString kId = QStringLiteral("id");
inline const QString kRunning = QStringLiteral("running");
inline const QString kFrame = QStringLiteral("frame");

// Attributes of a view: indices of its chain and of its block in that chain, state, position in the view area
// in pixels.
inline const QString kBlock = QStringLiteral("block");
inline const QString kHas3d = QStringLiteral("has3d");
inline const QString kActive = QStringLiteral("active");
inline const QString kAppearance = QStringLiteral("look");
inline const QString kX = QStringLiteral("x");
inline const QString kY = QStringLiteral("y");
inline const QString kWidth = QStringLiteral("width");
inline const QString kHeight = QStringLiteral("height");
inline const QString kMaximized = QStringLiteral("maximized");

/// Dynamic property of a restored picture view whose 3D view has not been reopened yet.
constexpr const char* kPending3dView = "zuPending3dView";

} // namespace SessionFormat

#pragma once

/// Version of the framework that a library is compiled against. Inline on purpose: a plug-in must
/// report the version it was built with, not the one it happens to be loaded into.
inline constexpr int kZuCoreVersionMajor = 1;
inline constexpr int kZuCoreVersionMinor = 0;
inline constexpr int kZuCoreVersionPatch = 0;

/// Fills the three numbers of the framework version. Any thread.
inline void zuCoreVersion(int& iMajor, int& iMinor, int& iPatch) {
    iMajor = kZuCoreVersionMajor;
    iMinor = kZuCoreVersionMinor;
    iPatch = kZuCoreVersionPatch;
}

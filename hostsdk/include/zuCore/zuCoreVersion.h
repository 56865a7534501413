#pragma once

/// Version of the framework that a library is compiled against. Deliberately inline: a plug-in must report
/// the version it was built with, not the one of the host that loads it.
inline constexpr int kZuCoreVersionMajor = 1;
inline constexpr int kZuCoreVersionMinor = 0;
inline constexpr int kZuCoreVersionPatch = 0;

/// Fills the three numbers of the framework version. Any thread.
inline void zuCoreVersion(int& iMajor, int& iMinor, int& iPatch) {
    iMajor = kZuCoreVersionMajor;
    iMinor = kZuCoreVersionMinor;
    iPatch = kZuCoreVersionPatch;
}

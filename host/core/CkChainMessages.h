#pragma once

#include "host/core/SkChainNode.h"

#include <vector>

class CkRenegotiationThrottle;

/// What a chain shows on its blocks. A block's own text comes first; of the chain's, one about frames comes
/// before one about setting up. Chain thread, or start and stop while it does not run.
class CkChainMessages {
public:
    /// The throttle counts the frames.
    explicit CkChainMessages(const CkRenegotiationThrottle& throttle) : m_throttle(throttle) {}

    /// Empty: the block was set up.
    static void showSetUpError(SkChainNode& node, const QString& sText);

    /// Shown until so many frames have given no reason for it that it does not flicker. The first of several
    /// different reasons stays.
    void showTrouble(SkChainNode& node, const QString& sText) const;
    void endTrouble(SkChainNode& node) const; ///< Per frame: takes the text away when it is time.

    /// While blocks are set up their messages come and go; listeners hear the outcome, once, when this ends.
    class CkHold {
    public:
        explicit CkHold(const std::vector<SkChainNode*>& nodes);
        ~CkHold();
        CkHold(const CkHold&) = delete;
        CkHold& operator=(const CkHold&) = delete;

    private:
        const std::vector<SkChainNode*>& m_nodes;
    };

private:
    static void show(SkChainNode& node);

    const CkRenegotiationThrottle& m_throttle;
};

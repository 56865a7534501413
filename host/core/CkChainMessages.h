#pragma once

#include "host/core/SkChainNode.h"

#include <vector>

class CkRenegotiationThrottle;

/// The messages that a chain shows on its blocks. A block's own message has priority; of the chain's
/// messages, those about frames take precedence over those about set-up. Chain thread, or start and stop
/// while it does not run.
class CkChainMessages {
public:
    /// The throttle counts the frames.
    explicit CkChainMessages(const CkRenegotiationThrottle& throttle) : m_throttle(throttle) {}

    /// Empty: the block was set up.
    static void showSetUpError(SkChainNode& node, const QString& sText);

    /// Shows a message until 30 frames in a row have caused none, so that it does not flicker. Of several
    /// different messages the first one stays.
    void showProblem(SkChainNode& node, const QString& sText) const;
    void clearExpiredProblem(SkChainNode& node) const; ///< Once per frame: clears an expired message.

    /// Suppresses the message signals of blocks while they are set up; listeners are notified once, of the
    /// outcome, when this object is destroyed.
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

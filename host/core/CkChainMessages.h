#pragma once

#include "host/core/SkChainNode.h"

#include <vector>

class CkRenegotiationThrottle;

/// The messages that a chain shows on its blocks. A block's own message has priority; of the chain's
/// messages, those about frames take precedence over those about set-up. Chain thread, or start and stop
/// while it does not run.
class CkChainMessages {
public:
    /// The throttle, which must outlive this object, counts the frames.
    explicit CkChainMessages(const CkRenegotiationThrottle& throttle) : m_throttle(throttle) {}

    /// An empty text clears the error.
    static void showSetUpError(SkChainNode& node, const QString& sText);

    /// Shows a message about a frame. It stays until 30 consecutive frames have caused none, so that it does
    /// not flicker; until then, other messages are ignored.
    void showProblem(SkChainNode& node, const QString& sText) const;
    /// To be called for every frame; clears an expired message.
    void clearExpiredProblem(SkChainNode& node) const;

    /// Suppresses the message signals of blocks while they are set up. When this object is destroyed, each
    /// block signals its final message, if it changed.
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

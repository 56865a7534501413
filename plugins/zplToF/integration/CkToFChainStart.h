#pragma once

#include <QPointer>

class CkChain;

/// Starts a stopped chain once, after all changes to it: at the end of the scope at the latest. No-op for a
/// chain that has been deleted or started by then. User-interface thread.
class CkToFChainStart {
public:
    CkToFChainStart();
    ~CkToFChainStart();
    CkToFChainStart(const CkToFChainStart&) = delete;
    CkToFChainStart& operator=(const CkToFChainStart&) = delete;

    /// The chain to start; may be null. Replaces the one given before.
    void later(CkChain* pChain);
    void now();

private:
    QPointer<CkChain> m_pending;
};

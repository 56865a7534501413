#include "host/recording/CkPlaybackState.h"

#include <utility>

bool CkPlaybackState::play(qint64 iFrameCount) {
    if (m_mode == EkMode::Playing) {
        return false;
    }
    m_mode = EkMode::Playing;
    m_iSteps = 0;
    m_iSkipped = 0;
    if (m_iNext >= iFrameCount) {
        m_iNext = 0;
    }
    return true;
}

bool CkPlaybackState::pause() {
    if (m_mode != EkMode::Playing) {
        return false;
    }
    m_mode = EkMode::Paused;
    return true;
}

void CkPlaybackState::step() {
    m_mode = EkMode::Stepping;
    ++m_iSteps;
}

void CkPlaybackState::seek(qint64 iFrame) {
    m_iNext = iFrame;
    if (m_mode != EkMode::Playing) {
        m_mode = EkMode::Stepping;
        m_iSteps = 1;
    }
    discardFrame();
}

void CkPlaybackState::rewind() {
    m_iNext = 0;
    m_iPosition = -1;
    m_iSkipped = 0;
    discardFrame();
}

void CkPlaybackState::close() {
    m_mode = EkMode::Closing;
    discardFrame();
}

void CkPlaybackState::frameDelivered(qint64 iFrame) {
    m_iPosition = iFrame;
    advance(iFrame);
}

bool CkPlaybackState::end() {
    m_iSteps = 0;
    return std::exchange(m_mode, EkMode::Paused) == EkMode::Playing;
}

void CkPlaybackState::advance(qint64 iFrame) {
    m_iNext = iFrame + 1;
    if (m_mode == EkMode::Stepping && --m_iSteps == 0) {
        m_mode = EkMode::Paused;
    }
}

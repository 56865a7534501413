#include "host/recording/CkPlaybackState.h"

#include <utility>

bool CkPlaybackState::play(qint64 iFrameCount) {
    if (m_mode == EkMode::Playing || m_mode == EkMode::Closing) {
        return false;
    }
    m_mode = EkMode::Playing;
    m_steps = 0;
    m_skipped = 0;
    if (m_next >= iFrameCount) {
        m_next = 0;
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

bool CkPlaybackState::step() {
    if (m_mode == EkMode::Closing) {
        return false;
    }
    ++m_steps;
    return std::exchange(m_mode, EkMode::Stepping) == EkMode::Playing;
}

void CkPlaybackState::seek(qint64 iFrame) {
    m_next = iFrame;
    if (m_mode == EkMode::Paused || m_mode == EkMode::Stepping) {
        m_mode = EkMode::Stepping;
        m_steps = 1;
    }
    discardFrame();
}

void CkPlaybackState::rewind() {
    m_next = 0;
    m_position = -1;
    m_skipped = 0;
    discardFrame();
}

void CkPlaybackState::close() {
    m_mode = EkMode::Closing;
    discardFrame();
}

void CkPlaybackState::frameDelivered(qint64 iFrame) {
    m_position = iFrame;
    advance(iFrame);
}

bool CkPlaybackState::end() {
    m_steps = 0;
    return std::exchange(m_mode, EkMode::Paused) == EkMode::Playing;
}

void CkPlaybackState::advance(qint64 iFrame) {
    m_next = iFrame + 1;
    if (m_mode == EkMode::Stepping && --m_steps == 0) {
        m_mode = EkMode::Paused;
    }
}

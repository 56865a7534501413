#include "host/recording/CkPageErrors.h"

#include <QCoreApplication>

namespace {

using namespace std::chrono_literals;

constexpr auto kBetweenTexts = 500ms;

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(CkPageErrors)
};

} // namespace

QString CkPageErrors::text() const {
    return m_runLength == 1 ? m_last : Texts::tr("%1 (%2 pages in a row)").arg(m_last).arg(m_runLength);
}

QString CkPageErrors::add(const QString& sError, Clock::time_point now) {
    m_last = sError;
    ++m_runLength;
    m_pending = m_runLength > 1 && now - m_shown < kBetweenTexts;
    if (m_pending) {
        return {};
    }
    m_shown = now;
    return text();
}

QString CkPageErrors::endOfRun() {
    QString rest = m_pending ? text() : QString();
    m_pending = false;
    m_runLength = 0;
    return rest;
}

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
    return m_iInRow == 1 ? m_sLast : Texts::tr("%1 (%2 pages in a row)").arg(m_sLast).arg(m_iInRow);
}

QString CkPageErrors::add(const QString& sError, Clock::time_point now) {
    m_sLast = sError;
    ++m_iInRow;
    m_bHeldBack = m_iInRow > 1 && now - m_shown < kBetweenTexts;
    if (m_bHeldBack) {
        return {};
    }
    m_shown = now;
    return text();
}

QString CkPageErrors::endOfRow() {
    QString rest = m_bHeldBack ? text() : QString();
    m_bHeldBack = false;
    m_iInRow = 0;
    return rest;
}

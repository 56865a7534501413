#include "zuCore/CkCameraParameters.h"

#include <QPointer>
#include <algorithm>
#include <utility>

CkCameraParameters::CkCameraParameters(const SkCameraInfo& info, CommitFunction commit, QObject* pParent)
    : QObject(pParent), m_info(info), m_commit(std::move(commit)) {}

CkCameraParameters::~CkCameraParameters() = default;

CkCameraParam* CkCameraParameters::addParam(const CkCameraParam::SkDescription& description) {
    if (findParam(description.name) != nullptr) {
        return nullptr;
    }
    auto* const param = new CkCameraParam(description, this);
    m_params.append(param);
    return param;
}

CkCameraParam* CkCameraParameters::findParam(const QString& sName, bool bIgnoreCase) const {
    const Qt::CaseSensitivity sensitivity = bIgnoreCase ? Qt::CaseInsensitive : Qt::CaseSensitive;
    const auto found = std::find_if(m_params.cbegin(), m_params.cend(), [&](const CkCameraParam* param) {
        return param->name().compare(sName, sensitivity) == 0;
    });
    return found == m_params.cend() ? nullptr : *found;
}

void CkCameraParameters::addParamCommitToBatch(CkCameraParam* pParam) {
    if (m_params.contains(pParam) && !m_batch.contains(pParam)) {
        m_batch.append(pParam);
    }
}

bool CkCameraParameters::endCommitBatch(bool bCommit) {
    const QList<CkCameraParam*> batch = std::exchange(m_batch, {});
    if (bCommit) {
        return commitParams(batch);
    }
    restoreParams(batch);
    return true;
}

bool CkCameraParameters::commitParams(const QList<CkCameraParam*>& params) {
    bool accepted = true;
    if (!params.isEmpty() && m_commit) {
        // A driver is foreign code; an exception counts as a refusal.
        try {
            accepted = m_commit(params);
        } catch (...) {
            accepted = false;
        }
    }
    if (!accepted) {
        restoreParams(params);
        return false;
    }
    QList<CkCameraParam*> changed;
    for (CkCameraParam* param : params) {
        if (param->m_description.value != param->m_pending) {
            param->m_description.value = param->m_pending;
            changed.append(param);
        }
    }
    // All values are stored before the first receiver is notified. A receiver may close the camera.
    const QPointer<CkCameraParameters> guard(this);
    for (CkCameraParam* param : std::as_const(changed)) {
        emit param->valueChanged(param->committedValue());
        if (!guard) {
            return true;
        }
    }
    emit committed(changed);
    return true;
}

void CkCameraParameters::restoreParams(const QList<CkCameraParam*>& params) {
    const QPointer<CkCameraParameters> guard(this);
    for (CkCameraParam* param : params) {
        if (param->m_pending != param->m_description.value) {
            param->m_pending = param->m_description.value;
            emit param->pendingValueChanged(param->m_pending);
            if (!guard) {
                return;
            }
        }
    }
}

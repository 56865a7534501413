#pragma once

#include "zuCore/CkCameraParam.h"

#include <QHash>
#include <QObject>
#include <functional>

/// Identifies a camera.
struct SkCameraInfo {
    QString id;             ///< unique over all drivers, the same each time the camera is plugged in
    QString name;           ///< to be displayed
    QString model;          ///< the manufacturer's designation
    QString serial;         ///< empty when the camera has none
    quint32 sensorType = 0; ///< see ToFSensorType; 0: any other
};

/// The parameters of an open camera. Lives as long as the camera is open, or until it is plugged in again
/// (CkCameraManager::cameraPluggedIn); user-interface thread.
class ZUCORE_EXPORT CkCameraParameters : public QObject {
    Q_OBJECT

public:
    /// Called with the parameters whose pending values are to be applied to the camera as one change, in the
    /// order in which they were added. False when the camera refuses; all of them are then restored.
    using CommitFunction = std::function<bool(const QList<CkCameraParam*>&)>;

    explicit CkCameraParameters(const SkCameraInfo& info, CommitFunction commit, QObject* pParent = nullptr);
    ~CkCameraParameters() override;

    const SkCameraInfo& cameraInfo() const { return m_info; } ///< Of the camera they belong to.

    /// Adds a new parameter. Null when the name is already in use.
    CkCameraParam* addParam(const CkCameraParam::SkDescription& description);
    QList<CkCameraParam*> params() const { return m_params; } ///< In the driver's order.

    /// The named parameter or null. bIgnoreCase compares names without regard to case.
    CkCameraParam* findParam(const QString& sName, bool bIgnoreCase = false) const;

    /// Adds a parameter whose value was set to the next batch; adding it twice is allowed.
    void addParamCommitToBatch(CkCameraParam* pParam);
    /// Ends the batch: bCommit sends all its values to the camera as one change, otherwise they are
    /// discarded. Committing an empty batch succeeds.
    bool endCommitBatch(bool bCommit);

signals:
    /// Emitted after each successful batch or single commit, with the parameters that changed.
    void committed(const QList<CkCameraParam*>& params);

private:
    friend class CkCameraParam;

    bool commitParams(const QList<CkCameraParam*>& params);
    void restoreParams(const QList<CkCameraParam*>& params);

    SkCameraInfo m_info;
    CommitFunction m_commit;
    QList<CkCameraParam*> m_params;
    QList<CkCameraParam*> m_batch;
};

#include "host/recording/CkRecorder.h"
#include "tools/tof/CkToFArguments.h"
#include "tools/tof/CkToFInput.h"
#include "tools/tof/CkToFProgress.h"
#include "tools/tof/ToFCommands.h"
#include "tools/tof/base/ToFText.h"

#include "sim/camera/CkSimCameraDriver.h"
#include "zuCore/CkCameraManager.h"
#include "zuCore/CkCameraSource.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainManager.h"
#include "zuCore/CkImageData.h"

#include <QDomDocument>

#include <atomic>
#include <chrono>
#include <thread>

namespace {

bool isNumber(const CkCameraParam::SkDescription& about) {
    return about.kind == CkCameraParam::EkKind::Integer || about.kind == CkCameraParam::EkKind::Float;
}

/// The values a parameter accepts: ", 1 to 60" or ": 0 Room, 1 Flat wall".
QString choices(const CkCameraParam::SkDescription& about) {
    QStringList entries;
    for (const CkCameraParam::SkEnumEntry& entry : about.entries) {
        entries.append(QStringLiteral("%1 %2").arg(entry.value).arg(entry.text));
    }
    if (!entries.isEmpty()) {
        return QStringLiteral(": ") + entries.join(QStringLiteral(", "));
    }
    return isNumber(about) && about.minimum < about.maximum
               ? QStringLiteral(", %1 to %2").arg(about.minimum).arg(about.maximum)
               : QString();
}

void listCameras() {
    CkCameraManager& manager = *CkCameraManager::instance();
    for (const SkCameraInfo& camera : manager.availableCameras()) {
        ToFConsole::print(QStringLiteral("%1  %2 (%3)").arg(camera.id, camera.name, camera.model));
        void* const handle = manager.openCamera(camera.id);
        const CkCameraParameters* const parameters = manager.cameraParameters(handle);
        if (parameters == nullptr) {
            continue;
        }
        for (const CkCameraParam* param : parameters->params()) {
            const CkCameraParam::SkDescription& about = param->description();
            ToFConsole::print(
                QStringLiteral("    %1=%2 %3  %4%5")
                    .arg(about.name, about.value.toString(), about.unit, about.displayName, choices(about)));
        }
        manager.closeCamera(handle);
    }
}

/// Commits all parameters in one batch. False, with an error message, when one is refused.
bool applySettings(CkCameraParameters& parameters, const QStringList& settings) {
    for (const QString& setting : settings) {
        const QString name = setting.section(QLatin1Char('='), 0, 0).trimmed();
        const QString text = setting.section(QLatin1Char('='), 1).trimmed();
        CkCameraParam* const param = parameters.findParam(name);
        if (param == nullptr || !setting.contains(QLatin1Char('='))) {
            ToFConsole::error(
                QStringLiteral("--set expects NAME=VALUE with a name that \"tof record --list\" shows, "
                               "not \"%1\".")
                    .arg(setting));
            return false;
        }
        bool number = false;
        const double wanted = text.toDouble(&number);
        const bool flag = text == QLatin1String("true") || text == QLatin1String("false");
        if ((!number && !flag) || !param->setParamValue(CkValue(text))) {
            ToFConsole::error(QStringLiteral("\"%1\" is not a value of %2.").arg(text, name));
            return false;
        }
        // The parameter would clamp the value, and the recording would not be what was requested.
        const CkCameraParam::SkDescription& about = param->description();
        if (number && isNumber(about) && about.minimum < about.maximum &&
            !(wanted >= about.minimum && wanted <= about.maximum)) {
            ToFConsole::error(QStringLiteral("%1 takes %2 to %3 %4, not %5.")
                                  .arg(name, QString::number(about.minimum), QString::number(about.maximum),
                                       about.unit, text)
                                  .replace(QLatin1String(" ,"), QLatin1String(",")));
            return false;
        }
        parameters.addParamCommitToBatch(param);
    }
    if (!parameters.endCommitBatch(true)) {
        ToFConsole::error(QStringLiteral("The camera refuses these settings."));
        return false;
    }
    return true;
}

QString chainOf(void* handle) {
    CkChain* const chain = CkChainManager::instance()->createChain();
    if (chain == nullptr) {
        return {};
    }
    QDomDocument document;
    QDomElement element;
    const bool saved = CkChainManager::instance()->insertAfter(chain, new CkCameraSource(handle), nullptr) &&
                       chain->save(document, element);
    if (saved && document.documentElement().isNull()) {
        document.appendChild(element);
    }
    QString xml = saved ? document.toString(1) : QString();
    CkChainManager::instance()->closeChain(chain);
    return xml;
}

QString verb(qint64 count) {
    return count == 1 ? QStringLiteral("was") : QStringLiteral("were");
}

int record(void* handle, qint64 frames, const QString& file, EkRecordingCompression compression) {
    CkCameraManager& manager = *CkCameraManager::instance();
    CkRecorder recorder;
    QString error;
    if (!recorder.start(file, {chainOf(handle), {}, tofSoftware()}, {compression, 16}, &error)) {
        ToFConsole::error(error);
        return ToFOutput;
    }
    std::atomic<qint64> taken{0};
    const int receiver = 0;
    manager.addFrameReceiver(handle, &receiver, [&](CkImageData* pData) {
        std::unique_ptr<CkImageData> data(pData);
        // Blocking the simulated camera is allowed, so no frame is dropped.
        if (taken < frames && recorder.waitForSpace()) {
            ++taken;
            recorder.takeFrame(data.release());
        }
    });
    if (!manager.startAcquisition(handle, &error)) {
        ToFConsole::error(error);
        return ToFInput;
    }
    {
        CkToFProgress progress(QStringLiteral("Recording"));
        while (taken < frames && recorder.state().error.isEmpty()) {
            progress.show(taken, frames);
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }
    manager.stopAcquisition(handle);
    manager.removeFrameReceiver(&receiver);
    recorder.stop();
    const CkRecorder::SkState state = recorder.state();
    if (!state.error.isEmpty() || state.dropped != 0) {
        ToFConsole::error(QStringLiteral("%1 %2 %3 recorded, %4 %5 lost.")
                              .arg(state.error, tofCount(state.written, "frame"), verb(state.written),
                                   QString::number(state.dropped), verb(state.dropped)));
        return ToFOutput;
    }
    return ToFSuccess;
}

} // namespace

int tofRecord(const QStringList& arguments) {
    CkToFArguments options(
        QStringLiteral("record [options] RECORDING"), QStringLiteral("Records frames of a simulated camera."),
        {QStringLiteral("tof record --camera wave --frames 100 room.tif"),
         QStringLiteral("tof record --set sim_scene=1 --set sim_wall_distance=1.5 wall.tif"),
         QStringLiteral("tof record --camera hybrid --compress hybrid.tif"),
         QStringLiteral("tof record --list")});
    options.addValue(QStringLiteral("camera"), QStringLiteral("NAME"),
                     QStringLiteral("wave (the default), hybrid or grey."));
    options.addValue(QStringLiteral("frames"), QStringLiteral("N"),
                     QStringLiteral("How many; 30 by default."));
    options.addValue(QStringLiteral("set"), QStringLiteral("NAME=VALUE"),
                     QStringLiteral("Sets a parameter of the camera; may be given several times."));
    options.addFlag(QStringLiteral("compress"), QStringLiteral("Compresses without loss."));
    options.addFlag(QStringLiteral("list"), QStringLiteral("Lists cameras and their parameters."));
    CkCameraManager& manager = *CkCameraManager::instance();
    if (manager.availableCameras().isEmpty()) {
        manager.addDriver(std::make_unique<CkSimCameraDriver>());
    }
    if (arguments.contains(QStringLiteral("--list"))) {
        listCameras();
        return ToFSuccess;
    }
    options.addArgument(QStringLiteral("RECORDING"), QStringLiteral("File to write."));
    if (const auto code = options.parse(arguments)) {
        return *code;
    }
    qint64 frames = 30;
    if (!tofMayBeRecording(options.argument(0)) || !options.readNumber(QStringLiteral("frames"), 1, frames)) {
        return ToFUsage;
    }
    QString camera = options.has(QStringLiteral("camera")) ? options.value(QStringLiteral("camera"))
                                                           : QStringLiteral("wave");
    if (!camera.contains(QLatin1Char(':'))) {
        camera.prepend(QLatin1String("sim:"));
    }
    QString error;
    void* const handle = manager.openCamera(camera, &error);
    if (handle == nullptr) {
        ToFConsole::error(error);
        return ToFUsage;
    }
    int code = ToFUsage;
    if (applySettings(*manager.cameraParameters(handle), options.values(QStringLiteral("set")))) {
        code = record(handle, frames, options.argument(0),
                      options.has(QStringLiteral("compress")) ? EkRecordingCompression::Deflate
                                                              : EkRecordingCompression::None);
    }
    manager.closeCamera(handle);
    return code;
}

#!/usr/bin/env bash
# Proves the dependency arrows: for each room one line that includes a header the room may see compiles with the room's
# own flags, and one that includes a header it must not see does not, because the compiler finds no such file.
#   rooms.sh SOURCE_DIR BUILD_DIR
set -u
source_dir=$1
build_dir=$2
bad=0
checked=0
complain() {
    printf '%s\n' "$*"
    bad=1
}

# target | headers it may include | headers it must not include
rooms='
zuPicture | zuCore/SkPicBuf.h | zuCoreGui/CkMdiView.h host/core/CkChainGraph.h host/recording/IkFrameFile.h
zuCore | host/picture/CkPicMemory.h | zuCoreGui/CkMdiView.h host/recording/IkFrameFile.h host/viewer/base/ChainFile.h
zuCoreGui | zuCore/CkChain.h | host/core/CkFrameQueue.h host/picture/CkPicMemory.h host/viewer/base/ChainFile.h
zuRecording | zuCore/CkImageSource.h | host/core/CkFrameQueue.h zuCoreGui/CkMdiView.h host/viewer/base/ChainFile.h plugins/zplToF/pic/CkToFPicAPI.h
zuViewerBase | zuCore/CkChain.h | zuCoreGui/CkMdiView.h host/recording/IkFrameFile.h host/viewer/picture/CkImageView.h
zuViewerTranslations | host/viewer/base/ViewerLanguage.h | zuCore/CkChain.h host/viewer/shell/CkMainWindow.h
zuViewerPicture | host/recording/SkFrameDescription.h | host/viewer/area/CkViewArea.h host/viewer/panels/lut/CkLutPanel.h
zuViewerArea | host/viewer/picture/CkImageView.h | host/recording/SkFrameDescription.h host/viewer/panels/lut/CkLutPanel.h host/viewer/shell/CkMainWindow.h
zuViewerCameraPanel | host/viewer/area/CkViewArea.h | host/viewer/panels/chain/CkChainPanel.h host/viewer/playback/CkPlayback.h host/viewer/session/SkWindowLayout.h host/viewer/shell/CkMainWindow.h host/recording/IkFrameFile.h sim/camera/CkSimCamera.h
zuViewerChainPanel | host/viewer/area/CkViewArea.h | host/viewer/panels/camera/CkCameraController.h host/viewer/playback/CkPlayback.h host/viewer/shell/CkMainWindow.h host/recording/IkFrameFile.h
zuViewerLogPanel | host/viewer/panels/log/CkLogSink.h | zuCore/CkChain.h host/viewer/base/ViewerSettings.h host/viewer/area/CkViewArea.h
zuViewerLutPanel | host/viewer/area/CkViewArea.h | host/viewer/panels/quality/CkQualityPanel.h host/viewer/playback/CkPlayback.h host/viewer/shell/CkMainWindow.h
zuViewerQualityPanel | host/viewer/area/CkViewArea.h | host/viewer/panels/lut/CkLutPanel.h host/viewer/playback/CkPlayback.h host/viewer/shell/CkMainWindow.h
zuViewerPlayback | host/recording/CkVideoSource.h host/viewer/area/CkViewArea.h | host/viewer/panels/camera/CkCameraController.h host/viewer/session/SkWindowLayout.h host/viewer/shell/CkMainWindow.h
zuViewerPlugins | host/viewer/base/ViewerVersion.h | host/viewer/picture/CkImageView.h host/viewer/panels/log/CkLogSink.h host/viewer/session/SkWindowLayout.h plugins/zplToF/CkToFPlugin.h
zuPluginProbe | host/viewer/plugins/PluginProbeSteps.h | host/viewer/area/CkViewArea.h host/viewer/shell/CkMainWindow.h plugins/zplToF/CkToFPlugin.h
zuViewerSession | host/viewer/panels/camera/CkCameraController.h | host/viewer/panels/log/CkLogSink.h host/viewer/panels/quality/CkQualityPanel.h host/viewer/playback/CkPlayback.h host/viewer/shell/CkMainWindow.h
zuViewerShell | sim/camera/CkSimCameraDriver.h host/viewer/session/SkWindowLayout.h | host/core/CkFrameQueue.h plugins/zplToF/CkToFPlugin.h plugins/zplToF/pic/CkToFPicAPI.h
zuSimSynth | zuCore/SkPicBuf.h | zuCore/ToFVocabulary.h zuCore/CkImageMetadata.h plugins/zplToF/pic/CkToFPicAPI.h sim/camera/CkSimCamera.h
zuSimCamera | sim/synth/CkSimRaster.h | host/core/CkOpenCamera.h host/viewer/base/ChainFile.h plugins/zplToF/pic/CkToFPicAPI.h
zplToFKernels | zuCore/SkPicBuf.h | plugins/zplToF/pic/CkToFPicAPI.h zuCoreGui/CkMdiView.h host/picture/CkPicMemory.h
zplToFPic | plugins/zplToF/pic/kernels/SkToFKernels.h | plugins/zplToF/transform/CkToFTransformer.h plugins/zplToF/cloud/CkToFDepthFrame.h zuCoreGui/CkMdiView.h
zplToFTransform | plugins/zplToF/pic/CkToFPicAPI.h | plugins/zplToF/pic/kernels/SkToFKernels.h plugins/zplToF/chain/CkToFProcessCnbl.h plugins/zplToF/cloud/CkToFDepthFrame.h zuCoreGui/CkMdiView.h tools/tof/base/CkToFPipeline.h
zplToFCloud | plugins/zplToF/pic/kernels/ToFKernelChoice.h | plugins/zplToF/transform/CkToFTransformer.h plugins/zplToF/view3d/3dMdiView.h zuCoreGui/CkMdiView.h
zplToFChain | plugins/zplToF/transform/CkToFTransformer.h | plugins/zplToF/pic/kernels/SkToFKernels.h plugins/zplToF/cloud/CkToFDepthFrame.h plugins/zplToF/view3d/3dMdiView.h plugins/zplToF/integration/CkToFActions.h
zplToFOpticalPath | zuCore/CkValue.h | plugins/zplToF/view3d/3dMdiView.h plugins/zplToF/cloud/SkToFOpticalPath.h plugins/zplToF/calibration/CkToFCalibrateOffsetDlg.h
zplToFView3d | plugins/zplToF/opticalpath/CkToFOpticalPathSettingsDlg.h plugins/zplToF/cloud/CkToFDepthFrame.h | plugins/zplToF/pic/CkToFPicAPI.h plugins/zplToF/transform/CkToFTransformer.h plugins/zplToF/chain/CkToFProcessCnbl.h plugins/zplToF/calibration/CkToFCalibrateOffsetDlg.h plugins/zplToF/integration/CkToFActions.h
zplToFCalibration | plugins/zplToF/view3d/ToFDistanceOffset.h | plugins/zplToF/opticalpath/CkToFOpticalPathSettingsDlg.h plugins/zplToF/pic/kernels/SkToFKernels.h plugins/zplToF/chain/CkToFProcessCnbl.h plugins/zplToF/integration/CkToFActions.h
zplToFIntegration | plugins/zplToF/calibration/CkToFCalibrateOffsetDlg.h | plugins/zplToF/opticalpath/CkToFOpticalPathSettingsDlg.h plugins/zplToF/pic/kernels/SkToFKernels.h plugins/zplToF/CkToFPlugin.h host/viewer/area/CkViewArea.h
zplToFTranslations | plugins/zplToF/translations/ToFTranslation.h | zuCore/CkChain.h plugins/zplToF/CkToFPlugin.h
zplToF | plugins/zplToF/integration/CkToFActions.h plugins/zplToF/view3d/3dMdiView.h | plugins/zplToF/calibration/CkToFCalibrateOffsetDlg.h plugins/zplToF/opticalpath/CkToFOpticalPathSettingsDlg.h plugins/zplToF/pic/kernels/SkToFKernels.h host/core/CkChainGraph.h host/recording/CkVideoSource.h
tofBase | plugins/zplToF/transform/CkToFTransformer.h | tools/tof/CkToFInput.h tools/tof/accuracy/ToFAccuracyRun.h host/recording/IkFrameFile.h sim/camera/SkSimPlan.h zuCoreGui/CkMdiView.h
tofAccuracy | sim/synth/CkSimNoise.h tools/tof/base/CkToFPipeline.h | tools/tof/CkToFInput.h host/recording/IkFrameFile.h zuCoreGui/CkMdiView.h
tof | host/recording/CkRecordingReader.h tools/tof/accuracy/ToFAccuracyRun.h | zuCoreGui/CkMdiView.h plugins/zplToF/chain/CkToFProcessCnbl.h host/viewer/base/ChainFile.h
'

work=$(mktemp -d) || exit 1
trap 'rm -rf "$work"' EXIT

# The flags of each target: those of its first source. The lines of the compile commands are JSON strings.
declare -A flags
while read -r command; do
    [[ $command =~ /CMakeFiles/([A-Za-z0-9]+)\.dir/ ]] || continue
    [ -n "${flags[${BASH_REMATCH[1]}]:-}" ] || flags[${BASH_REMATCH[1]}]=${command% -o *}
done < <(sed -nE 's/^ *"command": "(.*)",$/\1/p' "$build_dir/compile_commands.json" | sed 's/\\\(.\)/\1/g')

# compiles TARGET HEADER: whether a line that includes the header compiles; messages go to $work/log.
compiles() {
    printf '#include "%s"\n' "$2" >"$work/line.cpp"
    (cd "$build_dir" && eval "LC_ALL=C ${flags[$1]} -w -fsyntax-only '$work/line.cpp'") >"$work/log" 2>&1
}

# A header that was renamed or removed would be refused for the wrong reason.
exists() {
    [ -f "$source_dir/$1" ] || [ -f "$source_dir/hostsdk/include/$1" ] || complain "This test names $1, which is not there."
}

listed=' '
while IFS='|' read -r target allowed forbidden; do
    target=${target// /}
    [ -n "$target" ] || continue
    listed+="$target "
    [ -n "${flags[$target]:-}" ] || { complain "No source of $target is compiled."; continue; }
    for header in $allowed; do
        exists "$header"
        compiles "$target" "$header" || complain "$target may include $header, but: $(head -n 5 "$work/log")"
        checked=$((checked + 1))
    done
    for header in $forbidden; do
        exists "$header"
        if compiles "$target" "$header"; then
            complain "$target must not include $header, but it compiles."
        else
            grep -qE "error: .?$header.?(: No such file| file not found)" "$work/log" ||
                complain "$target does not find $header, but for another reason: $(head -n 5 "$work/log")"
        fi
        checked=$((checked + 1))
    done
done <<<"$rooms"

# Every room is in the table. Those of the SDK have no sources, and tests, benchmarks and fuzz targets see everything.
for room in "$build_dir"/rooms/*; do
    room=$(basename "$room")
    [[ $room =~ ^(hostsdk-.*|tests|bench|fuzz)$ || $listed == *" $room "* ]] || complain "$room is in no line of this test."
done
[ $bad = 0 ] && echo "$checked includes compile or fail as the arrows want it."
exit $bad

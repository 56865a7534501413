#include "sim/camera/CkSimParameters.h"

#include "zuCore/ToFVocabulary.h"

#include <QCoreApplication>

#include <functional>
#include <vector>

namespace {

using SkDescription = CkCameraParam::SkDescription;
using EkKind = CkCameraParam::EkKind;

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(CkSimCamera)
};

/// A parameter: its description, and the functions that read it from the settings and write it to them.
struct SkBinding {
    SkDescription description;
    std::function<CkValue(const SkSimSettings&)> read;
    std::function<void(SkSimSettings&, const CkValue&)> write;
};

SkDescription describe(const QString& name, const QString& displayName, const QString& toolTip, EkKind kind) {
    SkDescription description;
    description.name = name;
    description.displayName = displayName;
    description.toolTip = toolTip;
    description.kind = kind;
    return description;
}

/// Unit and limits of a numeric parameter.
struct SkRange {
    const char* unit;
    double minimum;
    double maximum;
    double step;
};

SkDescription number(const QString& name, const QString& displayName, const QString& toolTip,
                     const SkRange& range, EkKind kind = EkKind::Float) {
    SkDescription description = describe(name, displayName, toolTip, kind);
    description.unit = QString::fromLatin1(range.unit);
    description.minimum = range.minimum;
    description.maximum = range.maximum;
    description.step = range.step;
    return description;
}

SkDescription flag(const QString& name, const QString& displayName, const QString& toolTip) {
    return describe(name, displayName, toolTip, EkKind::Bool);
}

SkDescription choice(const QString& name, const QString& displayName, const QString& toolTip,
                     const QList<CkCameraParam::SkEnumEntry>& entries, bool acceptsUnlisted = false) {
    SkDescription description = describe(name, displayName, toolTip, EkKind::Enumeration);
    description.entries = entries;
    description.acceptsUnlisted = acceptsUnlisted;
    return description;
}

using Settings = SkSimSettings;

void addWaveBindings(std::vector<SkBinding>& bindings) {
    bindings.push_back(
        {choice(ToFParameter::kReadoutMode, Texts::tr("ToF readout mode"),
                Texts::tr("What the sensor reads out. Any other value delivers plain grey pictures."),
                {{ToFReadoutMode::kGrey, Texts::tr("Grey, no ToF")},
                 {ToFReadoutMode::kAminusB, Texts::tr("A minus B")},
                 {ToFReadoutMode::kAandB, Texts::tr("A and B")}},
                true),
         [](const Settings& s) { return CkValue(s.readoutMode); },
         [](Settings& s, const CkValue& v) { s.readoutMode = v.toInt(); }});
    bindings.push_back(
        {choice(ToFParameter::kDataFormat, Texts::tr("Image data format"),
                Texts::tr("Format of the frames. One that does not fit the readout mode delivers "
                          "plain grey pictures."),
                {{ToFDataFormat::kAminusB8, Texts::tr("A minus B, 8 bit")},
                 {ToFDataFormat::kAminusB16, Texts::tr("A minus B, 16 bit")},
                 {ToFDataFormat::kAminusB8Alternate, Texts::tr("A minus B, 8 bit, second code")},
                 {ToFDataFormat::kAminusB16Alternate, Texts::tr("A minus B, 16 bit, second code")},
                 {ToFDataFormat::kAandB8, Texts::tr("A and B, 8 bit")},
                 {ToFDataFormat::kAandB12, Texts::tr("A and B, 12 bit in 16")}},
                true),
         [](const Settings& s) { return CkValue(s.dataFormat); },
         [](Settings& s, const CkValue& v) { s.dataFormat = v.toInt(); }});
    bindings.push_back({number("tof_modulation_frequency", Texts::tr("Modulation frequency"),
                               Texts::tr("Frequency of the modulated light. Distances repeat every 149.85 m "
                                         "divided by it in MHz."),
                               {.unit = "MHz", .minimum = 1.0, .maximum = 120.0, .step = 0.01}),
                        [](const Settings& s) { return CkValue(s.modulationMHz); },
                        [](Settings& s, const CkValue& v) { s.modulationMHz = v.toDouble(); }});
    bindings.push_back(
        {choice("tof_phases", Texts::tr("Phases"), Texts::tr("Phase images of one measurement."),
                {{1, Texts::tr("1 (0 degrees)")},
                 {2, Texts::tr("2 (0, 90 degrees)")},
                 {4, Texts::tr("4 (every 90 degrees)")},
                 {8, Texts::tr("8 (every 45 degrees)")}}),
         [](const Settings& s) { return CkValue(s.phases); },
         [](Settings& s, const CkValue& v) { s.phases = v.toInt(); }});
    bindings.push_back({choice("tof_phase_images", Texts::tr("Phase images"),
                               Texts::tr("How the phases of one measurement arrive."),
                               {{0, Texts::tr("Stacked in one image")}, {1, Texts::tr("Separate images")}}),
                        [](const Settings& s) { return CkValue(int(s.separateImages)); },
                        [](Settings& s, const CkValue& v) { s.separateImages = v.toInt() == 1; }});
}

void addHybridBindings(std::vector<SkBinding>& bindings) {
    bindings.push_back(
        {choice(ToFParameter::kDataFormat, Texts::tr("Image data format"),
                Texts::tr("Format of the frames. Any other value delivers plain grey pictures."),
                {{ToFDataFormat::kGrey8, Texts::tr("Grey, 8 bit")},
                 {ToFDataFormat::kGrey16, Texts::tr("Grey, 16 bit")},
                 {ToFDataFormat::kHybrid8, Texts::tr("X1X2X3, 8 bit")},
                 {ToFDataFormat::kHybrid12, Texts::tr("X1X2X3, 12 bit in 16")}},
                true),
         [](const Settings& s) { return CkValue(s.dataFormat); },
         [](Settings& s, const CkValue& v) { s.dataFormat = v.toInt(); }});
    bindings.push_back(
        {number("hybrid_pulse_duration", Texts::tr("Pulse duration"),
                Texts::tr("Length of the light pulse and of each window. Distances up to 0.29979 m "
                          "per ns are measured."),
                {.unit = "ns", .minimum = 1.0, .maximum = 200.0, .step = 0.1}),
         [](const Settings& s) { return CkValue(s.pulseNs); },
         [](Settings& s, const CkValue& v) { s.pulseNs = v.toDouble(); }});
    bindings.push_back(
        {number("hybrid_sections", Texts::tr("HDR sections"),
                Texts::tr("Exposures of one measurement, each twice as sensitive as the one before."),
                {.unit = "", .minimum = 1.0, .maximum = 4.0, .step = 1.0}, EkKind::Integer),
         [](const Settings& s) { return CkValue(s.sections); },
         [](Settings& s, const CkValue& v) { s.sections = v.toInt(); }});
    bindings.push_back({choice("hybrid_section_images", Texts::tr("Section images"),
                               Texts::tr("How the sections of one measurement arrive."),
                               {{0, Texts::tr("Stacked in one image")}, {1, Texts::tr("Separate images")}}),
                        [](const Settings& s) { return CkValue(int(s.separateImages)); },
                        [](Settings& s, const CkValue& v) { s.separateImages = v.toInt() == 1; }});
    bindings.push_back(
        {choice("hybrid_section_mode", Texts::tr("Section mode"),
                Texts::tr("With a reference, section 0 holds the dark level and background light "
                          "that is subtracted from the others."),
                {{int(ToFSectionMode::kMeasurementOnly), Texts::tr("Measurement only")},
                 {int(ToFSectionMode::kReferenceFirst), Texts::tr("Reference first")}}),
         [](const Settings& s) { return CkValue(s.sectionMode); },
         [](Settings& s, const CkValue& v) { s.sectionMode = v.toInt(); }});
}

/// For every camera that measures distances.
void addToFBindings(std::vector<SkBinding>& bindings) {
    bindings.push_back({choice("sim_converter_bits", Texts::tr("Converter"),
                               Texts::tr("Bits of the 16-bit formats. 16 bits show the accuracy of the "
                                         "processing rather than that of the sensor."),
                               {{12, Texts::tr("12 bit")}, {16, Texts::tr("16 bit")}}),
                        [](const Settings& s) { return CkValue(s.converterBits); },
                        [](Settings& s, const CkValue& v) { s.converterBits = v.toInt(); }});
    bindings.push_back({number("sim_distance_offset", Texts::tr("Built-in offset"),
                               Texts::tr("Constant error that the camera adds to every distance."),
                               {.unit = "m", .minimum = -5.0, .maximum = 5.0, .step = 0.001}),
                        [](const Settings& s) { return CkValue(s.exposure.distanceOffsetM); },
                        [](Settings& s, const CkValue& v) { s.exposure.distanceOffsetM = v.toDouble(); }});
    bindings.push_back({number("lens_focal_length", Texts::tr("Focal length"),
                               Texts::tr("Of the simulated lens; the pitch of the pixels is 10 um."),
                               {.unit = "mm", .minimum = 1.0, .maximum = 50.0, .step = 0.01}),
                        [](const Settings& s) { return CkValue(s.focalLengthMm); },
                        [](Settings& s, const CkValue& v) { s.focalLengthMm = v.toDouble(); }});
    bindings.push_back(
        {flag("lens_report", Texts::tr("Report focal length"),
              Texts::tr("Send the focal length with every frame. Views then use it in place of "
                        "their own setting.")),
         [](const Settings& s) { return CkValue(s.reportFocalLength); },
         [](Settings& s, const CkValue& v) { s.reportFocalLength = v.toBool(); }});
}

void addCommonBindings(std::vector<SkBinding>& bindings) {
    bindings.push_back({number("framerate", Texts::tr("Frame rate"), Texts::tr("Measurements per second."),
                               {.unit = "1/s", .minimum = 0.1, .maximum = 200.0, .step = 0.1}),
                        [](const Settings& s) { return CkValue(s.frameRate); },
                        [](Settings& s, const CkValue& v) { s.frameRate = v.toDouble(); }});
    bindings.push_back(
        {number("exposure", Texts::tr("Exposure"),
                Texts::tr("Time for which light is collected in one exposure. Near things need a "
                          "shorter one: 0.4 m saturates after 200 us."),
                {.unit = "us", .minimum = 1.0, .maximum = 20000.0, .step = 1.0}),
         [](const Settings& s) { return CkValue(s.exposure.timeUs); },
         [](Settings& s, const CkValue& v) { s.exposure.timeUs = v.toDouble(); }});
    bindings.push_back(
        {choice("sim_scene", Texts::tr("Scene"), Texts::tr("What stands in front of the camera."),
                {{0, Texts::tr("Room with moving sphere")}, {1, Texts::tr("Flat wall")}}),
         [](const Settings& s) { return CkValue(int(s.scene)); },
         [](Settings& s, const CkValue& v) {
             s.scene = v.toInt() == 1 ? EkSimScene::Wall : EkSimScene::Room;
         }});
    bindings.push_back({number("sim_wall_distance", Texts::tr("Wall distance"),
                               Texts::tr("Distance of the flat wall along the optical axis."),
                               {.unit = "m", .minimum = 0.05, .maximum = 30.0, .step = 0.001}),
                        [](const Settings& s) { return CkValue(s.wallDistanceM); },
                        [](Settings& s, const CkValue& v) { s.wallDistanceM = v.toDouble(); }});
    bindings.push_back({number("sim_wall_reflectivity", Texts::tr("Wall reflectivity"),
                               Texts::tr("Share of the light that the flat wall sends back."),
                               {.unit = "%", .minimum = 1.0, .maximum = 100.0, .step = 1.0}),
                        [](const Settings& s) { return CkValue(s.wallReflectivity * 100.0); },
                        [](Settings& s, const CkValue& v) { s.wallReflectivity = v.toDouble() / 100.0; }});
    bindings.push_back({number("sim_ambient", Texts::tr("Ambient light"),
                               Texts::tr("Brightness of the lamps. 100 % is ordinary room light."),
                               {.unit = "%", .minimum = 0.0, .maximum = 1000.0, .step = 1.0}),
                        [](const Settings& s) { return CkValue(s.exposure.ambient * 100.0); },
                        [](Settings& s, const CkValue& v) { s.exposure.ambient = v.toDouble() / 100.0; }});
    bindings.push_back(
        {flag("sim_noise", Texts::tr("Noise"), Texts::tr("Shot noise and read noise of the sensor.")),
         [](const Settings& s) { return CkValue(s.exposure.noise); },
         [](Settings& s, const CkValue& v) { s.exposure.noise = v.toBool(); }});
    bindings.push_back(
        {number("sim_seed", Texts::tr("Noise seed"),
                Texts::tr("The same seed gives the same noise in every frame."),
                {.unit = "", .minimum = 0.0, .maximum = 1000000.0, .step = 1.0}, EkKind::Integer),
         [](const Settings& s) { return CkValue(qint64(s.exposure.seed)); },
         [](Settings& s, const CkValue& v) { s.exposure.seed = quint32(v.toInt64()); }});
}

/// Initial settings of a camera of this kind: ready for ToF.
SkSimSettings startSettings(EkSimCameraKind kind) {
    SkSimSettings settings;
    if (kind == EkSimCameraKind::Wave) {
        settings.dataFormat = ToFDataFormat::kAandB12;
    }
    if (kind == EkSimCameraKind::Hybrid) {
        settings.dataFormat = ToFDataFormat::kHybrid12;
    }
    return settings;
}

} // namespace

CkSimParameters::CkSimParameters(EkSimCameraKind kind, CkCameraParameters& parameters) : m_kind(kind) {
    std::vector<SkBinding> bindings;
    if (kind == EkSimCameraKind::Wave) {
        addWaveBindings(bindings);
    }
    if (kind == EkSimCameraKind::Hybrid) {
        addHybridBindings(bindings);
    }
    addCommonBindings(bindings);
    if (kind != EkSimCameraKind::Grey) {
        addToFBindings(bindings);
    }

    const SkSimSettings start = startSettings(kind);
    for (SkBinding& binding : bindings) {
        binding.description.value = binding.read(start);
        if (CkCameraParam* param = parameters.addParam(binding.description)) {
            m_bound.push_back({param, std::move(binding.write)});
        }
    }
}

SkSimSettings CkSimParameters::settings(const QList<CkCameraParam*>& committing) const {
    SkSimSettings settings = startSettings(m_kind);
    for (const SkBound& bound : m_bound) {
        const bool isNew = committing.contains(bound.param);
        bound.write(settings, isNew ? bound.param->paramValue() : bound.param->committedValue());
    }
    return settings;
}

/** The one object of a grabber: the state of all parameters and the road of every access. */
#ifndef ENTRY_FGLOOMWRAPPERIMPL_H
#define ENTRY_FGLOOMWRAPPERIMPL_H

#include "catalogue/DirectAccessStore.h"
#include "catalogue/lut_size.h"
#include "entry/FgLoomWrapper.h"
#include "entry/Replacement.h"
#include "entry/parameter_kinds.h"
#include "entry/runtime_text.h"
#include "templates/platform/CriticalSection.h"

#include <array>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <unordered_set>
#include <vector>

/**
 * A setter is named after its parameter. `m_lock` is held for the whole of a routed set or get and
 * nowhere else; setters call each other directly, never through the routing. A failure is a thrown `int`.
 * A variable without an initialiser gets its first value from its parameter's row.
 */
class FgLoomWrapperImpl final : public FgLoomWrapper {
public:
    static constexpr std::size_t publicParameters = 164;

    /** `offline` makes an object without board and runtime and brings it up at once. */
    FgLoomWrapperImpl(int ports, bool offline);

    // ---- Overrides: entry/routing.cpp, entry/identity.cpp, entry/bring_up.cpp, entry/configuration.cpp

    vexo::tools::logging::Logger* logger() override;
    int loadParameters(Fg_ConfigFileParser* parser) override;
    void saveParameters(Fg_ConfigFileParser* parser) override;
    int processChannelToDma(int process, int channel) override;
    int mapDmaToFormat(int dma) override;
    void setDmaAlignment(int dma, int alignment) override;
    int getDmaAlignment(int dma) override;
    ~FgLoomWrapperImpl() override;
    void buildParameterInfo() override; // catalogue/build_parameter_info.cpp
    int Fg_setParameterWithType(int id, const void* value, int dma, FgParamTypes type) override;
    int Fg_getParameterWithType(int id, void* value, int dma, FgParamTypes type) override;
    int Fg_freeParameterStringWithType(int id, void* value, int dma, FgParamTypes type) override;
    int Fg_getParameterIdByName(const char* name) override;
    const char* Fg_getParameterName(int index) override;
    int Fg_getParameterId(int index) override;
    int Fg_getNrOfParameter() override;
    std::uint64_t Fg_getEventMask(const char* name) override;
    const char* Fg_getEventName(std::uint64_t mask) override;
    const char* vendorName() override;
    const char* appletName() override;
    const char* appletVersionName() override;
    int loadAppletId() override;

    // ---- Bring-up, in this order

    /** Name under which the design is presented to the runtime. */
    static const char* tslFileName() { return "Grab_TwinLaneLineColor.tsl"; }
    static constexpr int appletVersion() { return 2; }
    static constexpr int appletRevision() { return 2; }

    /** Gives a text to a caller: into his buffer, or as a new string that this object owns. */
    void giveText(std::string_view text, void* value, FgParamTypes type); // entry/routing.cpp

    void publishParameterTables();    // catalogue/publish_parameter_tables.cpp
    void resolveDesignParameterIds(); // entry/design_parameters.cpp
    void discoverDebugInterface();    // image/debug_interface.cpp
    void applyDefaults();             // entry/bring_up.cpp

private:
    /** Gives each variable the start value of its parameter's row. The others have initialisers. */
    void initializeMembers(); // entry/bring_up.cpp

    // ---- Routing: entry/routing.cpp

    void setParameter(int id, const void* value, int dma, FgParamTypes type);
    void getParameter(int id, void* value, int dma, FgParamTypes type);
    int writeRegister(int reg, const void* value);
    int readRegister(int reg, void* value);
    [[noreturn]] void refuseWriteTo(const char* name);
    [[noreturn]] void refuseUnknown(const char* verb, int id);
    std::uint32_t numberOfProcesses();
    bool isDirectRegister(int id) const;
    void read(const SdkParameter& parameter, void* value, int dma, FgParamTypes type);
    void readDescription(void* value, FgParamTypes type);

    std::atomic<vexo::tools::logging::Logger*> m_logger{nullptr};
    // Fills a cache line: what waiting threads pass around holds nothing else.
    alignas(64) vexo::templates::platform::CriticalSection m_lock;
    bool m_directRegisterAccess = false;
    std::mutex m_allocatedStringsLock;
    std::unordered_set<const char*> m_allocatedStrings;

    // ---- Design parameters: entry/design_parameters.cpp

    void writeDesign(std::int32_t id, const char* name, const void* value, int dma, FgParamTypes type,
                     bool raise) {
        const int result =
            value != nullptr ? setUnwrappedParameterWithType(id, value, dma, type) : FG_ERR_INVALID_ARGUMENT;
        if (result != FG_OK) accessFailed("Setting", name, id, value, result, raise);
    }
    void readDesign(std::int32_t id, const char* name, void* value, int dma, FgParamTypes type, bool raise) {
        const int result =
            value != nullptr ? getUnwrappedParameterWithType(id, value, dma, type) : FG_ERR_INVALID_ARGUMENT;
        if (result != FG_OK) accessFailed("Getting", name, id, value, result, raise);
    }
    /** All that many a setter does once the value has passed: stores it and writes it, or keeps the old one. */
    template <typename T>
    [[gnu::always_inline]] void storeAndWrite(T& member, std::type_identity_t<T> value,
                                              void (FgLoomWrapperImpl::*write)(std::type_identity_t<T>)) {
        Replacement stored(member, value);
        (this->*write)(value);
        stored.keep();
    }
    /** Logs what the runtime refused; a null value never reached it. Throws the code if `raise`. */
    void accessFailed(const char* verb, const char* name, std::int32_t id, const void* value, int result,
                      bool raise);

    // ---- Names and trees: catalogue/publish_parameter_tables.cpp, catalogue/build_parameter_info.cpp

    void collectDirectParameters();
    void publishDirectNames();
    void addDirectRegisters();
    void addDirectParameters();
    /** The live record of a parameter; null where the tree has none. */
    RegisterInfo* recordAt(std::size_t index) { return m_registerInfos[index]; }

    DirectAccessStore m_directAccessStore;
    std::string m_directAccessSection;
    std::unordered_map<std::string, int> m_directRegisterIdByName; // "DRA_" names
    std::map<std::string, int> m_directParameterIdByName;          // "DLOOMA_" names
    std::map<int, std::string> m_directNameByIndex;                // both, behind the public parameters
    std::array<RegisterInfo*, publicParameters> m_registerInfos{};

    // ---- Configuration files: entry/configuration.cpp

    void saveParameter(Fg_ConfigFileParser& parser, const SdkParameter& parameter);
    template <typename T> T valueFor(const SdkParameter& parameter);

    // ---- Events: trigger/events.cpp

    void publishEvents();

    std::map<std::string, std::uint64_t, std::less<>> m_eventMaskByName;
    std::map<std::uint64_t, std::string> m_eventNameByMask;

    // ---- Acquisition time-out: entry/timeout.cpp

    std::uint32_t m_timeout; // seconds

    // ---- Sensor geometry and region of interest: image/sensor_geometry.cpp

    std::uint32_t m_vantagePoint;
    std::uint32_t m_sensorWidth;  // pixels
    std::uint32_t m_sensorHeight; // lines
    std::uint32_t m_width;        // pixels
    std::uint32_t m_height;       // lines
    std::uint32_t m_xOffset;      // pixels
    std::uint32_t m_yOffset;      // lines

    bool mirrorsLines() const;  // a right vantage point
    bool mirrorsFrames() const; // a bottom vantage point
    struct Dram {
        std::uint32_t dataWidth; // bits
        std::uint64_t pixels;    // that fit
    };
    Dram readDram();
    std::uint32_t calcMaxWidthFromDram(std::uint32_t sensorHeight);
    std::uint32_t calcMaxHeightFromDram(std::uint32_t sensorWidth);
    std::uint32_t maxSensorWidthFromDram();
    std::uint32_t usableWidth();
    std::uint32_t widthLimit();
    std::uint32_t heightLimit();
    std::uint32_t xOffsetLimit();
    std::uint32_t yOffsetLimit();
    void checkRoiX() const;
    void checkRoiY() const;
    void writeBufferGeometry(std::uint32_t previous);
    void writeTriggerRange(std::uint32_t yOffset, std::uint32_t length);
    void writeTriggerGeometry(std::uint32_t yOffset, std::uint32_t height, std::uint32_t imgTriggerMode);
    void updateSensorWidthRange();
    void updateSensorHeightRange();
    void updateWidthRange();
    void updateHeightRange();
    void updateXOffsetRange();
    void updateYOffsetRange();
    void updateGeometryRanges(); // all of the above

    // ---- Pixel format and line order: image/pixel_format.cpp

    std::uint32_t m_pixelFormat;
    std::uint32_t m_lineOrder = FG_LINEORDER_RGB;

    // ---- Output format: image/output_format.cpp

    std::uint32_t m_format;
    std::uint32_t m_bitAlignment;
    std::uint32_t m_customBitShiftRight; // bits
    /** One input of the multiplexer at the end of the image path. */
    struct FormatInput {
        std::uint32_t format = 0;
        std::uint32_t bits = 0;    // of one component
        bool hasTrash = false;     // its branch can be silenced
        std::uint32_t trashId = 0; // design parameter that does so
    };
    std::vector<FormatInput> m_formatInputs;
    std::int32_t m_formatMaxBits = 0; // of the widest component

    void discoverOutputFormats(RuntimeTextRoom& room);
    void applyDynamicShift(std::uint32_t customShift, std::uint32_t alignment, std::uint32_t bits);
    void updateBitShiftRange();
    std::uint32_t pixelDepth() { return 16; }

    // ---- Camera simulator: image/camera_simulator.cpp

    std::uint32_t m_simEnable;
    std::uint32_t m_simLineGap = 0;   // pixels, like the two below as requested
    std::uint32_t m_simHeight = 1024; // lines
    std::uint32_t m_simFrameGap = 0;  // lines
    std::uint32_t m_simPattern;
    std::uint32_t m_simPatternOffset; // grey levels
    std::uint32_t m_simRoll;
    std::uint32_t m_simSelectMode;
    double m_simPixelFrequency = 39.375; // MHz, like the two below as requested
    double m_simLineRate = 10240.0;      // Hz
    double m_simFrameRate = 10.0;        // Hz
    std::uint32_t m_simTriggerMode;
    // What the counters got, after rounding.
    std::uint32_t m_simAppliedWidth = 1024; // pixels
    std::uint32_t m_simAppliedLineGap = 0;  // pixels
    std::uint32_t m_simAppliedFrameGap = 0; // lines
    double m_simAppliedFrameRate = 10.0;    // Hz, what frame rate mode starts from

    void publishPixelFrequencyLimit();
    std::uint32_t simulatorLineGap();
    std::uint32_t simulatorFrameGap();
    double simulatorPixelFrequency(std::uint32_t mode);
    double simulatorLineRate(std::uint32_t mode);
    double simulatorFrameRate(std::uint32_t mode);
    double currentPixelFrequency() { return simulatorPixelFrequency(m_simSelectMode); }
    double currentLineRate() { return simulatorLineRate(m_simSelectMode); }
    double currentFrameRate() { return simulatorFrameRate(m_simSelectMode); }
    void readActive(Place<std::uint32_t> out);
    void readPassive(Place<std::uint32_t> out);
    void applySimulatorWidth(std::uint32_t width, std::uint32_t gap);
    void applySimulatorHeight(std::uint32_t height, std::uint32_t gap);
    std::uint32_t simulatorWidthLimit();
    std::uint32_t simulatorLineGapLimit();
    std::uint32_t simulatorHeightLimit();
    std::uint32_t simulatorFrameGapLimit();
    double simulatorLineRateLimit() const;
    double simulatorFrameRateLimit() const;
    void updateSimWidthRange();
    void updateSimLineGapRange();
    void updateSimHeightRange();
    void updateSimFrameGapRange();
    void updateSimLineRateRange();
    void updateSimFrameRateRange();

    // ---- Image selector and white balance: image/image_selector.cpp, image/white_balance.cpp

    std::uint32_t m_imgSelectPeriod; // images
    std::uint32_t m_imgSelect;       // images
    double m_scalingFactorRed;
    double m_scalingFactorBlue;
    double m_scalingFactorGreen;

    // ---- Lookup table and processing: image/lookup_table.cpp

    using LutTable = std::array<std::uint32_t, lutEntries>;
    struct LutColor;
    static const LutColor lutRed, lutGreen, lutBlue;

    std::uint32_t m_lutEnable;
    std::uint32_t m_lutType;
    LutTable m_lutRed{};
    LutTable m_lutGreen{};
    LutTable m_lutBlue{};
    std::string m_lutCustomFile;
    std::string m_lutSaveFile;
    double m_processingOffset = 0.0;
    double m_processingGain = 1.0;
    double m_processingGamma = 1.0;
    std::uint32_t m_processingInvert = FG_OFF;

    std::uint32_t lutImplementationType() { return LUT_IMPLEMENTATION_FULL_LUT; }
    std::uint32_t lutInBits() { return lutInputBits; }
    std::uint32_t lutOutBits() { return lutOutputBits; }
    void publishProcessingAccess();
    void writeLutTables();
    void applyProcessingLut();
    void loadCustomLutFile(const char* path);
    void saveLutFile(const char* path);
    template <typename T> void setProcessing(T& member, T value);
    void setLut(const LutColor& color, FieldRecord field);
    void setLutElement(const LutColor& color, const FieldParameterInt_s& record);
    void setLutRun(const LutColor& color, const FieldParameterAccess& record);

    // ---- Buffer status: image/buffer_status.cpp

    std::uint32_t readFillLevel();
    std::uint32_t readOverflow();

    // ---- Debug interface: image/debug_interface.cpp

    /** A place of the image path where images can be injected, and at some watched. */
    struct DebugEntry {
        enum Type : std::uint32_t { inject, injectMonitor, unknown };
        Type type = unknown;
        std::string name;
        std::string path; // its part in the names of design parameters
    };
    std::vector<DebugEntry> m_debugEntries;
    std::uint32_t m_debugSource = 0;
    std::uint32_t m_debugInsert = FG_APPLY;
    std::uint64_t m_debugWritePixel = 0;
    std::uint32_t m_debugWriteFlag = FG_ENDOFLINE;
    std::size_t m_longestDebugFile = 0; // that the design took
    std::string m_debugSaveConfig;

    int readTextTo(char* text, const std::string& name);
    std::string readText(RuntimeTextRoom& room, const std::string& name);
    std::string requireText(RuntimeTextRoom& room, const std::string& name);
    void discoverDebugEntries(RuntimeTextRoom& room);
    const DebugEntry& debugEntry() const;
    int debugParameterId(const char* suffix);
    std::uint32_t readDebugWord(const char* suffix);
    std::uint32_t readMonitorWord(const char* suffix);
    void writeDebug(const char* suffix, const void* value, FgParamTypes type);
    void updateDebugPixelRange();
    std::string debugSourceName() { return debugEntry().name; }
    std::uint32_t readDebugInEnable();
    std::uint32_t readDebugOutEnable();
    std::string readDebugFile();
    std::uint32_t readDebugOutXPos() { return readMonitorWord("_XPosition"); }
    std::uint32_t readDebugOutYPos() { return readMonitorWord("_YPosition"); }
    std::uint32_t readDebugOutPixel() { return readMonitorWord("_PixelValue"); }
    std::uint32_t readDebugReady() { return readDebugWord("_Inject_ReadyForInjection"); }
    std::string debugVersion() { return "1.0"; }

    // ---- Line trigger and ExSync: trigger/line_trigger.cpp

    std::uint32_t m_lineTriggerMode;
    std::uint32_t m_exsyncOn;
    std::uint32_t m_lineTriggerInSrc;
    std::uint32_t m_lineTriggerInPolarity;
    double m_lineTriggerDebouncing;    // microseconds
    std::uint32_t m_lineDownscale;     // pulses
    std::uint32_t m_lineDownscaleInit; // pulses
    double m_linePeriode;              // microseconds
    double m_lineExposure;             // microseconds
    std::uint32_t m_exsyncPolarity;
    double m_lineTriggerDelay; // microseconds

    double exposureLimit() const;
    void updateExposureRange();
    void updateTriggerDelayRange();

    // ---- Shaft encoder: trigger/shaft_encoder.cpp

    std::uint32_t m_shaftEncoderOn;
    std::uint32_t m_shaftEncoderMode;
    std::uint32_t m_shaftEncoderInSrc;
    std::uint32_t m_shaftEncoderLeading;
    std::uint32_t m_shaftEncoderCompensationEnable;

    // ---- Image trigger and flash: trigger/image_trigger.cpp

    std::uint32_t m_imgTriggerMode;
    std::uint32_t m_imgTriggerOn;
    std::uint32_t m_flashOn;
    std::uint32_t m_imgTriggerAsyncHeight; // lines
    std::uint32_t m_imgTriggerInSrc;
    std::uint32_t m_imgTriggerInPolarity;
    std::uint32_t m_imgTriggerGateDelay; // lines
    double m_imgTriggerDebouncing;       // microseconds
    std::uint32_t m_flashPolarity;
    std::uint32_t m_strobePulseDelay; // lines
    std::uint32_t m_sendSoftwareTrigger = FG_APPLY;
    std::uint32_t m_setSoftwareTrigger;

    // ---- Signal routing: trigger/signal_routing.cpp. Sources and polarities as the design last took them; a load
    // stores the camera trigger's beforehand, as it does with most variables.

    std::uint32_t m_triggerCameraSource, m_triggerCameraPolarity;
    std::uint32_t m_gpo0Source, m_gpo0Polarity;
    std::uint32_t m_gpo1Source, m_gpo1Polarity;
    std::uint32_t m_gpo2Source, m_gpo2Polarity;
    std::uint32_t m_gpo3Source, m_gpo3Polarity;
    std::uint32_t m_gpo4Source, m_gpo4Polarity;
    std::uint32_t m_gpo5Source, m_gpo5Polarity;
    std::uint32_t m_gpo6Source, m_gpo6Polarity;
    std::uint32_t m_gpo7Source, m_gpo7Polarity;
    std::uint32_t m_frontGpo0Source, m_frontGpo0Polarity;
    std::uint32_t m_frontGpo1Source, m_frontGpo1Polarity;
    std::uint32_t m_signalAnalyzer0Source, m_signalAnalyzer0Polarity;
    std::uint32_t m_signalAnalyzer1Source, m_signalAnalyzer1Polarity;
    std::uint32_t m_customSignalEvent0Source, m_customSignalEvent0Polarity;
    std::uint32_t m_customSignalEvent1Source, m_customSignalEvent1Polarity;
    std::uint32_t m_clhsTriggerPulseMessage;

    struct SignalRoute;
    struct SignalRoutes;
    void applyRoute(const SignalRoute& route, std::uint32_t source, std::uint32_t polarity);
    void setSource(const SignalRoute& route, std::uint32_t source);
    void setPolarity(const SignalRoute& route, std::uint32_t polarity);
    std::int32_t digitalOutput();

    // ---- Signal analyzers: trigger/signal_analyzers.cpp

    std::uint32_t m_signalAnalyzerClear;

    std::int64_t readPulseCountDifference();

    // ---- Board and applet status: trigger/board_status.cpp

    std::uint32_t versionNumber() { return appletVersion(); }
    std::uint32_t revisionNumber() { return appletRevision(); }
    std::string designFileName() { return tslFileName(); }
    void readAlternativeBoardDetection(Place<std::uint32_t> out);
    void readRuntimeWord(int id, void* word);
    void readDmaStatus(Place<std::uint32_t> out);
    std::uint32_t readCamStatusExtended();
    std::uint32_t readCamStatus() { return readCamStatusExtended() & 1; }

    // ---- Writers and readers of the design, and their ids: loomSet_X, loomGet_X. loomGetInto_X reads straight into a
    // caller's place, which keeps what it held where there is no design.

#define DESIGN_WRITER(parameter)                                                                             \
    void loomSet_##parameter(const void* value, int dma, FgParamTypes type, bool raise) {                    \
        writeDesign(m_id_##parameter, "Device1_" #parameter, value, dma, type, raise);                       \
    }                                                                                                        \
    template <typename T> void loomSet_##parameter(T value) {                                                \
        loomSet_##parameter(&value, 0, tagOf<T>, true);                                                      \
    }
#define DESIGN_READER(parameter)                                                                             \
    void loomGet_##parameter(void* value, int dma, FgParamTypes type, bool raise) {                          \
        readDesign(m_id_##parameter, "Device1_" #parameter, value, dma, type, raise);                        \
    }                                                                                                        \
    template <typename T> T loomGet_##parameter() {                                                          \
        T value{};                                                                                           \
        loomGet_##parameter(&value, 0, tagOf<T>, true);                                                      \
        return value;                                                                                        \
    }                                                                                                        \
    template <typename T> void loomGetInto_##parameter(Place<T> out) {                                       \
        loomGet_##parameter(out.address(), 0, tagOf<T>, true);                                               \
    }
#define DESIGN_WRITTEN(parameter)                                                                            \
    std::int32_t m_id_##parameter = 0;                                                                       \
    DESIGN_WRITER(parameter)
#define DESIGN_READ(parameter)                                                                               \
    std::int32_t m_id_##parameter = 0;                                                                       \
    DESIGN_READER(parameter)
#define DESIGN_BOTH(parameter)                                                                               \
    std::int32_t m_id_##parameter = 0;                                                                       \
    DESIGN_WRITER(parameter)                                                                                 \
    DESIGN_READER(parameter)
#include "entry/design_parameters.def"
#undef DESIGN_WRITER
#undef DESIGN_READER
#undef DESIGN_WRITTEN
#undef DESIGN_READ
#undef DESIGN_BOTH

    friend struct DesignParameterTable;

    // ---- Setters of the parameters: set_FG_X, which throw what they refuse. A get answers from the source
    // that the parameter's row names.

#define SETTABLE(parameter, kind, source, start, file) void set_##parameter(kinds::kind::Value value);
#define READ_ONLY(parameter, kind, source, file)
#include "catalogue/sdk_parameters.def"
#undef SETTABLE
#undef READ_ONLY

    static constexpr char nothing = 0; // the source of parameters that have none here

    friend struct SdkParameterTable;
};

#endif

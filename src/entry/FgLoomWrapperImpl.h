/** The one object of a grabber: the state of all parameters and the routing of every access. */
#ifndef ENTRY_FGLOOMWRAPPERIMPL_H
#define ENTRY_FGLOOMWRAPPERIMPL_H

#include "entry/PublishedParameters.h"
#include "entry/Replacement.h"
#include "entry/parameter_kinds.h"
#include "entry/runtime/runtime_text.h"
#include "image/camera_simulator.h"
#include "image/debug_interface.h"
#include "image/image_stages.h"
#include "image/lookup_table.h"
#include "image/output_format.h"
#include "image/sensor_geometry.h"
#include "support/HandedOutTexts.h"
#include "templates/platform/CriticalSection.h"
#include "trigger/image_trigger.h"
#include "trigger/line_trigger.h"
#include "trigger/shaft_encoder.h"
#include "trigger/signal_routing.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

/**
 * A setter is named after its parameter. `m_lock` is held for the whole of a routed set or get and
 * nowhere else; setters call each other directly, never through the routing. A failure is a thrown `int`.
 * A variable without an initialiser gets its first value from its parameter's row.
 */
class FgLoomWrapperImpl final : public PublishedParameters,
                                public ImageStages,
                                public SensorGeometry,
                                public OutputFormatting,
                                public CameraSimulator,
                                public LookupTables,
                                public DebugInterface,
                                public LineTrigger,
                                public ShaftEncoder,
                                public ImageTrigger,
                                public SignalRouting {
public:
    /** `offline` creates an object without board and runtime and brings it up at once. */
    FgLoomWrapperImpl(int ports, bool offline);

    // ---- Overrides: entry/routing.cpp, entry/identity.cpp, entry/configuration.cpp

    vexo::tools::logging::Logger* logger() override;
    int loadParameters(Fg_ConfigFileParser* parser) override;
    void saveParameters(Fg_ConfigFileParser* parser) override;
    int processChannelToDma(int process, int channel) override;
    int mapDmaToFormat(int dma) override;
    void setDmaAlignment(int dma, int alignment) override;
    int getDmaAlignment(int dma) override;
    int Fg_setParameterWithType(int id, const void* value, int dma, FgParamTypes type) override;
    int Fg_getParameterWithType(int id, void* value, int dma, FgParamTypes type) override;
    int Fg_freeParameterStringWithType(int id, void* value, int dma, FgParamTypes type) override;
    const char* vendorName() override;
    const char* appletName() override;
    const char* appletVersionName() override;
    int loadAppletId() override;

    // ---- Bring-up, in this order

    /** Name under which the design is presented to the runtime. */
    static const char* tslFileName() { return "Grab_TwinLaneLineColor.tsl"; }
    static constexpr int appletVersion() { return 2; }
    static constexpr int appletRevision() { return 2; }

    /** Copies a text to a caller: into the caller's buffer, or as a new string that this object owns. */
    void giveText(std::string_view text, void* value, FgParamTypes type); // entry/routing.cpp

    void discoverDebugInterface(); // image/debug_interface.cpp
    void applyDefaults();          // entry/api/bring_up.cpp

private:
    /** Sets each variable to the start value of its parameter's row. The others have initialisers. */
    void initializeMembers(); // entry/api/bring_up.cpp

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
    // On its own cache line, against false sharing.
    alignas(64) vexo::templates::platform::CriticalSection m_lock;
    HandedOutTexts m_handedOutTexts;

    // ---- Common to the setters

    /** The common setter body: store, write, restore on failure. */
    template <typename T>
    [[gnu::always_inline]] void storeAndWrite(T& member, std::type_identity_t<T> value,
                                              void (FgLoomWrapperImpl::*write)(std::type_identity_t<T>)) {
        Replacement stored(member, value);
        (this->*write)(value);
        stored.keep();
    }

    // ---- Configuration files: entry/configuration.cpp

    void saveParameter(Fg_ConfigFileParser& parser, const SdkParameter& parameter);

    // ---- Acquisition time-out: entry/timeout.cpp

    std::uint32_t m_timeout; // seconds

    // ---- Sensor geometry and region of interest: image/sensor_geometry.cpp

    Dram readDram();
    std::uint32_t calcMaxWidthFromDram(std::uint32_t sensorHeight);
    std::uint32_t calcMaxHeightFromDram(std::uint32_t sensorWidth);
    std::uint32_t maxSensorWidthFromDram();
    /** Refuses a value if the design cannot be read, even if the limit does not need its memory size. */
    void requireReadableDram();
    std::uint32_t usableWidth();
    std::uint32_t widthLimit();
    std::uint32_t heightLimit();
    std::uint32_t xOffsetLimit();
    std::uint32_t yOffsetLimit();
    void writeBufferGeometry(WriteOrder order);
    void writeTriggerRange(std::uint32_t yOffset, std::uint32_t length);
    void writeTriggerGeometry(std::uint32_t yOffset, std::uint32_t height, std::uint32_t imgTriggerMode);
    void updateSensorWidthRange();
    void updateSensorHeightRange();
    void updateWidthRange();
    void updateHeightRange();
    void updateXOffsetRange();
    void updateYOffsetRange();
    void updateGeometryRanges(); // all of the above

    // ---- Output format: image/output_format.cpp

    void discoverOutputFormats(RuntimeTextRoom& room);
    void applyDynamicShift(std::uint32_t customShift, std::uint32_t alignment, std::uint32_t bits);
    void updateBitShiftRange();

    // ---- Camera simulator: image/camera_simulator.cpp

    void publishPixelFrequencyLimit();
    double simulatorPixelFrequency(std::uint32_t mode);
    double simulatorLineRate(std::uint32_t mode);
    double simulatorFrameRate(std::uint32_t mode);
    double currentPixelFrequency() { return simulatorPixelFrequency(m_simSelectMode); }
    double currentLineRate() { return simulatorLineRate(m_simSelectMode); }
    double currentFrameRate() { return simulatorFrameRate(m_simSelectMode); }
    void readActive(Destination<std::uint32_t> out);
    void readPassive(Destination<std::uint32_t> out);
    void applySimulatorWidth(std::uint32_t width, std::uint32_t gap);
    void applySimulatorHeight(std::uint32_t height, std::uint32_t gap);
    std::uint32_t simulatorWidthLimit();
    std::uint32_t simulatorLineGapLimit();
    std::uint32_t simulatorHeightLimit();
    void updateSimWidthRange();
    void updateSimLineGapRange();
    void updateSimHeightRange();
    void updateSimFrameGapRange();
    void updateSimLineRateRange();
    void updateSimFrameRateRange();

    // ---- Lookup table and processing: image/lookup_table.cpp

    struct LutColor;
    static const LutColor lutRed, lutGreen, lutBlue;

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

    int readTextTo(char* text, const std::string& name);
    std::string readText(RuntimeTextRoom& room, const std::string& name);
    std::string requireText(RuntimeTextRoom& room, const std::string& name);
    void discoverDebugEntries(RuntimeTextRoom& room);
    int debugParameterId(const char* suffix);
    std::uint32_t readDebugWord(const char* suffix);
    std::uint32_t readMonitorWord(const char* suffix);
    void writeDebug(const char* suffix, const void* value, FgParamTypes type);
    void updateDebugPixelRange();
    std::uint32_t readDebugInEnable();
    std::uint32_t readDebugOutEnable();
    std::string readDebugFile();
    std::uint32_t readDebugOutXPos() { return readMonitorWord("_XPosition"); }
    std::uint32_t readDebugOutYPos() { return readMonitorWord("_YPosition"); }
    std::uint32_t readDebugOutPixel() { return readMonitorWord("_PixelValue"); }
    std::uint32_t readDebugReady() { return readDebugWord("_Inject_ReadyForInjection"); }

    // ---- Line trigger and ExSync: trigger/line_trigger.cpp

    void updateExposureRange();
    void updateTriggerDelayRange();

    // ---- Signal routing and analyzers: trigger/signal_routing.cpp, trigger/signal_analyzers.cpp

    struct SignalRoute;
    struct SignalRoutes;
    void applyRoute(const SignalRoute& route, std::uint32_t source, std::uint32_t polarity);
    void setSource(const SignalRoute& route, std::uint32_t source);
    void setPolarity(const SignalRoute& route, std::uint32_t polarity);
    std::int64_t readPulseCountDifference();

    // ---- Board and applet status: trigger/board_status.cpp

    std::uint32_t versionNumber() { return appletVersion(); }
    std::uint32_t revisionNumber() { return appletRevision(); }
    std::string designFileName() { return tslFileName(); }
    void readAlternativeBoardDetection(Destination<std::uint32_t> out);
    void readRuntimeWord(int id, void* word);
    void readDmaStatus(Destination<std::uint32_t> out);
    std::uint32_t readCamStatusExtended();
    std::uint32_t readCamStatus() { return readCamStatusExtended() & 1; }

    // ---- Setters of the parameters: set_FG_X, which throw the code of a refusal. A get reads the source
    // that the parameter's row names.

#define SETTABLE(parameter, kind, source, start, file) void set_##parameter(kinds::kind::Value value);
#define READ_ONLY(parameter, kind, source, file)
#include "catalogue/sdk_parameters.def"
#undef SETTABLE
#undef READ_ONLY

    static constexpr char nothing = 0; // the source of parameters that have no value here

    friend struct SdkParameterTable;
};

#endif

/** The applet-independent base of every wrapper. */
#ifndef ENTRY_FGLOOMWRAPPER_H
#define ENTRY_FGLOOMWRAPPER_H

#include "entry/FgLoomWrapperPrivate.h"
#include "support/Logging.h"
#include "support/field_copy.h"
#include "vexo/fg_api.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

class Fg_ConfigFileParser;

/**
 * Owns the binding to the grabber runtime, the handles of board and design, the parameter tree and the last
 * error.
 *
 * The runtime's own parameter space is accessed through the "unwrapped" operations. Applet-specific behaviour
 * is in virtual operations; their order is the vtable layout and must not change. The base takes no lock.
 */
class FgLoomWrapper {
public:
    /** `ports` is the number of parameter trees. Counts as one user of the library. */
    explicit FgLoomWrapper(int ports);
    FgLoomWrapper(const FgLoomWrapper&) = delete;
    FgLoomWrapper& operator=(const FgLoomWrapper&) = delete;

    // ---- Operations of an applet, implemented in the derived class or in the source named

    virtual vexo::tools::logging::Logger* logger();
    virtual int loadParameters(Fg_ConfigFileParser* parser) = 0;
    virtual void saveParameters(Fg_ConfigFileParser* parser) = 0;
    virtual int processChannelToDma(int process, int channel) = 0;
    virtual int mapDmaToFormat(int dma) = 0;
    virtual void setDmaAlignment(int dma, int alignment) = 0;
    virtual int getDmaAlignment(int dma) = 0;
    virtual ~FgLoomWrapper() = 0;
    virtual void buildParameterInfo() = 0;
    virtual int Fg_setParameterWithType(int id, const void* value, int dma, FgParamTypes type) = 0;
    virtual int Fg_getParameterWithType(int id, void* value, int dma, FgParamTypes type) = 0;
    virtual int Fg_freeParameterStringWithType(int id, void* value, int dma, FgParamTypes type) = 0;
    virtual int Fg_getParameterIdByName(const char* name) = 0;
    virtual const char* Fg_getParameterName(int index) = 0;
    virtual int Fg_getParameterId(int index) = 0;
    virtual int Fg_getNrOfParameter() = 0;
    virtual int Fg_saveConfig(Fg_Struct* fg, const char* file); // entry/configuration.cpp
    virtual int Fg_loadConfig(Fg_Struct* fg, const char* file);
    // entry/parameter_document.cpp
    virtual int Fg_getParameterInfoXML(Fg_Struct* fg, int index, char* buffer, unsigned long* size);
    virtual ShadingMaster* Fg_AllocShading(int set, int dma); // entry/api/shading.cpp
    virtual int Fg_FreeShading(ShadingMaster* shading);
    virtual int Shad_SetSubValueLine(ShadingMaster* shading, int x, int channel, float value);
    virtual int Shad_SetMultValueLine(ShadingMaster* shading, int x, int channel, float value);
    virtual int Shad_SetFixedPatternNoiseLine(ShadingMaster* shading, int x, int channel, int on);
    virtual int Shad_GetMaxLine(ShadingMaster* shading);
    virtual int Shad_GetAccess(ShadingMaster* shading);
    virtual int Shad_FreeAccess(ShadingMaster* shading);
    virtual int Shad_WriteActLine(ShadingMaster* shading, int line);
    virtual std::uint64_t Fg_getEventMask(const char* name);
    virtual const char* Fg_getEventName(std::uint64_t mask);
    virtual const char* vendorName() = 0;
    virtual const char* appletName() = 0;
    virtual const char* appletVersionName() = 0;
    virtual int loadAppletId() = 0;

    // ---- Bring-up: entry/runtime_binding.cpp; handles: entry/FgLoomWrapper.cpp

    /** Opens the runtime's library and looks its functions up. 0, or -2031 if it cannot be opened. */
    int initializeDllFunctions(const char* library);
    /** Creates the runtime's inner handle. 0, -2031 without an init function, else the runtime's code or
     * -100. */
    int runFgInit(const char* tslName, LOOMdevice* device, fpga_design* design, int flags);
    /** Takes ownership of the design, which is unloaded when the object is destroyed. */
    void initHandles(LOOMdevice* device, fpga_design* design);
    /** Frees the runtime's inner grabber, then destroys the object. The runtime's result. */
    static int end(FgLoomWrapper* wrapper);

    /* The board and the design of the last successful init of the process. A non-null argument replaces them. */
    static LOOMdevice* accessDeviceHandle(LOOMdevice* device);
    static fpga_design* accessDesignHandle(fpga_design* design);

    // ---- The runtime's own parameters: entry/runtime_binding.cpp

    /** The runtime's id of a design parameter; 0 or less if there is none. */
    int getParameterIdByName(const char* name);
    int setUnwrappedParameterWithType(int id, const void* value, int dma, FgParamTypes type) {
        return callOr(FG_ERR_NOT_AVAILABLE, wrapperFg().Fg_setParameterWithType, grabcoreFg(), id, value, dma,
                      type);
    }
    int getUnwrappedParameterWithType(int id, void* value, int dma, FgParamTypes type) {
        return callOr(FG_ERR_NOT_AVAILABLE, wrapperFg().Fg_getParameterWithType, grabcoreFg(), id, value, dma,
                      type);
    }
    int freeUnwrappedParameterString(int id, void* value, int dma, FgParamTypes type);
    int setUnwrappedParameter(int id, const void* value, int dma) {
        return callOr(FG_ERR_NOT_AVAILABLE, wrapperFg().Fg_setParameter, grabcoreFg(), id, value, dma);
    }
    int getUnwrappedParameter(int id, void* value, int dma) {
        return callOr(FG_ERR_NOT_AVAILABLE, wrapperFg().Fg_getParameter, grabcoreFg(), id, value, dma);
    }
    int saveUnwrappedConfig(const char* file) {
        return callOr(FG_ERR_NOT_AVAILABLE, wrapperFg().Fg_saveConfig, grabcoreFg(), file);
    }
    /** Root of the runtime's own parameter tree, or null. */
    RegisterInfo* getUnwrappedParameterInfo();

    /* The cache of array parameters: see support/field_copy.h. */
    static void setFieldCache(std::uint32_t* cache, const FieldParameterInt_s* record) {
        field_copy::set(cache, record);
    }
    static void setFieldCache(double* cache, const FieldParameterDouble_s* record) {
        field_copy::set(cache, record);
    }
    static void setFieldCache(void* cache, const FieldParameterAccess* run) {
        field_copy::setRun(cache, run);
    }
    static void getFieldCache(const std::uint32_t* cache, FieldParameterInt_s* record) {
        field_copy::get(cache, record);
    }
    static void getFieldCache(const double* cache, FieldParameterDouble_s* record) {
        field_copy::get(cache, record);
    }
    static void getFieldCache(const void* cache, const FieldParameterAccess* run) {
        field_copy::getRun(cache, run);
    }

    // ---- Temporary files: entry/api/temp_files.cpp

    /** Creates an empty file for a coefficient image; the caller owns the name. Null on failure. */
    static char* createTempFile();
    /** Removes the file and releases the name. */
    static void deleteTempFile(char* name);

    RegisterInfo* Fg_getParameterInfo(int index);
    /** The runtime's last error; -12 without the function or the inner handle. */
    int Fg_getLastErrorNumberLoom();
    int Fg_getLastErrorNumber() { return fgError().getErrorNumberBuffer(); }
    void setError(int code) { fgError().setErr(code); }

    const RuntimeFunctions& wrapperFg() const { return m_private->wrapperFg; }
    Fg_Struct* grabcoreFg() const { return m_private->grabcoreFg; }
    LOOMdevice* boardHandle() const { return m_private->boardHandle; }
    fpga_design* designHandle() const { return m_private->designHandle; }
    Fg_ParameterInfo& parameterInfo() { return m_private->parameterInfo; }
    Fg_Error& fgError() { return m_private->error; }

protected:
    /** Logs the pieces as one line if the level is enabled; composes nothing otherwise. */
    template <typename... Pieces> void log(std::uint32_t level, const Pieces&... pieces);

    /** The logger of that name, looked up on first use and kept in `cache`. */
    static vexo::tools::logging::Logger* lazyLogger(std::atomic<vexo::tools::logging::Logger*>& cache,
                                                    const char* name);

private:
    static void append(std::string& text, const char* piece) { text += piece; }
    static void append(std::string& text, int piece) { text += std::to_string(piece); }
    static void writeLine(vexo::tools::logging::Logger& logger, std::uint32_t level, const std::string& text);

    std::atomic<vexo::tools::logging::Logger*> m_logger{nullptr};
    std::unique_ptr<FgLoomWrapperPrivate> m_private;
};

template <typename... Pieces> void FgLoomWrapper::log(std::uint32_t level, const Pieces&... pieces) {
    vexo::tools::logging::Logger* target = logger();
    if (!target->isEnabled(level)) return;
    std::string text;
    (append(text, pieces), ...);
    writeLine(*target, level, text);
}

#endif

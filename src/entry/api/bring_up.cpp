// Construction of the object, with a board or offline, and its start values.

#include "entry/api/design_source.h"
#include "entry/sdk_parameters.h"
#include "entry/setter_tools.h"
#include "vexo/fg_api.h"

#include <memory>

namespace {

constexpr const char* runtimeLibrary = "libgrabcore5.so";
constexpr int skipDefaults = 1;

struct UnloadDesign {
    void operator()(fpga_design* design) const { TslUnloadTslFile(design); }
};

struct EndGrabber {
    void operator()(FgLoomWrapperImpl* wrapper) const { FgLoomWrapper::end(wrapper); }
};

} // namespace

FgLoomWrapperImpl::FgLoomWrapperImpl(int ports, bool offline) : PublishedParameters(ports, offline) {
    initializeMembers();
    if (!offline) return;
    initHandles(nullptr, loadDesign(tslFileName()));
    publishParameterTables();
    PublishedParameters::buildParameterInfo();
    discoverDebugInterface();
    applyDefaults();
}

void FgLoomWrapperImpl::initializeMembers() {
    for (const SdkParameter& parameter : sdkParameters) {
        const auto* word = std::get_if<std::uint32_t FgLoomWrapperImpl::*>(&parameter.source);
        const auto* number = std::get_if<double FgLoomWrapperImpl::*>(&parameter.source);
        if (const auto* start = std::get_if<std::uint32_t>(&parameter.start);
            start != nullptr && word != nullptr)
            this->** word = *start;
        if (const auto* start = std::get_if<double>(&parameter.start); start != nullptr && number != nullptr)
            this->** number = *start;
    }
}

void FgLoomWrapperImpl::applyDefaults() {
    // In the order of the rows: later setters see the effect of earlier ones. Failures are ignored.
    for (const SdkParameter& parameter : sdkParameters)
        if (const void* start = valueOf(parameter.start))
            quietly([&] { parameter.set(*this, start, parameter.type); });
}

void* Std_entry(LOOMdevice* device, int* error, int flags) {
    int unwanted = FG_OK;
    int& result = error != nullptr ? *error : unwanted;

    auto wrapper = std::make_unique<FgLoomWrapperImpl>(1, false);
    result = wrapper->initializeDllFunctions(runtimeLibrary);
    if (result != FG_OK) return nullptr;

    // If anything throws from here on, an unowned design is unloaded before the object is destroyed.
    const char* name = FgLoomWrapperImpl::tslFileName();
    std::unique_ptr<fpga_design, UnloadDesign> design(loadDesign(name));
    if (design == nullptr) {
        // No clean-up: the object and the opened runtime are leaked, as fg_api.h documents.
        static_cast<void>(wrapper.release());
        result = FG_ERR_INIT;
        return nullptr;
    }
    result = wrapper->runFgInit(name, device, design.get(), flags);
    if (result != FG_OK) return nullptr;
    wrapper->initHandles(device, design.release());

    // The runtime's inner grabber exists now, and must be freed before the object.
    std::unique_ptr<FgLoomWrapperImpl, EndGrabber> grabber(wrapper.release());
    grabber->publishParameterTables();
    grabber->resolveDesignParameterIds();
    grabber->buildParameterInfo();
    grabber->discoverDebugInterface();
    if ((flags & skipDefaults) == 0) grabber->applyDefaults();
    return static_cast<FgLoomWrapper*>(grabber.release());
}

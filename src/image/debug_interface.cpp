// The bring-up step that learns from the design what cannot be known at build time.

#include "catalogue/live_records.h"
#include "entry/sdk_parameters.h"
#include "entry/setter_tools.h"

namespace {

/** Highest rate of the simulator in pixels per second. */
constexpr double maximumPixelRate = 3999999999.9999995;

} // namespace

void FgLoomWrapperImpl::discoverDebugInterface() {
    // What was found before a failure stays; a design without debug points comes up all the same.
    quietly([this] {
        catalogue::publishMaximum(recordAt(indexOf(FG_CAMERASIMULATOR_PIXEL_FREQUENCY)),
                                  maximumPixelRate / 1000000);
    });
}

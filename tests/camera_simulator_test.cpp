// Camera simulator: what only a configuration file or the design itself brings about.

#include "support/applet_fixture.h"
#include "support/temporary_folder.h"

#include <limits>

namespace {

using namespace support;

using CameraSimulator = ParameterTest;

TEST_F(CameraSimulator, LinesOfAFrameAreCountedIn32Bits) {
    setAll({{FG_CAMERASIMULATOR_SELECT_MODE, 2}});
    poke("CameraSimulator_PixelFrequency_SequenceLength_ImageWidth", 0x80400002);
    EXPECT_EQ(get<double>(FG_CAMERASIMULATOR_FRAMERATE), 1.0 / (8e-9 * 2048));

    // Only a file leads to the mode of the pixel frequency, here with a frame of 2^32 pixels.
    const TemporaryFolder folder;
    const std::string path = folder / "state.mcf", mode = "FG_CAMERASIMULATOR_SELECT_MODE=";
    restart([] {});
    ASSERT_EQ(set(FG_CAMERASIMULATOR_LINERATE, 0.2), FG_OK);
    setAll({{FG_CAMERASIMULATOR_WIDTH, 65536}, {FG_CAMERASIMULATOR_HEIGHT, 65536}});
    ASSERT_EQ(applet.Fg_saveConfig(grabber.fg(), path.c_str()), FG_OK);
    std::string state = fileBytes(path);
    state.replace(state.find(mode + '1'), mode.size() + 1, mode + '0');
    writeFile(path, state);
    ASSERT_EQ(applet.Fg_loadConfig(grabber.fg(), path.c_str()), FG_OK);
    EXPECT_EQ(get<double>(FG_CAMERASIMULATOR_FRAMERATE), std::numeric_limits<double>::infinity());
}

} // namespace

// Takes pictures of the camera simulator on a virtual board, and writes the last one: picture FILE [COUNT]
#include <vexo/vexo.hpp>

#include <cstdlib>
#include <iostream>
#include <numeric>

/** Ticks as milliseconds. */
static double milliseconds(std::uint64_t ticks) {
    return 1e3 * static_cast<double>(ticks) / VEXO_TICKS_PER_SECOND;
}

/** What the station recorded about the picture, and the mean of its components. */
static void print(const vexo::Picture& picture) {
    const vexo_picture& record = picture.info();
    const auto pixels = picture.pixels();
    const auto sum = std::accumulate(pixels.begin(), pixels.end(), std::uint64_t{0});
    std::cout << "picture " << record.number << " at tick " << record.arrival << ": " << record.width << " x "
              << record.height << ", " << record.bits << " bits, mean " << sum / pixels.size()
              << "; its lines came in " << milliseconds(record.last_line - record.first_line) << " ms, "
              << record.lost_before << " images were lost before it\n";
}

int main(int count, char** arguments) try {
    if (count < 2) throw std::invalid_argument("give the name of the file");
    const int wanted = count > 2 ? std::atoi(arguments[2]) : 3;

    vexo::Station station = vexo::Station::virtualBoard();
    station.set({"FG_WIDTH=640", "FG_HEIGHT=480", "FG_FORMAT=FG_COL48",
                 "FG_CAMERASIMULATOR_ENABLE=FG_CAMERASIMULATOR"});
    try {
        station["FG_WIDTH"] = 20'000;
    } catch (const vexo::Error& error) { // the width is still 640
        std::cout << "code " << error.code() << ": " << error.what() << '\n';
    }

    int taken = 0;
    for (const vexo::Picture& picture : station.pictures(static_cast<std::uint64_t>(wanted))) {
        print(picture);
        if (++taken == wanted) picture.write(arguments[1]);
    }
    return EXIT_SUCCESS;
} catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return EXIT_FAILURE;
}

// Takes pictures of the camera simulator on a virtual board, and writes the last one: picture FILE [COUNT]
#include <vexo/vexo.hpp>

#include <cstdlib>
#include <iostream>
#include <numeric>

int main(int count, char** arguments) try {
    if (count < 2) throw std::invalid_argument("give the name of the file");
    const int wanted = count > 2 ? std::atoi(arguments[2]) : 3;

    vexo::Station station = vexo::Station::virtualBoard();
    station.set({"FG_WIDTH=640", "FG_HEIGHT=480", "FG_FORMAT=FG_COL48",
                 "FG_CAMERASIMULATOR_ENABLE=FG_CAMERASIMULATOR"});

    int taken = 0;
    for (const vexo::Picture& picture : station.pictures(static_cast<std::uint64_t>(wanted))) {
        const auto pixels = picture.pixels();
        const auto sum = std::accumulate(pixels.begin(), pixels.end(), std::uint64_t{0});
        std::cout << "picture " << picture.info().number << " at tick " << picture.info().arrival << ": "
                  << picture.width() << " x " << picture.height() << ", mean " << sum / pixels.size() << '\n';
        if (++taken == wanted) picture.write(arguments[1]);
    }
    return EXIT_SUCCESS;
} catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return EXIT_FAILURE;
}

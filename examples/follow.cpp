// Loads a configuration file whenever it changes, and says what is lost of it: follow FILE [TIMES]
#include <vexo/vexo.hpp>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <thread>

int main(int count, char** arguments) try {
    using namespace std::chrono_literals;
    if (count < 2) throw std::invalid_argument("give the name of the file");
    const std::string file = arguments[1];
    const int times = count > 2 ? std::atoi(arguments[2]) : 0; // 0: without end

    vexo::Station station = vexo::Station::virtualBoard();
    if (!std::filesystem::exists(file)) station.save(file); // to begin with
    std::filesystem::file_time_type seen{};
    for (int loads = 0; times == 0 || loads < times;) {
        std::error_code missing;
        const auto written = std::filesystem::last_write_time(file, missing);
        if (missing || written == seen) {
            std::this_thread::sleep_for(100ms);
            continue;
        }
        seen = written;
        ++loads;
        try {
            std::cout << station.losses(file).text << '\n';
            station.load(file);
            std::cout << "loaded: width " << station.get<int>("FG_WIDTH") << ", height "
                      << station.get<int>("FG_HEIGHT") << std::endl;
        } catch (const vexo::Error& error) { // the file may be half written: the next change is tried again
            std::cout << error.what() << std::endl;
        }
    }
    return EXIT_SUCCESS;
} catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return EXIT_FAILURE;
}

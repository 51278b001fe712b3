// Finds an order for settings that depend on each other, shows what they would write, and sets them: settings
#include <vexo/vexo.hpp>

#include <cstdlib>
#include <iostream>

int main() try {
    vexo::Station station = vexo::Station::virtualBoard();
    const vexo::Parameter width = station["FG_WIDTH"];
    const auto [minimum, maximum, step] = width.range();
    std::cout << "width " << width.get<int>() << ", " << minimum << " to " << maximum << " in steps of "
              << step << '\n';

    const std::vector<std::string> settings{"FG_VANTAGEPOINT=FG_VANTAGEPOINT_TOP_RIGHT", "FG_WIDTH=2048",
                                            "FG_SENSORWIDTH=4096"};
    std::cout << station.plan(settings).text << '\n';
    station.set(settings, VEXO_ANY_ORDER);
    std::cout << "set: " << station.get<std::string>("FG_VANTAGEPOINT") << ", " << width.get<int>() << " of "
              << station.get<int>("FG_SENSORWIDTH") << " pixels\n";

    try {
        width = 4100;
    } catch (const vexo::Error& error) {
        std::cout << error.what() << '\n';
    }
    std::cout << width.limits().text << '\n';
    return EXIT_SUCCESS;
} catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return EXIT_FAILURE;
}

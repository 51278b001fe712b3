#include "appletctl/base/confirm.h"

#include "appletctl/base/layout.h"

#include <unistd.h>

#include <iostream>

namespace appletctl {

bool isConfirmed(const std::string& question) {
    std::cerr << wrapped(question + " [y/N]", lineWidth(STDERR_FILENO)) << ' ' << std::flush;
    std::string answer;
    std::getline(std::cin, answer);
    return answer == "y" || answer == "Y" || answer == "yes";
}

} // namespace appletctl

/** Test reports for continuous integration. */
#ifndef APPLETCTL_DRAW_JUNIT_H
#define APPLETCTL_DRAW_JUNIT_H

#include "appletctl/base/applet_tools.h"

#include <string>
#include <vector>

namespace appletctl {

struct TestCase {
    std::string group, name;
    enum class Outcome { passed, failed, skipped } outcome = Outcome::skipped;
    std::string message; /**< what was wrong */
    double seconds = 0;
};

/** A JUnit document of one suite. */
std::string junitDocument(const std::string& suite, const std::vector<TestCase>& cases);

} // namespace appletctl

#endif

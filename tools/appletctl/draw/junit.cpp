#include "appletctl/draw/junit.h"

#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"
#include "appletctl/draw/xml.h"

#include <algorithm>

namespace appletctl {
namespace {

std::string attribute(const char* name, const std::string& value) {
    return xml::attribute(name, xml::escaped(toUtf8(value)));
}

std::string caseElement(const TestCase& test, const std::string& suite) {
    std::string element = "    <testcase" +
                          attribute("classname", test.group.empty() ? suite : suite + "." + test.group) +
                          attribute("name", test.name) + attribute("time", numberText(test.seconds));
    switch (test.outcome) {
    case TestCase::Outcome::passed:
        return element + "/>\n";
    case TestCase::Outcome::failed:
        return element + "><failure" + attribute("message", test.message) + "/></testcase>\n";
    case TestCase::Outcome::skipped:
        break;
    }
    return element + "><skipped/></testcase>\n";
}

} // namespace

std::string junitDocument(const std::string& suite, const std::vector<TestCase>& cases) {
    const auto count = [&](TestCase::Outcome outcome) {
        return numberText(std::ranges::count(cases, outcome, &TestCase::outcome));
    };
    double seconds = 0;
    for (const TestCase& test : cases)
        seconds += test.seconds;
    std::string document = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites>\n  <testsuite" +
                           attribute("name", suite) + attribute("tests", numberText(cases.size())) +
                           attribute("failures", count(TestCase::Outcome::failed)) +
                           attribute("errors", "0") +
                           attribute("skipped", count(TestCase::Outcome::skipped)) +
                           attribute("time", numberText(seconds)) + ">\n";
    for (const TestCase& test : cases)
        document += caseElement(test, suite);
    return document + "  </testsuite>\n</testsuites>\n";
}

} // namespace appletctl

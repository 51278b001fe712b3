#include "appletctl/Work.h"

#include "appletctl/text.h"

namespace appletctl {

Work::Work(Context& context, const Words& assignments)
    : instance(context.instance())
    , parameters(context.parameters())
    , report(carryOut(instance, parameters, assignments)) {}

int Work::set(const char* name, const Value& value) {
    return writeValue(instance, {&parameters.find(name)}, value);
}

Value Work::get(const char* name) { return valueOf(instance, {&parameters.find(name)}); }

void Work::refuse(const std::string& words) {
    report.problems.push_back(words);
    report.exitCode = exitRefused;
}

Words behindFirst(const Words& words) { return Words(words.begin() + 1, words.end()); }

const std::string& fileOf(const Words& words) {
    if (words.front().empty()) throw UsageError("the name of the file is empty");
    return words.front();
}

std::string shownFile(const std::string& file) { return inQuotes(toUtf8(file.c_str())); }

} // namespace appletctl

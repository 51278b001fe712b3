#include "appletctl/jobs.h"

#include <stdexcept>

namespace appletctl {
namespace {

struct JobRow {
    const char* name;
    Job job;
};

constexpr JobRow jobs[] = {
    {"plan", planJob},
};

} // namespace

Job findJob(const std::string& name) {
    for (const JobRow& row : jobs)
        if (name == row.name) return row.job;
    throw std::logic_error("no job '" + name + "'");
}

} // namespace appletctl

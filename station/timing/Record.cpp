#include "station/timing/Record.h"

namespace station {

SourceLine LineRun::line(std::uint32_t number) const {
    const std::uint64_t row = std::uint64_t{first.y} + number;
    SourceLine line = first;
    if (first.isOfCamera) {
        line.y += number;
        return line;
    }
    line.y = static_cast<std::uint32_t>(row % first.height);
    line.frame = first.frame + static_cast<std::uint32_t>(row / first.height);
    return line;
}

bool LineRun::isFollowedBy(const SourceLine& next) const {
    if (next.isOfCamera != first.isOfCamera) return false;
    if (next.isOfCamera) return next.y == first.y + count;
    if (next.height != first.height || next.cycles != first.cycles) return false;
    const SourceLine expected = line(count);
    return next.y == expected.y && next.frame == expected.frame;
}

bool Record::add(const SourceLine& line) {
    if (!runs.empty() && runs.back().isFollowedBy(line)) {
        ++runs.back().count;
    } else {
        if (runs.size() == mostRuns) return false;
        runs.push_back({line, 1});
    }
    ++lines;
    return true;
}

bool Record::add(const SourceLine& line, const Exposure& exposure) {
    if (exposures.size() == mostExposures) return false;
    SourceLine placed = line;
    placed.y = static_cast<std::uint32_t>(exposures.size());
    exposures.push_back(exposure);
    return add(placed);
}

} // namespace station

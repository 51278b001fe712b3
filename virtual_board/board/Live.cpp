#include "virtual_board/board/Live.h"

#include <array>
#include <atomic>

namespace vboard {
namespace {

std::array<std::atomic<int>, Live::kinds> liveCounts;

} // namespace

void Live::add(Kind kind, int number) { liveCounts[kind] += number; }
int Live::count(Kind kind) { return liveCounts[kind]; }

} // namespace vboard

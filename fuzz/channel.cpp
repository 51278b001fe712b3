// The input is a message of a station's channel, to the station or to a client. Either it is refused, or it is written again
// as it was.

#include "invariants.h"
#include "station_channel/messages.h"

namespace {

using namespace station_channel;

template <typename Read> void check(std::span<const std::uint8_t> bytes, Read read) {
    try {
        const Bytes again = encoded(read(bytes));
        fuzz::require(std::ranges::equal(again, bytes), "a message is written as it was read");
    } catch (const Malformed&) { // refused
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    check({data, size}, requestFrom);
    check({data, size}, answerFrom);
    return 0;
}
